// The whole stocktake on the command line, as a process on the demo project with two
// orders: the overview table (its figures checked against what the order commands print
// and what the order databases hold), each list across orders, the project's reports as
// files, the refusals of wrong calls, and all of it while another program holds the project.

#include "CliFixture.h"

#include "FileSystem.h"
#include "HoldingChild.h"
#include "ProjectLock.h"
#include "ProjectResultSchema.h"
#include "ReportModel.h"

#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

const char* kOverviewHeading = "Auftrag\tStand\tRäume N\tRäume E\tRäume L\tRäume fertig %\tDateien\tScans\tErwartet\t"
                               "Am Platz\tGefunden %\t1\t2a\t2b\t2c\t3a\t3b\tLetzter Scan";

/// The overview's columns by heading.
enum Column { Name, Stand, N, E, L, Done, Files, Scans, Expected, InPlace, Percent, C1, C2a, C2b, C2c, C3a, C3b, Last };

const std::map<std::string, std::string> kListHeadings = {
    {"verschoben", "Inventar-Nr.\tBezeichnung\tArtikel\tAuftrag Soll\tRaum Soll\tAuftrag Ist\tRaum Ist\tDatum\tUhrzeit"},
    {"doppelt", "Inventar-Nr.\tAuftrag\tRaum\tDatum\tUhrzeit\tDatei\tAnzahl Aufträge\tRang"},
    {"zuviel", "Auftrag\tRaum\tInventar-Nr.\tArtikel\tRaum laut Quarn\tDatum\tUhrzeit"},
    {"unbekannt", "Inventar-Nr.\tArtikel\tAufträge\tRaum\tScans\tDatum"},
    {"fehlend", "Inventar-Nr.\tBezeichnung\tArtikel\tAuftrag\tRaum"},
    {"ungeprueft", "Raum-ID\tRaum\tBezeichnung\tErwartet\tPrüfung"},
    {"ueberschneidung", "Raum-ID\tRaum\tBezeichnung\tAufträge\tAnzahl Aufträge"},
    {"hinweise", "Auftrag\tArt\tText\tDatei"},
};

/// The demo project with the order "EG" (the ground floor, both of its files, evaluated) and the
/// order "OG" (two rooms of another floor, the scans of one of them, never evaluated).
class CliProjectTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        prepareOrder("EG");
        const CliRun evaluated = expectCli(0, {"auswerten", "EG"});
        for (const std::string& line : linesOf(evaluated.out)) {
            const std::vector<std::string> f = splitFields(line, '\t');
            if (f.size() == 2 && f[0] != "Kategorie")
                categories[f[0].substr(0, f[0].find(' '))] = f[1];
        }

        // The lines of the demo's file that are scans of a room outside the ground floor.
        const std::vector<std::string> egRooms = orderRooms();
        std::string ogScans;
        for (const std::string& line : linesOf(readFile(scanFile("Scan_Raum_ausserhalb.dat")))) {
            const std::vector<std::string> f = splitFields(line, ',');
            if (f.size() < 8)
                continue;
            std::string room = f[4];
            room.erase(0, std::min(room.find_first_not_of('0'), room.size()));
            if (std::find(egRooms.begin(), egRooms.end(), room) != egRooms.end())
                continue;
            ogRoom = room;
            ogScans += line + "\r\n";
            ++ogScanCount;
        }
        ASSERT_FALSE(ogRoom.empty());
        writeFile(root.file("og.dat"), ogScans);
        for (const demo::Room& r : inst.rooms)
            if (r.nr != ogRoom && std::find(egRooms.begin(), egRooms.end(), r.nr) == egRooms.end()) {
                ogEmptyRoom = r.nr;
                break;
            }
        expectCli(0, {"anlegen", "OG"});
        expectCli(0, {"raeume", "OG", "--setzen", ogRoom, ogEmptyRoom});
        expectCli(0, {"hinzufuegen", "OG", root.file("og.dat")});
    }

    /// The overview's lines split into their fields.
    std::vector<std::vector<std::string>> overview(const CliRun& r)
    {
        std::vector<std::vector<std::string>> rows;
        for (const std::string& line : linesOf(r.out))
            rows.push_back(splitFields(line, '\t'));
        return rows;
    }

    std::map<std::string, std::string> categories; ///< "1", "2a" ... → the count `auswerten` printed for EG
    std::string ogRoom, ogEmptyRoom;
    int ogScanCount = 0;
};

