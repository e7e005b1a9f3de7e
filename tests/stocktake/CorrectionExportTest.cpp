// The exports of the accepted corrections over proposals filled by hand: the workbook read
// back as what it is (a zip of XML parts), the CSV files parsed, each compared row by row
// with the accepted proposals; proposals not accepted (open, rejected, changed since) stay out.

#include "CorrectionExport.h"

#include "ReportError.h"
#include "TestSupport.h"

#include <QString>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <sys/stat.h>

namespace qi::test {
namespace {

/// The bytes of a part of a zip file (unzip -p); empty when it is not there.
std::string zipPart(const std::string& zip, const std::string& part)
{
    return commandOutput("unzip -p '" + zip + "' '" + part + "' 2>/dev/null");
}

/// Column index of a cell reference ("C7" → 2).
std::size_t columnOf(const QString& ref)
{
    std::size_t col = 0;
    for (const QChar c : ref) {
        if (!c.isLetter())
            break;
        col = col * 26 + std::size_t(c.unicode() - 'A' + 1);
    }
    return col - 1;
}

/// The sheets of a workbook by name, each as rows of cell texts (inline or shared strings).
std::map<std::string, std::vector<std::vector<std::string>>> readWorkbook(const std::string& path)
{
    std::vector<std::string> shared;
    QXmlStreamReader ss(QByteArray::fromStdString(zipPart(path, "xl/sharedStrings.xml")));
    while (!ss.atEnd())
        if (ss.readNext() == QXmlStreamReader::StartElement && ss.name() == QLatin1String("si"))
            shared.push_back(ss.readElementText(QXmlStreamReader::IncludeChildElements).toStdString());

    std::vector<std::string> names;
    QXmlStreamReader wb(QByteArray::fromStdString(zipPart(path, "xl/workbook.xml")));
    while (!wb.atEnd())
        if (wb.readNext() == QXmlStreamReader::StartElement && wb.name() == QLatin1String("sheet"))
            names.push_back(wb.attributes().value(QLatin1String("name")).toString().toStdString());

    std::map<std::string, std::vector<std::vector<std::string>>> sheets;
    for (std::size_t i = 0; i < names.size(); ++i) {
        auto& rows = sheets[names[i]];
        QXmlStreamReader x(
            QByteArray::fromStdString(zipPart(path, "xl/worksheets/sheet" + std::to_string(i + 1) + ".xml")));
        while (!x.atEnd()) {
            if (x.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (x.name() == QLatin1String("row")) {
                rows.emplace_back();
            } else if (x.name() == QLatin1String("c")) {
                const std::size_t col = columnOf(x.attributes().value(QLatin1String("r")).toString());
                const bool isShared = x.attributes().value(QLatin1String("t")) == QLatin1String("s");
                const std::string text = x.readElementText(QXmlStreamReader::IncludeChildElements).toStdString();
                auto& row = rows.back();
                row.resize(std::max(row.size(), col + 1));
                row[col] = isShared ? shared.at(std::stoul(text)) : text;
            }
        }
    }
    return sheets;
}

/// A CSV file: its byte-order mark checked, its lines split at semicolons (quotes honoured).
std::vector<std::vector<std::string>> readCsv(const std::string& path)
{
    std::string text = readFile(path);
    EXPECT_EQ(text.rfind("\xEF\xBB\xBF", 0), 0u) << path;
    text.erase(0, 3);
    std::vector<std::vector<std::string>> rows(1, std::vector<std::string>(1));
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"')
                rows.back().back() += text[++i];
            else if (c == '"')
                quoted = false;
            else
                rows.back().back() += c;
        } else if (c == '"') {
            quoted = true;
        } else if (c == ';') {
            rows.back().emplace_back();
        } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            ++i;
            if (i + 1 < text.size())
                rows.emplace_back(1);
        } else {
            rows.back().back() += c;
        }
    }
    return rows;
}

Proposal proposal(const std::string& art, const std::string& invNr, int n)
{
    Proposal p;
    p.art = art;
    p.invNr = invNr;
    p.artNr = "ART-" + std::to_string(n);
    p.beschreibung = "Schreibtisch \"Eiche\"; hell " + std::to_string(n);
    p.raumQuarn = art == kArtNeu ? "" : "1.0" + std::to_string(n);
    p.raumNeu = art == kArtStandort || art == kArtNeu ? "2.0" + std::to_string(n) : "";
    p.auftraege = n % 2 ? "EG" : "EG, OG";
    p.raeume = art == kArtKlaeren ? "1.01, 2.02" : p.raumNeu;
    p.datei = art == kArtFehlt ? "" : "scan" + std::to_string(n) + ".dat";
    p.datum = art == kArtFehlt ? "" : "1" + std::to_string(n) + ".03.2025";
    p.uhrzeit = art == kArtFehlt ? "" : "09:0" + std::to_string(n) + ":00";
    p.gebaeudeteil = "Hauptgebäude / Erdgeschoss";
    p.beleg = p.raumNeu + "|" + p.auftraege;
    return p;
}

