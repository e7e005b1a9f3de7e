// The eight reports of an evaluated demo order as the work window's menus show
// them: their PDF pages read back as text, their rendered text and CSV compared
// with the reference files checked in beside the tests, their Excel sheets read back.

#include "DemoOrder.h"

#include "FileSystem.h"

#include <QString>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace qi::test {
namespace {

/// Menu entry, its report's definition file, title, column headings, a group header and a row.
struct Expected {
    const char* entry;
    const char* file;
    const char* title;
    std::vector<const char*> headings;
    const char* group; ///< empty for a report without groups
    const char* row;   ///< texts of one row, as pdftotext lays them out (blanks between cells vary)
};

const std::vector<Expected>& expectedReports()
{
    static const std::vector<Expected> all = {
        {"Raumerfassung", "invraum.rpt", "Raumliste", {"Raum", "Status", "Objekte lt. Quarn"}, "", "1001"},
        {"Artikel", "invart.rpt", "Artikelaufstellung", {"Artikel-Nr.", "Bezeichnung", "Soll", "Ist", "Differenz"}, "",
         "A001"},
        {"Inventur", "invliste.rpt", "Inventurliste", {"Inventar-Nr.", "Bezeichnung", "Artikel-Nr."}, "Raum 1001",
         "100013"},
        {"Inventurauswertung", "invausw.rpt", "Inventurauswertung", {"Kategorie", "Objekte"}, "Raum 1001", "1 OK"},
        {"Differenz", "invdiff.rpt", "Differenzliste", {"Inventar-Nr. Soll", "Inventar-Nr. Ist", "Bezeichnung"},
         "Raum 1001", "100013"},
        {"Neu", "invneu.rpt", "Neues Inventar im Auftragsbereich", {"Inventar-Nr.", "Bezeichnung", "Befund"},
         "Gefunden in Raum 1001", "100007"},
        {"Verschoben", "invversch.rpt", "Verschobenes Inventar", {"Inventar-Nr.", "Bezeichnung", "Gefunden in Raum"},
         "Raum lt. Quarn: 100", "Gefunden in Raum"},
        {"Fehlend", "invfehlend.rpt", "Fehlendes Inventar", {"Inventar-Nr.", "Bezeichnung", "Artikel-Nr."},
         "Raum 1001", "100025"},
    };
    return all;
}

std::string referencePath(const std::string& name) { return std::string(QI_SOURCE_DIR) + "/tests/report/reference/" + name; }

/// Compares `actual` with the reference file; QI_UPDATE_REFERENCES=1 writes the file instead
/// (a deliberate act: the new reference is reviewed and checked in like code).
void expectReference(const std::string& name, const std::string& actual)
{
    const std::string path = referencePath(name);
    if (const char* update = std::getenv("QI_UPDATE_REFERENCES"); update && std::string(update) == "1") {
        writeFile(path, actual);
        return;
    }
    ASSERT_TRUE(fileExists(path)) << "no reference file " << path << " (QI_UPDATE_REFERENCES=1 makes it)";
    const std::string expected = readFile(path);
    EXPECT_EQ(actual, expected) << "differs from " << path;
}

void PrintTo(const Expected& e, std::ostream* os) { *os << e.entry; }

class DemoReports : public ::testing::TestWithParam<Expected> {
protected:
    DemoOrder& order = DemoOrder::shared();
    const RenderedReport& report() const
    {
        const auto it = order.reports.find(GetParam().entry);
        if (it == order.reports.end())
            throw std::runtime_error(std::string("no report shown for ") + GetParam().entry);
        return it->second;
    }
};

TEST_P(DemoReports, PdfShowsTitleHeadingsGroupRowAndPageNumber)
{
    const RenderedReport& r = report();
    EXPECT_EQ(fileNamePart(r.file), GetParam().file);
    const std::string text = pdfText(r.pdf);
    ASSERT_FALSE(text.empty()) << r.pdf;
    EXPECT_NE(text.find(GetParam().title), std::string::npos);
    for (const char* h : GetParam().headings)
        EXPECT_NE(text.find(h), std::string::npos) << h;
    if (*GetParam().group) {
        EXPECT_NE(text.find(GetParam().group), std::string::npos) << GetParam().group;
    }
    EXPECT_NE(text.find(GetParam().row), std::string::npos) << GetParam().row;
    EXPECT_NE(text.find("Seite 1 von " + std::to_string(r.pages)), std::string::npos);
    EXPECT_NE(text.find("Auftrag: Demo"), std::string::npos);
    EXPECT_NE(text.find("Gedruckt am 01.04.2025, 10:00 Uhr"), std::string::npos);
    EXPECT_GT(r.rows, 0u);
}

TEST_P(DemoReports, RenderedTextMatchesItsReference)
{
    expectReference(std::string(GetParam().entry) + ".txt", withoutProjectFolder(report().text, order.project));
}

TEST_P(DemoReports, CsvMatchesItsReference)
{
    expectReference(std::string(GetParam().entry) + ".csv", readFile(report().csv));
}

TEST_P(DemoReports, ExcelSheetHoldsTheHeadingsAndEveryRow)
{
    const RenderedReport& r = report();
    // The CSV holds one line per row; every row's values are in the sheet.
    std::istringstream csv(readFile(r.csv).substr(3));
    std::string line;
    std::getline(csv, line);
    std::vector<std::string> headings;
    for (const QString& h : QString::fromStdString(line).trimmed().split(QLatin1Char(';')))
        headings.push_back(h.toStdString());
    EXPECT_EQ(xlsxRow(r.xlsx, 4), headings);
    std::size_t rows = 0;
    const std::string sheet = zipEntry(r.xlsx, "xl/worksheets/sheet1.xml");
    while (std::getline(csv, line)) {
        ++rows;
        const QStringList cells = QString::fromStdString(line).trimmed().split(QLatin1Char(';'));
        for (const QString& c : cells) {
            if (!c.isEmpty() && !c.contains(QLatin1Char('"'))) {
                EXPECT_NE(sheet.find(">" + c.toStdString() + "<"), std::string::npos) << c.toStdString();
            }
        }
    }
    EXPECT_EQ(rows, r.rows);
    EXPECT_GE(xlsxRowCount(r.xlsx), int(rows) + 2);
}

INSTANTIATE_TEST_SUITE_P(EightReports, DemoReports, ::testing::ValuesIn(expectedReports()),
                         [](const ::testing::TestParamInfo<Expected>& info) { return std::string(info.param.entry); });

} // namespace
} // namespace qi::test
