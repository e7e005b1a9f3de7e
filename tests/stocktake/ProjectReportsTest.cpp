// The reports of the whole stocktake over a project result filled by hand: their files
// (the template's, or the project's own copy), their rows as CSV, the PDF, and that the
// project result stays as it was.

#include "ProjectReports.h"

#include "CliFixture.h"

#include "Database.h"
#include "ProjectResultSchema.h"
#include "ReportDefinition.h"
#include "ReportError.h"
#include "ReportFiles.h"
#include "ReportLayout.h"
#include "Settings.h"
#include "TestSupport.h"
#include "Value.h"

#include <QString>

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace qi::test {
namespace {

/// The lines of a CSV file without its byte-order mark and line ends.
std::vector<std::string> csvLines(const std::string& path)
{
    std::string text = readFile(path);
    EXPECT_EQ(text.rfind("\xEF\xBB\xBF", 0), 0u);
    text.erase(0, 3);
    return linesOf(text);
}

/// Two orders: "EG" with three rooms (one of each status), "OG" never evaluated with one room;
/// every list but the rooms in several orders has rows.
void fillResult(Database& db)
{
    createProjectResultSchema(db);
    db.execute("INSERT INTO P_Auftrag (lAuftragID, stAuftrag, stStand, iRaeume, iRaeumeN, iRaeumeE, iRaeumeL, "
               "iDateien, iScans, iSoll, iErwartet, iAmPlatz, i1, i2a, i2b, i2c, i3a, i3b, dProzent, dRaeumeFertig, "
               "stLetzterScan) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, "
               "?18, ?19, ?20, ?21)",
               {Value(1), Value("EG"), Value(kStandAktuell), Value(3), Value(1), Value(1), Value(1), Value(1),
                Value(4), Value(5), Value(6), Value(2), Value(2), Value(0), Value(1), Value(1), Value(0), Value(3),
                Value(100.0 / 3), Value(200.0 / 3), Value("2025-03-12 09:20:00")});
    db.execute("INSERT INTO P_Auftrag (lAuftragID, stAuftrag, stStand, iRaeume, iRaeumeE, iDateien, iScans, "
               "iErwartet, dRaeumeFertig, stLetzterScan) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
               {Value(2), Value("OG"), Value(kStandNie), Value(1), Value(1), Value(2), Value(3), Value(2),
                Value(100.0), Value("2025-03-13 10:00:00")});
    const char* room = "INSERT INTO P_Raum (stAuftrag, stRaumNr, stBezeichnung, stStatus, iErwartet, iAmPlatz, "
                       "iGescannt, dProzent, stLetzterScan) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)";
    db.execute(room, {Value("EG"), Value("0.01"), Value("Büro"), Value("E"), Value(3), Value(2), Value(4),
                      Value(200.0 / 3), Value("2025-03-12 09:20:00")});
    db.execute(room, {Value("EG"), Value("0.02"), Value("Flur"), Value("N"), Value(2), Value(0), Value(0), Value(0.0),
                      Value("")});
    db.execute(room, {Value("EG"), Value("0.03"), Value("Lager"), Value("L"), Value(1), Value(0), Value(0),
                      Value(0.0), Value("")});
    db.execute(room, {Value("OG"), Value("1.01"), Value("Besprechung"), Value("E"), Value(2), Value(0), Value(3),
                      Value(0.0), Value("2025-03-13 10:00:00")});
    db.execute("INSERT INTO L_Verschoben VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
               {Value("I100"), Value("Stuhl"), Value("ART-1"), Value("EG"), Value("0.01"), Value("OG"), Value("1.01"),
                Value("13.03.2025"), Value("10:00:00"), Value("2025-03-13 10:00:00")});
    const char* twice = "INSERT INTO L_Doppelt VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)";
    db.execute(twice, {Value("I200"), Value("EG"), Value("0.01"), Value("12.03.2025"), Value("09:15:00"),
                       Value("2025-03-12 09:15:00"), Value("scan1.dat"), Value(2), Value(2)});
    db.execute(twice, {Value("I200"), Value("OG"), Value("1.01"), Value("13.03.2025"), Value("09:50:00"),
                       Value("2025-03-13 09:50:00"), Value("scan2.dat"), Value(2), Value(1)});
    db.execute("INSERT INTO L_Zuviel VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)",
               {Value("EG"), Value("0.01"), Value("I300"), Value("ART-3"), Value("2.05"), Value("12.03.2025"),
                Value("09:17:00"), Value("2025-03-12 09:17:00")});
    db.execute("INSERT INTO L_Unbekannt VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)",
               {Value("X1"), Value("ART-9"), Value("EG, OG"), Value("0.01"), Value(2), Value("12.03.2025"),
                Value("2025-03-12 09:16:00")});
    db.execute("INSERT INTO L_Fehlend VALUES (?1, ?2, ?3, ?4, ?5)",
               {Value("I400"), Value("Tisch"), Value("ART-4"), Value("EG"), Value("0.01")});
    db.execute("INSERT INTO L_Ungeprueft VALUES (?1, ?2, ?3, ?4, ?5)",
               {Value(7), Value("2.05"), Value("Archiv"), Value(4), Value(kNichtGeprueft)});
    db.execute("INSERT INTO L_Hinweis VALUES (?1, ?2, ?3, ?4)",
               {Value("OG"), Value(kHinweisNieAusgewertet), Value("Der Auftrag OG wurde nie ausgewertet."),
                Value("")});
}

class ProjectReportsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        project = dir.file("Projekt");
        std::filesystem::create_directories(project);
        settings.gstAppPfad = QI_PROGRAM_DIR;
        settings.gstProjektPfad = project + "\\";
        fillResult(*result);
    }
    const ProjectReport& report(std::string_view name)
    {
        const ProjectReport* r = findProjectReport(name);
        EXPECT_NE(r, nullptr);
        return *r;
    }
    std::vector<std::string> csvOf(std::string_view name)
    {
        const std::string csv = dir.file(std::string(name) + ".csv");
        writeProjectReport(settings, *result, report(name), ReportFormat::Csv, csv);
        return csvLines(csv);
    }

    TempDir dir;
    std::string project;
    Settings settings;
    std::unique_ptr<Database> result = Database::inMemory();
};

