// One writer per project: start-up takes the project's lock; a second program, a project
// folder or register that can't be written, and an order file that can't be written make
// the program look without changing anything. The second program is a process of its
// own; read-only disks are made with mounts of the test's own.

#include "CInventurDb.h"
#include "DemoInstallation.h"
#include "FileDigests.h"
#include "FileSystem.h"
#include "HoldingChild.h"
#include "OwnMounts.h"
#include "ProjectAccess.h"
#include "ReportLinks.h"
#include "Startup.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

namespace qi {
namespace {

namespace fs = std::filesystem;
using test::TempDir;
using test::writeFile;

/// A program folder (template, report database, "Quarn.ini") and a project with Quarn's data,
/// its register and one order "A1" with its rooms.
class ProjectAccessTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        program = dir.file("Programm");
        project = dir.file("Projekt");
        fs::create_directories(program + "/Leeres Projekt/Report");
        fs::create_directories(project + "/Inventur");
        test::makeRegisterDatabase(program + "/Leeres Projekt/QInventur.mdb");
        test::makeOrderDatabase(program + "/Leeres Projekt/QAuftrag.mdb");
        for (const char* r : kReportFiles)
            writeFile(program + "/Leeres Projekt/Report/" + r, std::string("Report ") + r);
        createReportDatabase(program + "/QInventurRpt.mdb");
        writeFile(program + "/Quarn.ini", "[Quarn]\r\nProjekt=" + project + "\r\n");
        inst = demo::buildInstallation(demo::smallSizes());
        demo::writeHostDatabases(inst, project);
        writeFile(project + "/Projekt.ini", "[ODBC]\r\nProjekttyp=ptJet\r\n[Inventur]\r\nModul=INVENTAR\r\n");
    }

    /// The register with the order "A1", whose database holds the first three rooms of the installation.
    void makeOrder()
    {
        test::makeRegisterDatabase(project + "/QInventur.mdb");
        CInventurDb reg;
        reg.setDbPath(project + "/QInventur.mdb");
        ASSERT_TRUE(reg.OpenDb());
        CAuftragRec rec;
        rec.stBezeichung = "A1";
        rec.stPfad = "\\Inventur\\A1.mdb";
        rec.stErsteller = "Meier";
        ASSERT_TRUE(reg.AddNewAuftragRec(&rec));
        test::makeOrderDatabase(orderFile());
        ScriptedUserInteraction quiet;
        CAuftragDb order(quiet);
        order.setDbPath(orderFile());
        ASSERT_TRUE(order.OpenDb());
        order.database()->execute("INSERT INTO T_Auftrag (stAuftrag) VALUES ('A1')");
        for (int r = 0; r < 3; ++r) {
            CRaumRec room;
            room.lIdRB = inst.rooms[std::size_t(r)].id;
            room.stRaumNr = inst.rooms[std::size_t(r)].nr;
            room.ststatus = "E";
            room.stAuftrag = "A1";
            ASSERT_TRUE(order.AddNewRaumRec(&room));
        }
    }
    std::string orderFile() const { return project + "/Inventur/A1.mdb"; }

    StartupResult run(Settings& s, ScriptedUserInteraction& u) { return RunStartup(program, s, u); }

    /// The order "A1" of a started project, opened for work as the main window opens it.
    void openOrder(const Settings& s, CAuftragDb& db, ScriptedUserInteraction& u)
    {
        db.setDbPath(s.gstProjektPfad + "Inventur\\A1.mdb");
        ASSERT_TRUE(OpenOrderForWork(db, s, u)) << db.LastError();
    }

