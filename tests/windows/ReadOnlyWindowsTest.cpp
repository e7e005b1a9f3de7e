// Two programs on one project: the program itself (a copy of it in the test's program
// folder) works on the demo project; the windows of this test start on the same project,
// tell the user who works on it, and only show. When the first program is killed, its
// lock goes with it and the next start takes the project over.

#include "ProgramFixture.h"

#include "FileDigests.h"
#include "FileSystem.h"
#include "ProjectLock.h"
#include "QTreeGebStruCtrl.h"
#include "Report.h"
#include "ReportMenus.h"
#include "Screenshots.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <sstream>
#include <thread>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

class ReadOnlyWindowsTest : public ProgramFixture {
protected:
    void TearDown() override
    {
        ProgramFixture::TearDown();
        stopTheProgram();
    }

    /// The order "Erdgeschoss" with the rooms of the first floor and both of its scanner files,
    /// made through the windows; the windows close again.
    void prepareOrder()
    {
        startProgram();
        newOrder("Erdgeschoss");
        openOrder("Erdgeschoss");
        ASSERT_NE(work(), nullptr);
        chooseFirstFloor();
        addDemoScanFiles();
        // The demo's files hold one object scanned twice in a room: a warning, no error.
        for (const RecordedMessage& m : ui.messages)
            ASSERT_NE(m.icon, MsgIcon::Critical) << m.text;
        ui.messages.clear();
        work()->close();
        main->close();
        main.reset();
    }

    /// Starts the program itself from the program folder; it holds the project once started.
    void startTheProgram()
    {
        const std::string program = programDir + "/QInventur";
        fs::copy_file(QI_PROGRAM_BINARY, program, fs::copy_options::overwrite_existing);
        std::fflush(stdout);
        other = fork();
        if (other == 0) {
            setenv("QT_QPA_PLATFORM", "offscreen", 1);
            setenv("HOME", home.path().c_str(), 1);
            execl(program.c_str(), program.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        ASSERT_GT(other, 0);
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (lockValue("Prozess") != std::to_string(other)) {
            ASSERT_LT(std::chrono::steady_clock::now(), until) << "the program did not take the project";
            ASSERT_EQ(waitpid(other, nullptr, WNOHANG), 0) << "the program ended";
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }
    void stopTheProgram()
    {
        if (other <= 0)
            return;
        kill(other, SIGKILL);
        waitpid(other, nullptr, 0);
        other = -1;
    }

    std::string lockValue(const std::string& key) const
    {
        std::istringstream in(readFile(demoDir + "/" + ProjectLock::kFileName));
        for (std::string line; std::getline(in, line);)
            if (line.rfind(key + "=", 0) == 0)
                return line.substr(key.size() + 1);
        return {};
    }
    /// The files of the program folder and the project, the lock file aside.
    FileDigests files() const
    {
        FileDigests d = digestFiles(programDir);
        d.erase("Demo/" + std::string(ProjectLock::kFileName));
        return d;
    }

    TempDir home;
    pid_t other = -1;
};

TEST_F(ReadOnlyWindowsTest, ASecondProgramOnTheProjectOnlyLooksUntilTheFirstIsKilled)
{
    prepareOrder();
    startTheProgram();
    const FileDigests before = files();

    startProgram();
    const LockOwner owner = ProjectLock::self();
    const std::string told = "Das Projekt wird bereits von " + owner.user + " auf dem Rechner " + owner.machine +
                             " bearbeitet (seit " + lockValue("Seit") + "). Sie können es ansehen, aber nichts ändern.";
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, told);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Quarn-Inventur");

    // The main window lists the orders; creating and deleting them is out of use.
    EXPECT_FALSE(main->mnuDateiFkt.at(menuindex::NewOrder)->isEnabled());
    EXPECT_FALSE(main->mnuDateiFkt.at(menuindex::DeleteOrder)->isEnabled());
    EXPECT_TRUE(main->mnuDateiFkt.at(menuindex::Quit)->isEnabled());
    ASSERT_NE(main->lbNurAnsehen, nullptr);
    EXPECT_EQ(main->lbNurAnsehen->toolTip().toStdString(), told);
    expectOnScreen(*main, QStringLiteral("main-nur-ansehen"),
                   {"Erdgeschoss", "Name", "geändert", "Nur zum Ansehen geöffnet", "Öffnen mit Doppelklick"});

    // The order opens read-only: its lists are there, its changing commands are out of use.
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    EXPECT_EQ(ui.messages.size(), 1u) << ui.messages.back().text;
    EXPECT_TRUE(work()->form().readOnly());
    for (QPushButton* b : {work()->pbAdd, work()->pbRemove, work()->pbNeu})
        EXPECT_FALSE(b->isEnabled()) << b->text().toStdString();
    EXPECT_TRUE(work()->pbRooms->isEnabled());
    EXPECT_FALSE(work()->mnuDateiFkt.at(workmenu::Archiv)->isEnabled());
    EXPECT_TRUE(work()->mnuReportFkt.at(reportmenu::Differenz)->isEnabled());
    EXPECT_EQ(work()->lvDateien->topLevelItemCount(), 2);
    expectOnScreen(*work(), QStringLiteral("work-nur-ansehen"),
                   {"&Hinzufügen", "&Entfernen", "&Auswertung aktualisieren", "Scan_EG_Teil1.dat",
                    "Scan_EG_Teil2.dat", "Nur zum Ansehen geöffnet", "E"});

    // The room selection shows the rooms and moves none.
    bool shown = false;
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        for (QPushButton* b : {w.pbIn, w.pbAllIn, w.pbOut, w.pbAllOut})
            EXPECT_FALSE(b->isEnabled()) << b->text().toStdString();
        w.tvGeb->SelectNode(firstFloor());
        emit w.tvGeb->Click();
        EXPECT_GT(w.lbRooms->count(), 0);
        expectOnScreen(w, QStringLiteral("rooms-nur-ansehen"),
                       {"&Fertig", "Nur zum Ansehen geöffnet: die Räume können nicht geändert werden.", "E"});
        shown = true;
        w.pbFertig->click();
    });
    work()->pbRooms->click();
    EXPECT_TRUE(shown);