TEST(ProjectReports, AreKnownByTheirNamesWithTheirFilesAndTitles)
{
    ASSERT_EQ(projectReports().size(), 3u);
    EXPECT_EQ(findProjectReport("gesamtauswertung")->file, "invgesamt.rpt");
    EXPECT_EQ(findProjectReport("gesamtauswertung")->title, "Gesamtauswertung");
    EXPECT_EQ(findProjectReport("fortschritt")->file, "invfortschritt.rpt");
    EXPECT_EQ(findProjectReport("fortschritt")->title, "Fortschritt");
    EXPECT_EQ(findProjectReport("differenz"), nullptr);
    EXPECT_EQ(findProjectReport("Fortschritt"), nullptr);
    EXPECT_EQ(findProjectReport("protokoll")->file, "invprotokoll.rpt");
    EXPECT_EQ(findProjectReport("protokoll")->title, "Inventurprotokoll");
    EXPECT_NE(findProjectReport("protokoll")->prepare, nullptr);
    EXPECT_EQ(findProjectReport("fortschritt")->prepare, nullptr);
    EXPECT_EQ(projectReportNames(), "gesamtauswertung, fortschritt, protokoll");
}

TEST(ProjectReports, EveryReportFileParsesAsSourceAndAsTheTemplateFoldersCopy)
{
    for (const ProjectReport& r : projectReports()) {
        for (const std::string& file : {std::string(QI_SOURCE_DIR) + "/resources/reports/" + std::string(r.file),
                                        std::string(QI_PROGRAM_DIR) + "/" + kTemplateFolder + "/Report/" +
                                            std::string(r.file)}) {
            SCOPED_TRACE(file);
            const ReportDefinition def = parseReportDefinition(readReportFile(file), file);
            EXPECT_EQ(def.title, r.title);
            EXPECT_FALSE(def.sql.empty());
            // The protocol is a document to sign: upright.
            EXPECT_EQ(def.landscape, r.name != "protokoll");
            EXPECT_EQ(def.groups.size(), 1u);
        }
    }
}