std::string percentOf(std::int64_t part, std::int64_t whole)
{
    return formatNumber(whole > 0 ? 100.0 * double(part) / double(whole) : 0.0, 1, false);
}

TEST_F(CliProjectTest, OverviewHasItsHeadingARowPerOrderWithTheOrdersOwnFiguresAndTheProject)
{
    const CliRun r = expectCli(0, {"projekt"});
    EXPECT_EQ(r.err, "");
    const auto rows = overview(r);
    ASSERT_EQ(rows.size(), 4u) << r.out;
    EXPECT_EQ(linesOf(r.out)[0], kOverviewHeading);
    for (std::size_t i = 1; i < rows.size(); ++i)
        ASSERT_EQ(rows[i].size(), 18u) << i;

    // EG: its evaluation as `auswerten` printed it, its rooms, files and scans as its database holds them.
    const auto& eg = rows[1];
    EXPECT_EQ(eg[Name], "EG");
    EXPECT_EQ(eg[Stand], kStandAktuell);
    const std::string egFile = orderFile("EG");
    EXPECT_EQ(eg[N], std::to_string(count(egFile, "SELECT count(*) FROM T_Raum WHERE stStatus = 'N'")));
    EXPECT_EQ(eg[E], std::to_string(count(egFile, "SELECT count(*) FROM T_Raum WHERE stStatus = 'E'")));
    EXPECT_EQ(eg[L], "0");
    EXPECT_EQ(eg[Done], percentOf(std::stoll(eg[E]), std::int64_t(orderRooms().size())));
    EXPECT_EQ(eg[Files], "2");
    EXPECT_EQ(eg[Scans], std::to_string(count(egFile, "SELECT count(*) FROM T_DatInventur")));
    const char* names[] = {"1", "2a", "2b", "2c", "3a", "3b"};
    for (int c = C1; c <= C3b; ++c)
        EXPECT_EQ(eg[std::size_t(c)], categories.count(names[c - C1]) ? categories[names[c - C1]] : "0")
            << names[c - C1];
    EXPECT_EQ(eg[InPlace], eg[C1]);
    EXPECT_EQ(eg[Percent], percentOf(std::stoll(eg[InPlace]), std::stoll(eg[Expected])));
    EXPECT_EQ(eg[Last].substr(0, 10), "2025-03-17");

    // OG: never evaluated, one room scanned, one not.
    const auto& og = rows[2];
    EXPECT_EQ(og[Name], "OG");
    EXPECT_EQ(og[Stand], kStandNie);
    EXPECT_EQ(og[N], "1");
    EXPECT_EQ(og[E], "1");
    EXPECT_EQ(og[L], "0");
    EXPECT_EQ(og[Done], "50,0");
    EXPECT_EQ(og[Files], "1");
    EXPECT_EQ(og[Scans], std::to_string(ogScanCount));
    EXPECT_EQ(og[Percent], percentOf(std::stoll(og[InPlace]), std::stoll(og[Expected])));

    // The project: the orders added up, its shares of the sums.
    const auto& p = rows[3];
    EXPECT_EQ(p[Name], "Projekt");
    EXPECT_EQ(p[Stand], "");
    for (int c : {N, E, L, Files, Scans, Expected, InPlace, C1, C2a, C2b, C2c, C3a, C3b})
        EXPECT_EQ(std::stoll(p[std::size_t(c)]), std::stoll(eg[std::size_t(c)]) + std::stoll(og[std::size_t(c)]))
            << c;
    EXPECT_EQ(p[Percent], percentOf(std::stoll(p[InPlace]), std::stoll(p[Expected])));
    EXPECT_EQ(p[Done], percentOf(std::stoll(p[E]) + std::stoll(p[L]),
                                 std::stoll(p[N]) + std::stoll(p[E]) + std::stoll(p[L])));
    EXPECT_EQ(p[Last], std::max(eg[Last], og[Last]));
}

