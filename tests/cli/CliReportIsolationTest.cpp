// Each program's reports show its own order: two projects on one program folder, whose
// shared report database every program relinks when it opens an order. Two qinventur-cli
// runs at the same time, and the work window's logic with a command relinking the shared
// file between its opening of the order and its report; and the reports of a project that
// has no "Report" folder while another program holds it.

#include "CliFixture.h"

#include "CInventurDb.h"
#include "FileSystem.h"
#include "HoldingChild.h"
#include "LinkedDatabase.h"
#include "Orders.h"
#include "ProjectLock.h"
#include "Report.h"
#include "ReportDatabase.h"
#include "ReportMenus.h"
#include "Startup.h"
#include "frmWork.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

/// qinventur-cli started without waiting for it; standard output and error to files.
pid_t startCli(const std::string& program, const std::vector<std::string>& args, const std::string& log)
{
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    std::fflush(stdout);
    const pid_t pid = fork();
    if (pid == 0) {
        const int out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int in = ::open("/dev/null", O_RDONLY);
        if (out < 0 || in < 0)
            _exit(126);
        dup2(in, 0);
        dup2(out, 1);
        dup2(out, 2);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    return pid;
}

int waitFor(pid_t pid)
{
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The lines of a CSV written by the program: the heading, then the rows (byte-order mark dropped).
std::vector<std::string> csvLines(const std::string& file)
{
    std::string text = readFile(file);
    if (text.rfind("\xEF\xBB\xBF", 0) == 0)
        text.erase(0, 3);
    return linesOf(text);
}

/// The rows of a report's pages as text (lines that show a row start with two blanks and
/// separate their cells by " | ").
std::vector<std::string> textRows(const std::string& text)
{
    std::vector<std::string> rows;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.rfind("  ", 0) == 0 && line.find(" | ") != std::string::npos)
            rows.push_back(line.substr(2));
    return rows;
}

class CliReportIsolationTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        // The demo project: the order "Nord" of the ground floor (rooms 100x) with its scans.
        prepareOrder("Nord");
        expectCli(0, {"auswerten", "Nord"});
        // Another project beside it, set up by the program itself (no "Report" folder), with
        // more objects in Quarn: the order "Dup" of the second building's rooms (200x), marked
        // as looked at, so that their objects are missing.
        demo::Sizes sizes = demo::smallSizes();
        sizes.inventarObjects = 90;
        otherDir = root.file("Andere");
        demo::writeDemoProject(sizes, otherDir, "");
        expectCli(0, {"--projekt", otherDir, "anlegen", "Dup", "--mitarbeiter", "Schulz"});
        const demo::Installation other = demo::buildInstallation(sizes);
        std::vector<std::string> args = {"--projekt", otherDir, "raeume", "Dup", "--setzen"};
        int floors = 0;
        for (const demo::Node& n : other.nodes)
            if (n.typ == 3 && ++floors == 2)
                for (const demo::Room* r : other.roomsOfFloor(n.id))
                    args.push_back(r->nr + ":L");
        ASSERT_GT(args.size(), 5u);
        expectCli(0, args);
    }

    /// Writes a report of the demo's order "Nord" as CSV; its lines.
    std::vector<std::string> nordReport(const std::string& report, const std::string& file)
    {
        expectCli(0, {"bericht", "Nord", report, "--format", "csv", "--ausgabe", file});
        return csvLines(file);
    }
    /// Writes a report of the other project's order "Dup" as CSV; its lines.
    std::vector<std::string> dupReport(const std::string& report, const std::string& file)
    {
        expectCli(0, {"--projekt", otherDir, "bericht", "Dup", report, "--format", "csv", "--ausgabe", file});
        return csvLines(file);
    }

    std::string otherDir;
};

/// Every row of the report "raumerfassung" belongs to rooms whose numbers begin with `prefix`.
void expectRoomsOf(const std::vector<std::string>& lines, const std::string& prefix, const std::string& what)
{
    ASSERT_GT(lines.size(), 1u) << what;
    for (std::size_t i = 1; i < lines.size(); ++i)
        EXPECT_EQ(lines[i].rfind(prefix, 0), 0u) << what << ": " << lines[i];
}