TEST_F(ProjectReportsTest, WithoutItsOwnCopyTheProjectPrintsWithTheTemplateFoldersFile)
{
    const std::string file = projectReportFile(settings, report("fortschritt"));
    EXPECT_EQ(file, std::string(QI_PROGRAM_DIR) + "/" + kTemplateFolder + "/Report/invfortschritt.rpt");
    EXPECT_EQ(openProjectReport(settings, *result, report("fortschritt"))->file(), file);
}

TEST_F(ProjectReportsTest, TheProjectsOwnCopyInReportWinsWhateverItsLetterCase)
{
    std::filesystem::create_directories(project + "/Report");
    writeFile(project + "/Report/InvFortschritt.RPT",
              "[Bericht]\nTitel = Eigener Fortschritt\nQuelle = P_Raum\n[Spalte]\nFeld = stRaumNr\n");
    const auto r = openProjectReport(settings, *result, report("fortschritt"));
    EXPECT_EQ(r->model().definition().title, "Eigener Fortschritt");
    EXPECT_EQ(r->model().rowCount(), 4u);
    EXPECT_EQ(r->windowTitle(), "Fortschritt");
}

TEST_F(ProjectReportsTest, PageHeaderSaysAllOrdersOfTheProject)
{
    const auto r = openProjectReport(settings, *result, report("gesamtauswertung"), "01.04.2025, 12:00 Uhr");
    EXPECT_EQ(r->model().context().orderName, "alle Aufträge");
    EXPECT_EQ(r->model().context().printDate, "01.04.2025, 12:00 Uhr");
    EXPECT_EQ(r->model().context().reportFile, "invgesamt.rpt");
    const std::string text = r->text();
    EXPECT_NE(text.find("Umfang: alle Aufträge"), std::string::npos) << text;
    EXPECT_NE(text.find("Gedruckt am 01.04.2025, 12:00 Uhr"), std::string::npos) << text;
}

TEST_F(ProjectReportsTest, FortschrittHasARowPerRoomOfEachOrderWithItsFigures)
{
    const std::vector<std::string> expected = {
        "Auftrag;Stand;Raum;Bezeichnung;Status;Erwartet lt. Quarn;Am Platz gefunden;Gescannt;Gefunden %;Letzter Scan",
        "EG;aktuell;0.01;Büro;erfasst;3;2;4;66,7;12.03.2025 09:20",
        "EG;aktuell;0.02;Flur;noch nicht erfasst;2;0;0;0,0;",
        "EG;aktuell;0.03;Lager;leer gemeldet;1;0;0;0,0;",
        "OG;nie ausgewertet;1.01;Besprechung;erfasst;2;0;3;0,0;13.03.2025 10:00",
    };
    EXPECT_EQ(csvOf("fortschritt"), expected);
}

TEST_F(ProjectReportsTest, FortschrittTellsTheTotalsOfEachOrderAndOfTheProject)
{
    const std::string text = openProjectReport(settings, *result, report("fortschritt"))->text();
    EXPECT_NE(text.find("Auftrag EG   ·   Stand: aktuell   ·   2 von 3 Räumen fertig (66,7 %)"), std::string::npos)
        << text;
    EXPECT_NE(text.find("Auftrag EG: 2 von 6 Objekten am Platz gefunden (33,3 %), 4 Scans"), std::string::npos);
    EXPECT_NE(text.find("Auftrag OG: 0 von 2 Objekten am Platz gefunden (0,0 %), 3 Scans"), std::string::npos);
    EXPECT_NE(text.find("Projekt (2 Aufträge): 2 von 8 Objekten am Platz gefunden (25,0 %), 7 Scans, 3 von 4 "
                        "Räumen fertig (75,0 %)"),
              std::string::npos);
}