    // A report is made in a private copy, which the report engine reads.
    work()->mnuReportFkt.at(reportmenu::Differenz)->trigger();
    EXPECT_EQ(ui.messages.size(), 1u) << ui.messages.back().text;
    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].dataFile.find(programDir), std::string::npos) << ui.reports[0].dataFile;
    const auto report = Report::open(ui.reports[0].reportFile, ui.reports[0].dataFile, ui.reports[0].title);
    const std::string printed = report->text();
    EXPECT_NE(printed.find(inst.roomsOfFloor(firstFloor()).front()->nr), std::string::npos) << printed.substr(0, 2000);
    EXPECT_NE(printed.find("Seite 1 von"), std::string::npos);

    work()->close();
    main->close();
    main.reset();
    EXPECT_EQ(changedFiles(before, files()), "");
    EXPECT_EQ(lockValue("Prozess"), std::to_string(other));

    // The first program dies without letting go of the project: the next start takes it over.
    stopTheProgram();
    ui.messages.clear();
    startProgram();
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(lockValue("Prozess"), std::to_string(getpid()));
    EXPECT_TRUE(main->mnuDateiFkt.at(menuindex::NewOrder)->isEnabled());
    EXPECT_EQ(main->lbNurAnsehen, nullptr);
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    EXPECT_FALSE(work()->form().readOnly());
    EXPECT_TRUE(work()->pbAdd->isEnabled());
    EXPECT_TRUE(work()->pbRemove->isEnabled());
    work()->close();
}

} // namespace
} // namespace qi::test
