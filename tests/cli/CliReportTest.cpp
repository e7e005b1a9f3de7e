// Reports and error lists written by qinventur-cli: the CSV of the difference list
// and of the three error lists against the rows the test computes from the evaluated
// order and Quarn's data, every report of export in every format, and the refusals
// and failures of the report commands.

#include "CliFixture.h"

#include "FileSystem.h"
#include "JetCollation.h"

#include <algorithm>
#include <filesystem>
#include <functional>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* k3b = "3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.";

/// One row of the evaluated difference list with its room's number.
struct DiffRow {
    std::string raumNr, typ, soll, ist, beschreibung, artNr, ziel, quelle, quarn, datum, uhrzeit, bemerkung;
};

/// A field as a CSV line holds it: in double quotes (doubled inside) when it holds a separator,
/// a quote or a line break.
std::string csv(const std::string& v)
{
    if (v.find_first_of(";\"\r\n") == std::string::npos)
        return v;
    std::string out = "\"";
    for (char c : v)
        out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

std::string line(const std::vector<std::string>& fields)
{
    std::string out;
    for (const std::string& f : fields)
        out += (out.empty() ? "" : ";") + csv(f);
    return out;
}

class CliReportTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        prepareOrder("Nord");
        expectCli(0, {"auswerten", "Nord"});
        const Recordset rs = read(orderFile("Nord"))
                                 ->query("SELECT r.stRaumNr, d.stTyp, d.stSollInvNR, d.stIstInvNR, d.stBeschreibung, "
                                         "d.stArtNr, d.stZiel, d.stQuelle, d.stQuarn, d.Datum, d.Uhrzeit, "
                                         "d.stObjBemerkung FROM T_Differenzliste AS d LEFT JOIN T_Raum AS r "
                                         "ON r.lID = d.lRaumID");
        for (const auto& row : rs.rows()) {
            std::vector<std::string> t;
            for (const Value& v : row)
                t.push_back(isNull(v) ? std::string() : toText(v));
            evaluated.push_back({t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8], t[9], t[10], t[11]});
        }
        ASSERT_FALSE(evaluated.empty());
    }

    /// Writes the report as CSV with the order's difference list emptied first, so that only the
    /// report's own preparation can fill it. Its lines: the heading, then the rows.
    std::vector<std::string> reportLines(const std::string& report)
    {
        Database::open(orderFile("Nord"))->execute("DELETE FROM T_Differenzliste");
        const std::string out = root.file(report + ".csv");
        const CliRun r = expectCli(0, {"bericht", "Nord", report, "--format", "csv", "--ausgabe", out});
        EXPECT_EQ(r.out, "Bericht '" + report + "' geschrieben: " + displayPath(out) + "\n");
        EXPECT_EQ(r.err, "");
        std::string text = readFile(out);
        EXPECT_EQ(text.rfind("\xEF\xBB\xBF", 0), 0u) << "UTF-8 with byte-order mark";
        text.erase(0, 3);
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find("\r\n", at);
            lines.push_back(text.substr(at, end - at));
            at = end == std::string::npos ? text.size() : end + 2;
        }
        return lines;
    }

    /// Compares the report's rows with the expected ones (the order within a room and category
    /// is the report's own) and checks that the rooms come in order.
    void expectRows(const std::vector<std::string>& lines, const std::string& heading,
                    std::vector<std::string> expected)
    {
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines[0], heading);
        std::vector<std::string> rows(lines.begin() + 1, lines.end());
        for (std::size_t i = 1; i < rows.size(); ++i)
            EXPECT_LE(rows[i - 1].substr(0, rows[i - 1].find(';')), rows[i].substr(0, rows[i].find(';'))) << i;
        std::sort(rows.begin(), rows.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(rows, expected);
        EXPECT_FALSE(expected.empty()) << "the demo order holds rows of every list";
    }

    std::vector<DiffRow> where(const std::function<bool(const DiffRow&)>& keep) const
    {
        std::vector<DiffRow> out;
        std::copy_if(evaluated.begin(), evaluated.end(), std::back_inserter(out), keep);
        return out;
    }

    /// Quarn's object of a scanned number (letter case ignored), or null.
    const demo::Object* object(const std::string& invNr) const
    {
        for (const demo::Object& o : inst.modules[0].objects)
            if (jetEqual(o.name, invNr))
                return &o;
        return nullptr;
    }
    /// "Name, Vorname" of the room's person responsible, or empty.
    std::string responsible(const std::string& raumNr) const
    {
        for (const demo::Room& r : inst.rooms)
            if (r.nr == raumNr)
                for (const demo::Person& p : inst.persons)
                    if (p.id == r.responsibleId)
                        return p.name + ", " + p.vorname;
        return {};
    }
    /// The cost centre of the scanned object, or empty.
    std::string costCentre(const std::string& invNr) const
    {
        if (const demo::Object* o = object(invNr))
            for (const demo::CostCentre& k : inst.costCentres)
                if (k.id == o->kstId)
                    return k.nr;
        return {};
    }

    std::vector<DiffRow> evaluated;
};