TEST_F(ProjectReportsTest, FortschrittShowsAnOrderWithoutRoomsAndTellsAProjectWithoutOrders)
{
    result->execute("INSERT INTO P_Auftrag (stAuftrag, stStand) VALUES (?1, ?2)",
                    {Value("UG"), Value(kStandFehlt)});
    const std::vector<std::string> lines = csvOf("fortschritt");
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[5], "UG;Datei fehlt;;;keine Räume;;;;;");

    result->execute("DELETE FROM P_Raum");
    result->execute("DELETE FROM P_Auftrag");
    const std::string text = openProjectReport(settings, *result, report("fortschritt"))->text();
    EXPECT_NE(text.find("Das Projekt hat keine Aufträge."), std::string::npos) << text;
}

TEST_F(ProjectReportsTest, GesamtauswertungHasTheOrdersTheProjectAndEveryListInItsSection)
{
    const std::vector<std::string> expected = {
        "Abschnitt;Auftrag;Raum;Inventar-Nr.;Bezeichnung;Artikel;Angaben;Datum;Anzahl",
        "1. Aufträge;EG;3 (N 1, E 1, L 1);;aktuell;;1 Datei · Soll 5 · 1: 2 · 2a: 0 · 2b: 1 · 2c: 1 · 3a: 0 · 3b: 3;"
        "12.03.2025 09:20;4",
        "1. Aufträge;OG;1 (N 0, E 1, L 0);;nie ausgewertet;;2 Dateien · Soll 0 · 1: 0 · 2a: 0 · 2b: 0 · 2c: 0 · 3a: 0 "
        "· 3b: 0;13.03.2025 10:00;3",
        "1. Aufträge;Projekt;4 (N 1, E 2, L 1);;2 Aufträge;;3 Dateien · Soll 5 · 1: 2 · 2a: 0 · 2b: 1 · 2c: 1 · 3a: 0 "
        "· 3b: 3;13.03.2025 10:00;7",
        "2. Verschoben zwischen Aufträgen;EG;0.01;I100;Stuhl;ART-1;gefunden in OG, Raum 1.01;13.03.2025 10:00;",
        "3. In mehreren Aufträgen gescannt;OG;1.01;I200;;;letzter Scan · Datei scan2.dat;13.03.2025 09:50;2",
        "3. In mehreren Aufträgen gescannt;EG;0.01;I200;;;früherer Scan · Datei scan1.dat;12.03.2025 09:15;2",
        "4. Zuviel im Projekt;EG;0.01;I300;;ART-3;laut Quarn in Raum 2.05;12.03.2025 09:17;",
        "5. Nicht in Quarn erfasst;EG, OG;0.01;X1;;ART-9;;12.03.2025 09:16;2",
        "6. Fehlt im Projekt;EG;0.01;I400;Tisch;ART-4;;;",
        "7. Räume in keinem Auftrag;;2.05;;Archiv;;nicht geprüft;;4",
        "8. Räume in mehreren Aufträgen;;;;Keine Einträge.;;;;",
        "9. Hinweise;OG;;;Der Auftrag OG wurde nie ausgewertet.;;nie ausgewertet;;",
    };
    EXPECT_EQ(csvOf("gesamtauswertung"), expected);
}

TEST_F(ProjectReportsTest, GesamtauswertungCountsTheEntriesOfEachSection)
{
    result->execute("INSERT INTO L_Fehlend (stInvNr, stAuftrag) VALUES (?1, ?2)", {Value("I401"), Value("OG")});
    const std::string text = openProjectReport(settings, *result, report("gesamtauswertung"))->text();
    for (const char* footer : {"1. Aufträge: 2 Aufträge", "2. Verschoben zwischen Aufträgen: 1 Objekt",
                               "3. In mehreren Aufträgen gescannt: 2 Scans", "4. Zuviel im Projekt: 1 Objekt",
                               "5. Nicht in Quarn erfasst: 1 Nummer", "6. Fehlt im Projekt: 2 Objekte",
                               "7. Räume in keinem Auftrag: 1 Raum", "8. Räume in mehreren Aufträgen: keine Einträge",
                               "9. Hinweise: 1 Hinweis"})
        EXPECT_NE(text.find(footer), std::string::npos) << footer << "\n" << text;
}