    /// What a program that may only look can still do, and that it changes nothing: the list of
    /// orders, the order's lists, its reports (in a private copy); every change is refused.
    void lookAtTheOrder(const Settings& s, StartupResult& start, ScriptedUserInteraction& u)
    {
        ASSERT_TRUE(start.inventurDb);
        CAuftragRecColl orders;
        ASSERT_TRUE(start.inventurDb->ReadAllAuftragRec2Coll(orders)) << start.inventurDb->LastError();
        ASSERT_EQ(orders.Count(), 1);
        EXPECT_TRUE(start.inventurDb->isReadOnly());

        CAuftragDb db(u);
        openOrder(s, db, u);
        EXPECT_TRUE(db.isReadOnly());
        const std::size_t told = u.messages.size();
        {
            frmWork w(db, s, u);
            w.f_QGebDb = start.gebDb.get();
            ASSERT_TRUE(w.Init());
            ASSERT_TRUE(w.InitData());
            EXPECT_EQ(w.lvRooms.size(), 3u);
            EXPECT_FALSE(w.pbRemoveEnabled);
            u.fileChoices.push_back(project + "/Neu.dat");
            w.pbAdd_Click();
            w.pbNeu_Click();
            EXPECT_EQ(w.MakeArchive(), "");
            ASSERT_EQ(u.messages.size(), told + 3);
            for (std::size_t i = told; i < told + 3; ++i) {
                EXPECT_EQ(u.messages[i].text, accessmsg::OrderReadOnly);
                EXPECT_EQ(u.messages[i].icon, MsgIcon::Exclamation);
                EXPECT_EQ(u.messages[i].title, "Quarn-Inventur");
            }
            EXPECT_EQ(u.fileRequests.size(), 0u);

            // The difference list is made in a private copy, which the report reads.
            w.mnuReportFkt_Click(400);
            ASSERT_EQ(u.messages.size(), told + 3) << u.messages.back().text;
            ASSERT_EQ(u.reports.size(), 1u);
            const std::string privateReportDb = u.reports[0].dataFile;
            EXPECT_EQ(privateReportDb.find(program), std::string::npos) << privateReportDb;
            EXPECT_TRUE(fileExists(privateReportDb));
            auto report = Database::open(privateReportDb, true);
            const std::string linked = toText(report->scalar("SELECT stConnect FROM QI_Links WHERE lower(stName) = 't_differenzliste'"));
            EXPECT_EQ(linked.find(project), std::string::npos) << linked;
            const std::string copy = connectFile(linked);
            EXPECT_GT(toLong(Database::open(copy, true)->scalar("SELECT count(*) FROM T_Differenzliste")), 0);
            report.reset();
            w.mnuFehlerFkt_Click(300);
            ASSERT_EQ(u.messages.size(), told + 3) << u.messages.back().text;
            EXPECT_EQ(u.reports.size(), 2u);
            // The copy of the first report has gone for the second.
            EXPECT_FALSE(fileExists(privateReportDb));
        }
        EXPECT_EQ(toLong(db.database()->scalar("SELECT count(*) FROM T_Differenzliste")), 0);
    }

    static std::string connectFile(const std::string& connect)
    {
        const auto at = connect.find("DATABASE=");
        return at == std::string::npos ? std::string() : connect.substr(at + 9);
    }

    TempDir dir;
    std::string program, project;
    demo::Installation inst;
};

/// A child process that runs start-up on the project and keeps it until it is killed.
pid_t secondProgram(const std::string& programFolder)
{
    return test::startHoldingChild([&](const test::ChildReady& ready) {
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = RunStartup(programFolder, s, u);
        ready(r.completed && r.lock && !s.readOnly && u.messages.empty());
    });
}

std::string lockFileValue(const std::string& project, const std::string& key)
{
    std::istringstream in(test::readFile(project + "/" + ProjectLock::kFileName));
    for (std::string line; std::getline(in, line);)
        if (line.rfind(key + "=", 0) == 0)
            return line.substr(key.size() + 1);
    return {};
}

TEST_F(ProjectAccessTest, TheFirstProgramTakesTheProject)
{
    makeOrder();
    Settings s;
    ScriptedUserInteraction u;
    StartupResult r = run(s, u);
    ASSERT_TRUE(r.completed);
    EXPECT_TRUE(u.messages.empty());
    ASSERT_TRUE(r.lock);
    EXPECT_TRUE(r.lock->held());
    EXPECT_FALSE(s.readOnly);
    EXPECT_FALSE(r.inventurDb->isReadOnly());
    EXPECT_EQ(lockFileValue(project, "Prozess"), std::to_string(getpid()));
    EXPECT_EQ(lockFileValue(project, "Benutzer"), ProjectLock::self().user);
}