TEST_F(CliReportIsolationTest, TwoReportRunsOnTwoProjectsAtTheSameTimeEachWriteTheirOwnOrder)
{
    // What each run writes when it runs alone.
    const std::vector<std::string> nordRooms = nordReport("raumerfassung", root.file("nord-allein.csv"));
    const std::vector<std::string> nordDiff = nordReport("differenz", root.file("nord-diff-allein.csv"));
    const std::vector<std::string> dupRooms = dupReport("raumerfassung", root.file("dup-allein.csv"));
    const std::vector<std::string> dupDiff = dupReport("differenz", root.file("dup-diff-allein.csv"));
    expectRoomsOf(nordRooms, "100", "Nord");
    expectRoomsOf(dupRooms, "200", "Dup");
    ASSERT_GT(nordDiff.size(), 1u);
    ASSERT_GT(dupDiff.size(), 1u);
    ASSERT_NE(nordDiff, dupDiff);

    // Both at once, again and again, each started first in turn and each report in turn: every
    // run writes exactly what it writes alone.
    constexpr int kRounds = 30;
    for (int round = 0; round < kRounds; ++round) {
        const bool diff = round % 4 >= 2;
        const std::string report = diff ? "differenz" : "raumerfassung";
        const std::string nordOut = root.file("nord-" + std::to_string(round) + ".csv");
        const std::string dupOut = root.file("dup-" + std::to_string(round) + ".csv");
        const std::vector<std::string> nordArgs = {"bericht", "Nord", report, "--format", "csv", "--ausgabe", nordOut};
        const std::vector<std::string> dupArgs = {"--projekt", otherDir, "bericht", "Dup", report, "--format", "csv",
                                                  "--ausgabe", dupOut};
        const std::string nordLog = root.file("nord.log"), dupLog = root.file("dup.log");
        pid_t nord = -1, dup = -1;
        if (round % 2 == 0) {
            nord = startCli(program, nordArgs, nordLog);
            dup = startCli(program, dupArgs, dupLog);
        } else {
            dup = startCli(program, dupArgs, dupLog);
            nord = startCli(program, nordArgs, nordLog);
        }
        ASSERT_EQ(waitFor(nord), 0) << "round " << round << ": " << readFile(nordLog);
        ASSERT_EQ(waitFor(dup), 0) << "round " << round << ": " << readFile(dupLog);
        EXPECT_EQ(csvLines(nordOut), diff ? nordDiff : nordRooms) << "round " << round;
        EXPECT_EQ(csvLines(dupOut), diff ? dupDiff : dupRooms) << "round " << round;
        if (!diff) {
            expectRoomsOf(csvLines(nordOut), "100", "Nord, round " + std::to_string(round));
            expectRoomsOf(csvLines(dupOut), "200", "Dup, round " + std::to_string(round));
        }
    }
}

TEST_F(CliReportIsolationTest, TheWorkWindowsReportShowsItsOrderAfterACommandRelinkedTheSharedFile)
{
    // The program of the windows on the demo project, with the order "Nord" open for work.
    Settings settings;
    settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    ScriptedUserInteraction ui;
    StartupResult start = RunStartup(programDir, settings, ui);
    ASSERT_TRUE(start.completed);
    CAuftragRecColl orders;
    ASSERT_TRUE(start.inventurDb->ReadAllAuftragRec2Coll(orders));
    CAuftragRec* nord = nullptr;
    orders.ResetIndex();
    for (CAuftragRec* r = nullptr; orders.GetNext(r);)
        if (r->stBezeichung == "Nord")
            nord = r;
    ASSERT_NE(nord, nullptr);
    CAuftragDb db(ui);
    ASSERT_EQ(OpenOrderDatabase(*start.inventurDb, settings, ui, *nord, db, OrderAccess::Work), OrderResult::Done);
    frmWork work(db, settings, ui);
    work.f_QGebDb = start.gebDb.get();
    ASSERT_TRUE(work.Init());
    const std::string shared = programDir + "/QInventurRpt.mdb";
    EXPECT_EQ(fileNamePart(LinkedDatabase::open(shared)->connect("t_Raum")), "Nord.mdb");

    for (int round = 0; round < 3; ++round) {
        // Another program opens its order of the other project: the shared file is relinked to it.
        expectCli(0, {"--projekt", otherDir, "bericht", "Dup", "artikel", "--ausgabe", root.file("dup.pdf")});
        ASSERT_EQ(fileNamePart(LinkedDatabase::open(shared)->connect("t_Raum")), "Dup.mdb");

        const std::size_t before = ui.reports.size();
        work.mnuReportFkt_Click(reportmenu::Raumerfassung);
        ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
        ASSERT_EQ(ui.reports.size(), before + 1);
        const RecordedReport& r = ui.reports.back();
        EXPECT_EQ(r.dataFile, settings.privateReportDatabase->file());
        const std::string text = Report::open(r.reportFile, r.dataFile, r.title)->text();
        EXPECT_NE(text.find("| Auftrag: Nord |"), std::string::npos) << text;
        EXPECT_NE(text.find("Projekt: " + displayFolder(demoDir) + " |"), std::string::npos) << text;
        EXPECT_EQ(text.find("Dup"), std::string::npos) << text;
        EXPECT_EQ(text.find(displayFolder(otherDir)), std::string::npos) << text;
        const std::vector<std::string> rows = textRows(text);
        ASSERT_FALSE(rows.empty()) << text;
        for (const std::string& row : rows)
            EXPECT_EQ(row.rfind("100", 0), 0u) << row;
    }
}