TEST_F(ProjectReportsTest, AnEmptyProjectResultGivesEverySectionWithoutEntries)
{
    auto empty = Database::inMemory();
    createProjectResultSchema(*empty);
    const auto r = openProjectReport(settings, *empty, report("gesamtauswertung"));
    ASSERT_EQ(r->model().rowCount(), 9u);
    const std::string text = r->text();
    EXPECT_NE(text.find("1. Aufträge: keine Einträge"), std::string::npos) << text;
    EXPECT_NE(text.find("9. Hinweise: keine Einträge"), std::string::npos) << text;
}

TEST_F(ProjectReportsTest, EachSectionOfTheGesamtauswertungSaysWhatItHoldsInLinesThatFitThePage)
{
    auto empty = Database::inMemory();
    createProjectResultSchema(*empty);
    const auto r = openProjectReport(settings, *empty, report("gesamtauswertung"));
    const ReportModel& m = r->model();
    const ReportLayout& layout = r->layout();
    ASSERT_EQ(m.groups(0).size(), 9u);
    std::vector<std::string> firstLines;
    for (const RowRange& section : m.groups(0)) {
        for (const TextTemplate& line : m.definition().groups[0].header) {
            const std::string text = m.evaluate(line, section);
            EXPECT_FALSE(text.empty());
            EXPECT_LE(layout.typography().advance(FontRole::Group, QString::fromStdString(text)),
                      layout.right() - layout.left() - 20)
                << text;
        }
        firstLines.push_back(m.evaluate(m.definition().groups[0].header.at(1), section));
    }
    EXPECT_EQ(firstLines[1], "Objekte, die in ihrem Auftrag fehlen (3b) und im Raum eines anderen Auftrags gescannt "
                             "wurden: Sie zählen weder als fehlend noch als zuviel.");
    EXPECT_EQ(firstLines[2], "Jeder Scan einer Nummer, die in mehr als einem Auftrag gescannt wurde (doppelt gezählt "
                             "oder wirklich umgestellt), der letzte Scan zuerst.");
    EXPECT_EQ(firstLines[5], "Objekte, die in ihrem Auftrag fehlen (3b) und in keinem Auftrag gescannt wurden.");
    EXPECT_EQ(firstLines[6], "Räume der Gebäudestruktur, die keinem Auftrag gehören: Niemand hat sie geprüft.");
}

TEST_F(ProjectReportsTest, PdfIsWrittenAndTheProjectResultStaysUnchangedAndWritable)
{
    const std::string pdf = dir.file("gesamt.pdf");
    writeProjectReport(settings, *result, report("gesamtauswertung"), ReportFormat::Pdf, pdf);
    EXPECT_EQ(readFile(pdf).rfind("%PDF", 0), 0u);
    const std::string xlsx = dir.file("fortschritt.xlsx");
    writeProjectReport(settings, *result, report("fortschritt"), ReportFormat::Xlsx, xlsx);
    EXPECT_EQ(readFile(xlsx).rfind("PK", 0), 0u);
    EXPECT_EQ(toText(result->scalar("SELECT count(*) FROM P_Raum")), "4");
    // The result's owner may go on changing it.
    EXPECT_EQ(result->execute("DELETE FROM L_Hinweis"), 1);
}

TEST_F(ProjectReportsTest, AFileThatCantBeWrittenIsAReportErrorAndLeavesNothing)
{
    const std::string path = dir.file("fehlt/gesamt.csv");
    EXPECT_THROW(writeProjectReport(settings, *result, report("gesamtauswertung"), ReportFormat::Csv, path),
                 ReportError);
    EXPECT_FALSE(std::filesystem::exists(dir.file("fehlt")));
}

TEST_F(ProjectReportsTest, AMissingReportFileIsNamedInTheError)
{
    settings.gstAppPfad = dir.file("Anderswo");
    try {
        openProjectReport(settings, *result, report("fortschritt"));
        FAIL() << "no error";
    } catch (const ReportError& e) {
        EXPECT_NE(std::string(e.what()).find("invfortschritt.rpt' wurde nicht gefunden."), std::string::npos)
            << e.what();
    }
    // The result database can be changed after the failed report as before.
    EXPECT_EQ(result->execute("DELETE FROM L_Hinweis"), 1);
}

} // namespace
} // namespace qi::test