ReviewedProposal reviewed(Proposal p, const std::string& entscheidung, const std::string& kommentar = {})
{
    ReviewedProposal r{std::move(p), entscheidung, std::nullopt};
    if (entscheidung != kOffen) {
        const std::string kept = entscheidung == kGeaendert ? kAngenommen : entscheidung;
        r.decision = Decision{r.proposal.art, r.proposal.invNr, kept,   kommentar, "Meier",
                              "20.03.2025 14:00:00", entscheidung == kGeaendert ? "alt" : r.proposal.beleg};
    }
    return r;
}

/// Two accepted proposals of every kind but "Klären" (one), and one of each kind that stays out.
std::vector<ReviewedProposal> sample()
{
    return {
        reviewed(proposal(kArtStandort, "00100", 1), kAngenommen, "umgezogen"),
        reviewed(proposal(kArtStandort, "00101", 2), kAbgelehnt),
        reviewed(proposal(kArtStandort, "00102", 3), kAngenommen),
        reviewed(proposal(kArtStandort, "00103", 4), kGeaendert),
        reviewed(proposal(kArtNeu, "N-1", 5), kAngenommen, "neu; mit \"Zeichen\""),
        reviewed(proposal(kArtNeu, "N-2", 6), kOffen),
        reviewed(proposal(kArtNeu, "N-3", 7), kAngenommen),
        reviewed(proposal(kArtFehlt, "00200", 8), kAngenommen, "ausgesondert"),
        reviewed(proposal(kArtFehlt, "00201", 9), kAngenommen),
        reviewed(proposal(kArtFehlt, "00202", 1), kAbgelehnt),
        reviewed(proposal(kArtKlaeren, "00300", 2), kAngenommen, "Zweitscan"),
        reviewed(proposal(kArtKlaeren, "00301", 3), kOffen),
    };
}

/// The rows expected of a kind, computed here from the proposals: accepted ones only.
std::vector<std::vector<std::string>> expectedRows(const std::vector<ReviewedProposal>& all, const std::string& art)
{
    std::vector<std::vector<std::string>> rows;
    for (const ReviewedProposal& r : all) {
        if (r.proposal.art != art || r.entscheidung != kAngenommen)
            continue;
        const Proposal& p = r.proposal;
        std::vector<std::string> row;
        if (art == kArtStandort)
            row = {p.invNr, p.artNr, p.beschreibung, p.raumQuarn, p.raumNeu, p.gebaeudeteil, p.datum, p.auftraege};
        else if (art == kArtNeu)
            row = {p.invNr, p.artNr, p.beschreibung, p.raumNeu, p.gebaeudeteil, p.datum, p.auftraege};
        else if (art == kArtFehlt)
            row = {p.invNr, p.artNr, p.beschreibung, p.raumQuarn, p.gebaeudeteil, p.auftraege};
        else
            row = {p.invNr, p.artNr, p.beschreibung, p.raumQuarn, p.raeume, p.auftraege, p.datum};
        row.insert(row.end(), {r.decision->kommentar, "Meier", "20.03.2025 14:00:00"});
        rows.push_back(row);
    }
    return rows;
}

const std::map<std::string, std::vector<std::string>> kHeadings = {
    {kArtStandort,
     {"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum_alt", "Raum_neu", "Gebaeudeteil", "Datum", "Auftrag",
      "Kommentar", "Entschieden_von", "Entschieden_am"}},
    {kArtNeu,
     {"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum", "Gebaeudeteil", "Datum", "Auftrag", "Kommentar",
      "Entschieden_von", "Entschieden_am"}},
    {kArtFehlt,
     {"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum", "Gebaeudeteil", "Auftrag", "Kommentar",
      "Entschieden_von", "Entschieden_am"}},
    {kArtKlaeren,
     {"Inventarnummer", "Artikelnummer", "Bezeichnung", "Raum_Quarn", "Raeume", "Auftraege", "Datum", "Kommentar",
      "Entschieden_von", "Entschieden_am"}},
};

const std::vector<std::string> kKinds = {kArtStandort, kArtNeu, kArtFehlt, kArtKlaeren};