TEST_F(ProjectAccessTest, ASecondProgramIsToldWhoWorksOnTheProjectAndOnlyLooksUntilTheFirstIsKilled)
{
    makeOrder();
    const pid_t first = secondProgram(program);
    ASSERT_GT(first, 0);
    const test::FileDigests before = test::digestFiles(dir.path());

    {
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        ASSERT_TRUE(r.completed);
        const LockOwner other = ProjectLock::self();
        const std::string told = "Das Projekt wird bereits von " + other.user + " auf dem Rechner " + other.machine +
                                 " bearbeitet (seit " + lockFileValue(project, "Seit") +
                                 "). Sie können es ansehen, aber nichts ändern.";
        ASSERT_EQ(u.messages.size(), 1u);
        EXPECT_EQ(u.messages[0].text, told);
        EXPECT_EQ(u.messages[0].icon, MsgIcon::Exclamation);
        EXPECT_EQ(u.messages[0].buttons, MsgButtons::Ok);
        EXPECT_EQ(u.messages[0].title, "Quarn-Inventur");
        EXPECT_TRUE(s.readOnly);
        EXPECT_EQ(s.readOnlyReason, told);
        EXPECT_EQ(r.lock, nullptr);
        lookAtTheOrder(s, r, u);
        // Opening the order told nothing more: the project's message was the one.
        EXPECT_EQ(u.messages[0].text, told);
    }
    EXPECT_EQ(test::changedFiles(before, test::digestFiles(dir.path())), "");
    EXPECT_EQ(lockFileValue(project, "Prozess"), std::to_string(first));

    // The first program dies without letting go: its lock goes with it and is taken over.
    kill(first, SIGKILL);
    waitpid(first, nullptr, 0);
    Settings s;
    ScriptedUserInteraction u;
    StartupResult r = run(s, u);
    ASSERT_TRUE(r.completed);
    EXPECT_TRUE(u.messages.empty()) << u.messages[0].text;
    EXPECT_FALSE(s.readOnly);
    ASSERT_TRUE(r.lock);
    EXPECT_EQ(lockFileValue(project, "Prozess"), std::to_string(getpid()));
    CAuftragDb db(u);
    openOrder(s, db, u);
    EXPECT_FALSE(db.isReadOnly());
}

TEST_F(ProjectAccessTest, AProjectFolderThatCantBeWrittenIsOnlyLookedAt)
{
    makeOrder();
    test::inOwnMounts([&] {
        test::mountReadOnly(project);
        const test::FileDigests before = test::digestFiles(project);
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        ASSERT_TRUE(r.completed);
        ASSERT_GE(u.messages.size(), 1u);
        EXPECT_EQ(u.messages[0].text, "Das Projekt kann nicht zum Bearbeiten gesperrt werden (der Projektordner liegt "
                                      "auf einem schreibgeschützten Laufwerk). Sie können es ansehen, aber nichts ändern.");
        EXPECT_EQ(u.messages[0].title, "Quarn-Inventur");
        EXPECT_TRUE(s.readOnly);
        lookAtTheOrder(s, r, u);
        EXPECT_EQ(test::changedFiles(before, test::digestFiles(project)), "");
    });
}

TEST_F(ProjectAccessTest, ARegisterThatCantBeWrittenMakesTheProjectReadOnly)
{
    makeOrder();
    test::inOwnMounts([&] {
        const std::string reg = project + "/QInventur.mdb";
        test::mountReadOnly(reg);
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        ASSERT_TRUE(r.completed);
        ASSERT_GE(u.messages.size(), 1u);
        EXPECT_EQ(u.messages[0].text, "Die Datei '" + displayPath(s.gstProjektPfad + "QInventur.mdb") +
                                          "' ist schreibgeschützt. Sie können das Projekt ansehen, aber nichts ändern.");
        EXPECT_TRUE(s.readOnly);
        // The lock is not kept: someone who may write the register can have the project.
        EXPECT_EQ(r.lock, nullptr);
        EXPECT_TRUE(ProjectLock(project).held());
        const test::FileDigests before = test::digestFiles(project);
        lookAtTheOrder(s, r, u);
        EXPECT_EQ(test::changedFiles(before, test::digestFiles(project)), "");
    });
}

TEST_F(ProjectAccessTest, AReadOnlyProjectWithoutRegisterIsNotSeeded)
{
    test::inOwnMounts([&] {
        test::mountReadOnly(project);
        const test::FileDigests before = test::digestFiles(project);
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        EXPECT_FALSE(r.completed);
        EXPECT_EQ(r.inventurDb, nullptr);
        ASSERT_EQ(u.messages.size(), 2u);
        EXPECT_EQ(u.messages[0].title, "Quarn-Inventur");
        const std::string reg = s.gstProjektPfad + "QInventur.mdb";
        EXPECT_EQ(u.messages[1].text, "Die Datenbank " + displayPath(reg) + " konnte nicht geöffnet werden!\r\nDie Datei '" +
                                          displayPath(reg) + "' konnte nicht gefunden werden.");
        EXPECT_EQ(u.messages[1].icon, MsgIcon::Critical);
        EXPECT_EQ(u.messages[1].title, "Problem");
        EXPECT_EQ(test::changedFiles(before, test::digestFiles(project)), "");
    });
}