TEST_F(CliProjectTest, EveryListHasItsHeadingLineAndRowsOfItsColumns)
{
    for (const std::string& name : listNames()) {
        SCOPED_TRACE(name);
        const CliRun r = expectCli(0, {"projekt", "--liste", name});
        EXPECT_EQ(r.err, "");
        const std::vector<std::string> lines = linesOf(r.out);
        ASSERT_FALSE(lines.empty());
        ASSERT_TRUE(kListHeadings.count(name));
        EXPECT_EQ(lines[0], kListHeadings.at(name));
        const std::size_t columns = splitFields(lines[0], '\t').size();
        for (std::size_t i = 1; i < lines.size(); ++i)
            EXPECT_EQ(splitFields(lines[i], '\t').size(), columns) << lines[i];
    }
}

TEST_F(CliProjectTest, ListsTellTheCasesOfTheseTwoOrders)
{
    // OG never evaluated: a hint; its room without scans: another.
    const std::vector<std::string> hints = linesOf(expectCli(0, {"projekt", "--liste", "hinweise"}).out);
    EXPECT_TRUE(std::any_of(hints.begin(), hints.end(), [](const std::string& l) {
        return l.rfind(std::string("OG\t") + kHinweisNieAusgewertet + "\t", 0) == 0;
    })) << expectCli(0, {"projekt", "--liste", "hinweise"}).out;
    EXPECT_TRUE(std::any_of(hints.begin(), hints.end(), [](const std::string& l) {
        return l.rfind(std::string("OG\t") + kHinweisRaeumeN + "\t", 0) == 0;
    }));
    // The rooms of the building that neither order has, each once, "nicht geprüft".
    const std::vector<std::string> unchecked = linesOf(expectCli(0, {"projekt", "--liste", "ungeprueft"}).out);
    EXPECT_EQ(unchecked.size() - 1, inst.rooms.size() - orderRooms().size() - 2);
    for (std::size_t i = 1; i < unchecked.size(); ++i)
        EXPECT_EQ(splitFields(unchecked[i], '\t').back(), kNichtGeprueft);
    // No room belongs to both orders.
    EXPECT_EQ(linesOf(expectCli(0, {"projekt", "--liste", "ueberschneidung"}).out).size(), 1u);
}

TEST_F(CliProjectTest, AnUnknownListIsRefusedWithTheNamesOfTheListsBeforeTheProjectIsRead)
{
    const auto before = treeDigest(root.path());
    const CliRun r = expectCli(2, {"projekt", "--liste", "alles"});
    EXPECT_EQ(r.err, "[qinventur-cli] Eine Liste 'alles' gibt es nicht. Listen: verschoben, doppelt, zuviel, "
                     "unbekannt, fehlend, ungeprueft, ueberschneidung, hinweise.\n");
    EXPECT_EQ(r.out, "");
    // The names are the command line's, in its letter case.
    EXPECT_EQ(expectCli(2, {"projekt", "--liste", "Verschoben"}).out, "");
    EXPECT_EQ(treeDigest(root.path()), before);
}

TEST_F(CliProjectTest, WrongCallsOfTheProjectCommandsEndWithTheUsageCode)
{
    CliRun r = expectCli(2, {"projekt", "EG"});
    EXPECT_EQ(r.err, "[qinventur-cli] Zu viele Argumente.\nAufruf: qinventur-cli projekt [--liste LISTE]\n"
                     "Hilfe: qinventur-cli projekt --help\n");
    r = expectCli(2, {"projekt", "--liste"});
    EXPECT_EQ(r.err.rfind("[qinventur-cli] Die Option --liste braucht einen Wert.\n", 0), 0u) << r.err;

    const std::string synopsis =
        "bericht (NAME BERICHT | --projekt-weit PROJEKTBERICHT) --ausgabe PFAD [--format pdf|xlsx|csv]";
    r = expectCli(2, {"bericht", "EG", "differenz", "--projekt-weit", "fortschritt", "--ausgabe", "x.pdf"});
    EXPECT_EQ(r.err, "[qinventur-cli] Mit --projekt-weit nimmt der Befehl bericht keine Argumente.\nAufruf: "
                     "qinventur-cli " + synopsis + "\nHilfe: qinventur-cli bericht --help\n");
    r = expectCli(2, {"bericht", "--projekt-weit", "inventur", "--ausgabe", root.file("x.pdf")});
    EXPECT_EQ(r.err, "[qinventur-cli] Einen Projektbericht 'inventur' gibt es nicht. Projektberichte: "
                     "gesamtauswertung, fortschritt, protokoll.\n");
    r = expectCli(2, {"bericht", "--projekt-weit", "fortschritt"});
    EXPECT_EQ(r.err, "[qinventur-cli] Es fehlt --ausgabe PFAD.\n");
    r = expectCli(2, {"bericht", "--projekt-weit", "fortschritt", "--ausgabe", root.file("x.txt")});
    EXPECT_EQ(r.err, "[qinventur-cli] Die Endung von '" + root.file("x.txt") +
                         "' nennt kein Format (pdf, xlsx oder csv); geben Sie --format an.\n");
    // Without --projekt-weit the order's report still needs its two arguments.
    r = expectCli(2, {"bericht", "EG", "--ausgabe", root.file("x.pdf")});
    EXPECT_EQ(r.err.rfind("[qinventur-cli] Es fehlt ein Argument.\n", 0), 0u) << r.err;
    EXPECT_FALSE(fs::exists(root.file("x.pdf")));
}