TEST(CorrectionExport, WorkbookHasASheetPerKindWithTheAcceptedProposalsRowByRow)
{
    TempDir dir;
    const auto all = sample();
    const auto written = exportCorrections(all, dir.path(), CorrectionFormat::Xlsx);
    ASSERT_EQ(written.size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(dir.file("Korrekturen.xlsx")));
    EXPECT_EQ(sortedNames(dir.path()), std::vector<std::string>{"Korrekturen.xlsx"});

    const auto sheets = readWorkbook(dir.file("Korrekturen.xlsx"));
    ASSERT_EQ(sheets.size(), 4u);
    for (const std::string& art : kKinds) {
        SCOPED_TRACE(art);
        ASSERT_TRUE(sheets.count(art));
        const auto& rows = sheets.at(art);
        ASSERT_FALSE(rows.empty());
        EXPECT_EQ(rows.front(), kHeadings.at(art));
        const auto expected = expectedRows(all, art);
        ASSERT_EQ(rows.size(), expected.size() + 1);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            auto row = rows[i + 1];
            row.resize(expected[i].size()); // empty cells at the end are not written
            EXPECT_EQ(row, expected[i]) << "row " << i + 1;
        }
    }
    // The numbers are texts: "00100" keeps its leading zeros.
    EXPECT_EQ(sheets.at(kArtStandort).at(1).at(0), "00100");
    EXPECT_EQ(sheets.at(kArtStandort).size(), 3u);
    EXPECT_EQ(sheets.at(kArtKlaeren).size(), 2u);
}

TEST(CorrectionExport, CsvFilesOnePerKindWithTheAcceptedProposalsRowByRow)
{
    TempDir dir;
    const auto all = sample();
    const auto written = exportCorrections(all, dir.path(), CorrectionFormat::Csv);
    ASSERT_EQ(written.size(), 4u);
    EXPECT_EQ(sortedNames(dir.path()),
              (std::vector<std::string>{"Korrekturen_Fehlt.csv", "Korrekturen_Klaeren.csv", "Korrekturen_Neu.csv",
                                        "Korrekturen_Standort.csv"}));
    for (const std::string& art : kKinds) {
        SCOPED_TRACE(art);
        const std::string file = dir.file(correctionCsvFile(art));
        const auto rows = readCsv(file);
        EXPECT_EQ(rows.front(), kHeadings.at(art));
        const auto expected = expectedRows(all, art);
        ASSERT_EQ(rows.size(), expected.size() + 1);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(rows[i + 1], expected[i]) << "row " << i + 1;
    }
    // Separators and quotes inside a text are quoted; lines end in CR LF.
    const std::string neu = readFile(dir.file("Korrekturen_Neu.csv"));
    EXPECT_NE(neu.find("\"neu; mit \"\"Zeichen\"\"\""), std::string::npos) << neu;
    EXPECT_NE(neu.find("Entschieden_am\r\nN-1;"), std::string::npos) << neu;
}

TEST(CorrectionExport, WithoutAcceptedProposalsEveryFileHasItsHeadingsOnly)
{
    TempDir dir;
    const std::vector<ReviewedProposal> none = {reviewed(proposal(kArtFehlt, "1", 1), kOffen),
                                                reviewed(proposal(kArtNeu, "2", 2), kGeaendert)};
    exportCorrections(none, dir.path(), CorrectionFormat::Csv);
    for (const std::string& art : kKinds)
        EXPECT_EQ(readCsv(dir.file(correctionCsvFile(art))), (std::vector<std::vector<std::string>>{kHeadings.at(art)}));
    exportCorrections(none, dir.path(), CorrectionFormat::Xlsx);
    for (const auto& [name, rows] : readWorkbook(dir.file("Korrekturen.xlsx")))
        EXPECT_EQ(rows.size(), 1u) << name;
}

TEST(CorrectionExport, FileNamesPerKind)
{
    EXPECT_EQ(correctionCsvFile(kArtStandort), "Korrekturen_Standort.csv");
    EXPECT_EQ(correctionCsvFile(kArtNeu), "Korrekturen_Neu.csv");
    EXPECT_EQ(correctionCsvFile(kArtFehlt), "Korrekturen_Fehlt.csv");
    EXPECT_EQ(correctionCsvFile(kArtKlaeren), "Korrekturen_Klaeren.csv");
    EXPECT_EQ(correctionCsvFile("anders"), "");
}

TEST(CorrectionExport, AFolderThatCantBeWrittenIsToldAndAnEarlierFileStays)
{
    TempDir dir;
    exportCorrections(sample(), dir.path(), CorrectionFormat::Xlsx);
    const std::string before = readFile(dir.file("Korrekturen.xlsx"));
    try {
        exportCorrections(sample(), dir.file("fehlt"), CorrectionFormat::Xlsx);
        FAIL() << "no error";
    } catch (const ReportError& e) {
        EXPECT_NE(std::string(e.what()).find("Korrekturen.xlsx' kann nicht geschrieben werden"), std::string::npos)
            << e.what();
    }
    EXPECT_EQ(readFile(dir.file("Korrekturen.xlsx")), before);
}

} // namespace
} // namespace qi::test