TEST_F(ProjectAccessTest, AnOrderFileThatCantBeWrittenIsOpenedReadOnlyAndSaysSoOnce)
{
    makeOrder();
    test::inOwnMounts([&] {
        test::mountReadOnly(orderFile());
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        ASSERT_TRUE(r.completed);
        EXPECT_TRUE(u.messages.empty());
        EXPECT_FALSE(s.readOnly);
        const test::FileDigests before = test::digestFiles(project + "/Inventur");
        CAuftragDb db(u);
        openOrder(s, db, u);
        EXPECT_TRUE(db.isReadOnly());
        ASSERT_EQ(u.messages.size(), 1u);
        EXPECT_EQ(u.messages[0].text, "Die Datei '" + displayPath(db.DbPath()) +
                                          "' des Auftrags ist schreibgeschützt. Sie können den Auftrag ansehen, aber "
                                          "nichts ändern.");
        EXPECT_EQ(u.messages[0].icon, MsgIcon::Exclamation);
        frmWork w(db, s, u);
        w.pbNeu_Click();
        ASSERT_EQ(u.messages.size(), 2u);
        EXPECT_EQ(u.messages[1].text, accessmsg::OrderReadOnly);
        db.CloseDb();
        EXPECT_EQ(test::changedFiles(before, test::digestFiles(project + "/Inventur")), "");
    });
}

TEST_F(ProjectAccessTest, AReportDatabaseThatCantBeWrittenIsNamedWhenTheOrderIsLinked)
{
    makeOrder();
    test::inOwnMounts([&] {
        const std::string reportDb = program + "/QInventurRpt.mdb";
        test::mountReadOnly(reportDb);
        const std::string before = test::readFile(reportDb);
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        ASSERT_TRUE(r.completed);
        CAuftragDb db(u);
        openOrder(s, db, u);
        EXPECT_FALSE(CheckReportMdbLink(s, db.DbPath(), u));
        ASSERT_EQ(u.messages.size(), 1u);
        EXPECT_EQ(u.messages[0].text, "COVRpt.CheckReportMdbLink\r\nAktualisieren nicht möglich. Die Datei '" +
                                          displayPath(s.gstAppPfad + "\\QInventurRpt.mdb") + "' ist schreibgeschützt.");
        EXPECT_EQ(u.messages[0].icon, MsgIcon::Critical);
        db.CloseDb();
        EXPECT_EQ(test::readFile(reportDb), before);
    });
}

TEST_F(ProjectAccessTest, QuarnFilesThatCantBeWrittenAreReadAsEver)
{
    makeOrder();
    test::inOwnMounts([&] {
        for (const char* file : {"QGebaeude.mdb", "QOvInventar.mdb", "QStammdaten.mdb"})
            test::mountReadOnly(project + "/" + file);
        const test::FileDigests before = test::digestFiles(project);
        Settings s;
        ScriptedUserInteraction u;
        StartupResult r = run(s, u);
        ASSERT_TRUE(r.completed);
        {
            CAuftragDb db(u);
            openOrder(s, db, u);
            EXPECT_TRUE(CheckReportMdbLink(s, db.DbPath(), u));
            frmWork w(db, s, u);
            w.f_QGebDb = r.gebDb.get();
            EXPECT_TRUE(w.ReportDifferenzListe());
            EXPECT_TRUE(u.messages.empty()) << u.messages[0].text;
            EXPECT_GT(toLong(db.database()->scalar("SELECT count(*) FROM T_Differenzliste")), 0);
        }
        const test::FileDigests after = test::digestFiles(project);
        for (const char* file : {"QGebaeude.mdb", "QOvInventar.mdb", "QStammdaten.mdb"})
            EXPECT_EQ(after.at(file), before.at(file)) << file;
    });
}

TEST_F(ProjectAccessTest, AProgramWithoutStartupTakesTheProjectWithTheSameFunction)
{
    // A program given its project folder directly (the command line) asks as start-up does.
    makeOrder();
    Settings s;
    s.gstProjektPfad = project + "/";
    ScriptedUserInteraction u;
    {
        const auto lock = TakeProject(s, u);
        ASSERT_TRUE(lock);
        const pid_t pid = fork();
        if (pid == 0) {
            Settings other = s;
            ScriptedUserInteraction looker;
            const auto none = TakeProject(other, looker);
            _exit(!none && other.readOnly && looker.messages.size() == 1 ? 0 : 1);
        }
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
}

} // namespace
} // namespace qi