TEST_F(CliProjectTest, ProjectReportsAreWrittenInEachFormatAndAnnouncedAfterwards)
{
    const std::string csv = root.file("fortschritt.csv");
    CliRun r = expectCli(0, {"bericht", "--projekt-weit", "fortschritt", "--ausgabe", csv});
    EXPECT_EQ(r.out, "Bericht 'fortschritt' geschrieben: " + displayPath(csv) + "\n");
    EXPECT_EQ(r.err, "");
    const std::vector<std::string> lines = linesOf(readFile(csv).substr(3));
    // A line per room of each order.
    ASSERT_EQ(lines.size(), 1 + orderRooms().size() + 2);
    EXPECT_EQ(lines[0], "Auftrag;Stand;Raum;Bezeichnung;Status;Erwartet lt. Quarn;Am Platz gefunden;Gescannt;"
                        "Gefunden %;Letzter Scan");
    EXPECT_EQ(lines[1].rfind("EG;aktuell;", 0), 0u) << lines[1];
    EXPECT_EQ(lines.back().rfind(std::string("OG;") + kStandNie + ";", 0), 0u) << lines.back();

    const std::string pdf = root.file("gesamt.pdf");
    r = expectCli(0, {"bericht", "--projekt-weit", "gesamtauswertung", "--ausgabe", pdf});
    EXPECT_EQ(r.out, "Bericht 'gesamtauswertung' geschrieben: " + displayPath(pdf) + "\n");
    EXPECT_EQ(readFile(pdf).rfind("%PDF", 0), 0u);
    const std::string xlsx = root.file("gesamt.daten");
    r = expectCli(0, {"bericht", "--projekt-weit=gesamtauswertung", "--format", "xlsx", "--ausgabe", xlsx});
    EXPECT_EQ(readFile(xlsx).rfind("PK", 0), 0u);
}

TEST_F(CliProjectTest, AReportThatCantBeWrittenFailsWithoutAnnouncingAFile)
{
    const std::string path = root.file("fehlt/gesamt.pdf");
    const CliRun r = expectCli(1, {"bericht", "--projekt-weit", "gesamtauswertung", "--ausgabe", path});
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err.rfind("[QInventur] qinventur-cli.bericht\n", 0), 0u) << r.err;
    EXPECT_NE(r.err.find(displayPath(path)), std::string::npos) << r.err;
    EXPECT_FALSE(fs::exists(root.file("fehlt")));
}