TEST_F(CliReportTest, TheDifferenceListShowsEveryExpectedObjectAndEveryScanQuarnKnows)
{
    // The stored query's rows: scans of objects Quarn keeps (not their variants), and expected objects not scanned.
    std::vector<std::string> expected;
    for (const DiffRow& d : where([&](const DiffRow& d) {
             const demo::Object* o = object(d.ist);
             return (!d.ist.empty() && o && o->variante == 0) || (!d.soll.empty() && d.ist.empty());
         }))
        expected.push_back(line({d.raumNr, responsible(d.raumNr), d.typ, d.soll, d.ist, d.beschreibung, d.artNr,
                                 costCentre(d.ist), d.ziel, d.quelle, d.quarn, d.datum, d.uhrzeit, d.bemerkung}));
    expectRows(reportLines("differenz"),
               "Raum;Raumverantwortlich;Kategorie;Inventar-Nr. Soll;Inventar-Nr. Ist;Bezeichnung;Artikel-Nr.;"
               "Kostenstelle;Gefunden in;Gehört in;Raum lt. Quarn;Datum;Uhrzeit;Bemerkung",
               expected);
    // Scans Quarn does not know are no rows of this list.
    for (const DiffRow& d : evaluated) {
        if (d.typ == "2c Nicht in Quarn erfasst") {
            EXPECT_EQ(object(d.ist), nullptr) << d.ist;
        }
    }
}

TEST_F(CliReportTest, NewInventoryIsEveryScanWithoutExpectationOrSourceRoom)
{
    std::vector<std::string> expected;
    for (const DiffRow& d :
         where([](const DiffRow& d) { return d.soll.empty() && d.quelle.empty() && !d.ist.empty(); }))
        expected.push_back(line({d.raumNr, d.ist, d.beschreibung, d.artNr, d.typ, d.quarn, d.datum, d.uhrzeit}));
    expectRows(reportLines("neu"),
               "Gefunden in Raum;Inventar-Nr.;Bezeichnung;Artikel-Nr.;Befund;Raum lt. Quarn;Datum;Uhrzeit", expected);
}

TEST_F(CliReportTest, MovedInventoryIsEveryExpectedObjectFoundInAnotherRoom)
{
    std::vector<std::string> expected;
    for (const DiffRow& d : where([](const DiffRow& d) { return !d.ziel.empty() && !d.soll.empty(); }))
        expected.push_back(line({d.raumNr, d.soll, d.beschreibung, d.artNr, d.ziel}));
    expectRows(reportLines("verschoben"), "Raum lt. Quarn;Inventar-Nr.;Bezeichnung;Artikel-Nr.;Gefunden in Raum",
               expected);
}

TEST_F(CliReportTest, MissingInventoryIsEveryObjectOfCategory3b)
{
    std::vector<std::string> expected;
    for (const DiffRow& d : where([](const DiffRow& d) { return d.typ == k3b; }))
        expected.push_back(line({d.raumNr, d.soll, d.beschreibung, d.artNr}));
    expectRows(reportLines("fehlend"), "Raum;Inventar-Nr.;Bezeichnung;Artikel-Nr.", expected);
}