TEST_F(CliReportIsolationTest, EachProgramKeepsItsCopyInAFolderOfItsUserAloneAndRemovesIt)
{
    std::string folder, file;
    {
        PrivateReportDatabase copy;
        EXPECT_EQ(copy.folder(), ""); // made when first needed
        copy.copyFrom(programDir + "/QInventurRpt.mdb");
        folder = copy.folder();
        file = copy.file();
        ASSERT_FALSE(folder.empty());
        EXPECT_EQ(file, folder + "/QInventurRpt.mdb");
        struct stat st {};
        ASSERT_EQ(::stat(folder.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0700u);
        EXPECT_TRUE(fileExists(file));
        EXPECT_EQ(LinkedDatabase::open(file)->links().size(), LinkedDatabase::open(programDir + "/QInventurRpt.mdb")
                                                                   ->links()
                                                                   .size());
    }
    EXPECT_FALSE(fs::exists(fs::u8path(folder)));
    // A run of qinventur-cli leaves no folder of its own behind (it made one: it wrote a report).
    const std::string tmp = root.file("tmp");
    fs::create_directories(tmp);
    setenv("TMPDIR", tmp.c_str(), 1);
    const CliRun r = cli({"bericht", "Nord", "raumerfassung", "--format", "csv", "--ausgabe", root.file("n.csv")});
    unsetenv("TMPDIR");
    EXPECT_EQ(r.code, 0) << r.err;
    for (const auto& entry : fs::directory_iterator(fs::u8path(tmp)))
        EXPECT_NE(entry.path().filename().string().rfind("QInventur-", 0), 0u) << entry.path();
}

TEST_F(CliReportIsolationTest, AProjectWithoutReportFolderPrintsWhileAnotherProgramHoldsIt)
{
    // The other project was seeded by the program: its report copies lie in the project folder.
    EXPECT_FALSE(fs::exists(fs::u8path(otherDir + "/Report")));
    EXPECT_TRUE(fileExists(otherDir + "/Reportinvdiff.rpt"));
    const std::vector<std::string> alone = dupReport("differenz", root.file("dup-frei.csv"));
    ASSERT_GT(alone.size(), 1u);

    const OtherProgram holder(otherDir);
    ASSERT_TRUE(holder.held());
    const std::string out = root.file("dup-gesperrt.csv");
    const CliRun r = expectCli(0, {"--projekt", otherDir, "bericht", "Dup", "differenz", "--ausgabe", out, "--format",
                                   "csv"});
    EXPECT_EQ(r.out, "Bericht 'differenz' geschrieben: " + displayPath(out) + "\n");
    EXPECT_EQ(csvLines(out), alone);
    const std::string fehlend = root.file("dup-fehlend.csv");
    expectCli(0, {"--projekt", otherDir, "bericht", "Dup", "fehlend", "--ausgabe", fehlend, "--format", "csv"});
    EXPECT_GT(csvLines(fehlend).size(), 1u);

    // The work window's menus in read-only mode show the template's report files.
    demo::writeQuarnIni(programDir + "/Quarn.ini", otherDir);
    Settings settings;
    settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    ScriptedUserInteraction ui;
    StartupResult start = RunStartup(programDir, settings, ui);
    ASSERT_TRUE(start.completed);
    ASSERT_TRUE(settings.readOnly);
    ASSERT_EQ(ui.messages.size(), 1u); // who holds the project
    CAuftragRecColl orders;
    ASSERT_TRUE(start.inventurDb->ReadAllAuftragRec2Coll(orders));
    orders.ResetIndex();
    CAuftragRec* dup = nullptr;
    ASSERT_TRUE(orders.GetNext(dup));
    CAuftragDb db(ui);
    ASSERT_EQ(OpenOrderDatabase(*start.inventurDb, settings, ui, *dup, db, OrderAccess::Work), OrderResult::Done);
    frmWork work(db, settings, ui);
    work.f_QGebDb = start.gebDb.get();
    ASSERT_TRUE(work.Init());
    const std::string templates = programDir + "/Leeres Projekt/Report/";

    work.mnuReportFkt_Click(reportmenu::Differenz);
    ASSERT_EQ(ui.messages.size(), 1u) << ui.messages.back().text;
    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].reportFile, templates + "invdiff.rpt");
    const auto diff = Report::open(ui.reports[0].reportFile, ui.reports[0].dataFile, ui.reports[0].title);
    EXPECT_EQ(diff->model().rowCount(), alone.size() - 1);

    work.mnuFehlerFkt_Click(fehlermenu::Fehlend);
    ASSERT_EQ(ui.messages.size(), 1u) << ui.messages.back().text;
    ASSERT_EQ(ui.reports.size(), 2u);
    EXPECT_EQ(ui.reports[1].reportFile, templates + "invfehlend.rpt");
    const auto missing = Report::open(ui.reports[1].reportFile, ui.reports[1].dataFile, ui.reports[1].title);
    EXPECT_GT(missing->model().rowCount(), 0u);
}

} // namespace
} // namespace qi::test