TEST_F(CliProjectTest, EverythingWorksWhileAnotherProgramHoldsTheProjectAndNothingOfItChanges)
{
    const std::string alone = expectCli(0, {"projekt"}).out;
    const std::string aloneList = expectCli(0, {"projekt", "--liste", "doppelt"}).out;
    const std::string aloneCsv = root.file("allein.csv");
    expectCli(0, {"bericht", "--projekt-weit", "gesamtauswertung", "--ausgabe", aloneCsv});

    const OtherProgram holder(demoDir);
    ASSERT_TRUE(holder.held());
    const auto before = treeDigest(demoDir);
    const CliRun r = expectCli(0, {"projekt"});
    EXPECT_EQ(r.out, alone);
    EXPECT_EQ(expectCli(0, {"projekt", "--liste", "doppelt"}).out, aloneList);
    const std::string heldCsv = root.file("gesperrt.csv");
    const CliRun report = expectCli(0, {"bericht", "--projekt-weit", "gesamtauswertung", "--ausgabe", heldCsv});
    EXPECT_EQ(report.out, "Bericht 'gesamtauswertung' geschrieben: " + displayPath(heldCsv) + "\n");
    EXPECT_EQ(readFile(heldCsv), readFile(aloneCsv));
    EXPECT_EQ(treeDigest(demoDir), before);
}

TEST_F(CliProjectTest, TheProjectsOwnReportFileIsUsedAndAnErrorInItIsToldWithItsLine)
{
    fs::create_directories(demoDir + "/Report");
    writeFile(demoDir + "/Report/invgesamt.rpt", "[Bericht]\nTitel = Eigene Auswertung\nFarbe = rot\n");
    const std::string pdf = root.file("eigen.pdf");
    const CliRun r = expectCli(1, {"bericht", "--projekt-weit", "gesamtauswertung", "--ausgabe", pdf});
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err.rfind("[QInventur] qinventur-cli.bericht\nFehler in der Berichtsdatei '", 0), 0u) << r.err;
    EXPECT_NE(r.err.find("invgesamt.rpt', Zeile 3:"), std::string::npos) << r.err;
    EXPECT_FALSE(fs::exists(pdf));

    writeFile(demoDir + "/Report/invgesamt.rpt",
              "[Bericht]\nTitel = Eigene Auswertung\nQuelle = P_Auftrag\n[Spalte]\nFeld = stAuftrag\n");
    const std::string csv = root.file("eigen.csv");
    expectCli(0, {"bericht", "--projekt-weit", "gesamtauswertung", "--ausgabe", csv});
    EXPECT_EQ(readFile(csv), "\xEF\xBB\xBFstAuftrag\r\nEG\r\nOG\r\n");
}

TEST_F(CliProjectTest, OnATerminalALongRunShowsTheOverviewsProgressLine)
{
    int code = -1;
    const std::string shown = runOnTerminal(program, {"projekt"}, code);
    EXPECT_EQ(code, 0);
    EXPECT_NE(shown.find("Projektübersicht"), std::string::npos) << shown;
    EXPECT_NE(shown.find(kOverviewHeading), std::string::npos) << shown;
    // Without a terminal there is no progress line.
    EXPECT_EQ(expectCli(0, {"projekt"}).err, "");
}

TEST_F(CliProjectTest, HelpNamesEveryListAndBothProjectReports)
{
    const std::string projekt = expectCli(0, {"projekt", "--help"}).out;
    for (const std::string& name : listNames())
        EXPECT_NE(projekt.find("  " + name + " "), std::string::npos) << name;
    const std::string bericht = expectCli(0, {"bericht", "--help"}).out;
    for (const char* name : {"gesamtauswertung", "fortschritt"})
        EXPECT_NE(bericht.find("  " + std::string(name) + " "), std::string::npos) << name;
    EXPECT_NE(bericht.find("  qinventur-cli bericht --projekt-weit gesamtauswertung --ausgabe gesamtauswertung.pdf\n"),
              std::string::npos);
    const std::string overall = expectCli(0, {"--help"}).out;
    EXPECT_NE(overall.find("  projekt        Übersicht über alle Aufträge des Projekts\n"), std::string::npos)
        << overall;
}

class CliEmptyProjectTest : public CliFixture {};

TEST_F(CliEmptyProjectTest, AProjectWithoutOrdersHasTheHeadingAndAProjectLineOfNothing)
{
    const CliRun r = expectCli(0, {"projekt"});
    EXPECT_EQ(r.out, std::string(kOverviewHeading) + "\nProjekt\t\t0\t0\t0\t0,0\t0\t0\t0\t0\t0,0\t0\t0\t0\t0\t0\t0\t\n");
    EXPECT_EQ(expectCli(0, {"projekt", "--liste", "verschoben"}).out, kListHeadings.at("verschoben") + "\n");
}

} // namespace
} // namespace qi::test