TEST_F(CliReportTest, ExportWritesEveryReportInEveryFormat)
{
    const std::vector<std::string> names = {"artikel",   "raumerfassung", "inventur", "inventurauswertung",
                                            "differenz", "neu",           "verschoben", "fehlend"};
    for (const std::string format : {"pdf", "xlsx", "csv"}) {
        SCOPED_TRACE(format);
        const std::string folder = root.file("Berichte " + format);
        const CliRun r = expectCli(0, {"export", "Nord", "--ausgabe", folder, "--format", format});
        std::string said;
        for (const std::string& name : names) {
            const std::string file = folder + "/" + name + "." + format;
            said += "Bericht '" + name + "' geschrieben: " + displayPath(file) + "\n";
            ASSERT_TRUE(fileExists(file)) << file;
            const std::string bytes = readFile(file);
            const std::string magic = format == "pdf" ? "%PDF" : format == "xlsx" ? "PK" : "\xEF\xBB\xBF";
            EXPECT_EQ(bytes.rfind(magic, 0), 0u) << file;
        }
        EXPECT_EQ(r.out, said);
        EXPECT_EQ(r.err, "");
    }
    // Without --format the pages are written.
    expectCli(0, {"export", "Nord", "--ausgabe", root.file("Seiten")});
    EXPECT_TRUE(fileExists(root.file("Seiten/differenz.pdf")));
    // The error lists come last: the difference list holds the missing objects then.
    EXPECT_EQ(count(orderFile("Nord"), "SELECT COUNT(*) FROM T_Differenzliste WHERE stTyp <> ?1"), 0);
}

TEST_F(CliReportTest, TheFormatComesFromTheOutputsExtension)
{
    expectCli(0, {"bericht", "Nord", "raumerfassung", "--ausgabe", root.file("raeume.XLSX")});
    EXPECT_EQ(readFile(root.file("raeume.XLSX")).rfind("PK", 0), 0u);
    expectCli(0, {"bericht", "Nord", "artikel", "--ausgabe", root.file("artikel.pdf")});
    EXPECT_EQ(readFile(root.file("artikel.pdf")).rfind("%PDF", 0), 0u);
}

TEST_F(CliReportTest, ReportCommandsRefuseWhatTheyCantWrite)
{
    const auto before = treeDigest(root.path());
    CliRun r = expectCli(2, {"bericht", "Nord", "inventar", "--ausgabe", root.file("x.pdf")});
    EXPECT_EQ(r.err, "[qinventur-cli] Einen Bericht 'inventar' gibt es nicht. Berichte: artikel, raumerfassung, "
                     "inventur, inventurauswertung, differenz, neu, verschoben, fehlend.\n");
    r = expectCli(2, {"bericht", "Nord", "differenz", "--ausgabe", root.file("x.doc")});
    EXPECT_EQ(r.err, "[qinventur-cli] Die Endung von '" + root.file("x.doc") +
                         "' nennt kein Format (pdf, xlsx oder csv); geben Sie --format an.\n");
    r = expectCli(2, {"export", "Nord", "--ausgabe", root.file("x"), "--format", "txt"});
    EXPECT_EQ(r.err, "[qinventur-cli] --format nimmt pdf, xlsx oder csv, nicht 'txt'.\n");
    r = expectCli(2, {"bericht", "Nord", "differenz"});
    EXPECT_EQ(r.err, "[qinventur-cli] Es fehlt --ausgabe PFAD.\n");
    r = expectCli(2, {"export", "Nord"});
    EXPECT_EQ(r.err, "[qinventur-cli] Es fehlt --ausgabe ORDNER.\n");
    EXPECT_EQ(treeDigest(root.path()), before);

    r = expectCli(4, {"bericht", "Süd", "differenz", "--ausgabe", root.file("x.pdf")});
    EXPECT_EQ(r.err, "[qinventur-cli] Einen Auftrag 'Süd' gibt es im Projekt nicht.\n");

    // A file that can't be written is the menu's error.
    r = expectCli(1, {"bericht", "Nord", "neu", "--ausgabe", root.file("fehlt/neu.pdf")});
    EXPECT_EQ(r.err.rfind("[QInventur] frmWork.mnuFehlerFkt_Click\n", 0), 0u) << r.err;
    EXPECT_FALSE(fs::exists(root.file("fehlt")));
    r = expectCli(1, {"bericht", "Nord", "artikel", "--ausgabe", root.file("fehlt/artikel.csv")});
    EXPECT_EQ(r.err.rfind("[QInventur] frmWork.MakeArtikelAufstellung\n", 0), 0u) << r.err;
    // A report file of the project with an error names its file and line.
    writeFile(demoDir + "/Report/invraum.rpt", "[Bericht]\nTitel = Räume\nQuelle = \n[Spalte]\nFeld\n");
    r = expectCli(1, {"bericht", "Nord", "raumerfassung", "--ausgabe", root.file("raum.pdf")});
    EXPECT_EQ(r.err.rfind("[QInventur] frmWork.mnuReportFkt_Click\nFehler in der Berichtsdatei '", 0), 0u) << r.err;
    EXPECT_FALSE(fileExists(root.file("raum.pdf")));
}

} // namespace
} // namespace qi::test
