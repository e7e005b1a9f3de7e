// The program folder of an installation that can't be written: the user's own, made on the
// first start and reused; which "Quarn.ini" names the project; start-up on both folders.

#include "DemoInstallation.h"
#include "FileDigests.h"
#include "FileSystem.h"
#include "OwnMounts.h"
#include "ProgramFolder.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "ScriptedUserInteraction.h"
#include "Startup.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

namespace qi {
namespace {

namespace fs = std::filesystem;
using test::TempDir;
using test::readFile;
using test::writeFile;

/// The inode of a file: a file copied anew has another.
ino_t inodeOf(const std::string& path)
{
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 ? st.st_ino : 0;
}

/// An installation (programs' folder with the template, the report database and a "Quarn.ini"
/// naming no project) and a data folder of the user's own, named by XDG_DATA_HOME.
class ProgramFolderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        installation = dir.file("Installation");
        data = dir.file("Daten");
        fs::create_directories(installation + "/Leeres Projekt/Report");
        test::makeRegisterDatabase(installation + "/Leeres Projekt/QInventur.mdb");
        test::makeOrderDatabase(installation + "/Leeres Projekt/QAuftrag.mdb");
        for (const char* r : kReportFiles)
            writeFile(installation + "/Leeres Projekt/Report/" + r, std::string("Report ") + r);
        createReportDatabase(installation + "/QInventurRpt.mdb");
        writeFile(installation + "/Quarn.ini", "[Quarn]\r\nProjekt=\r\n");
        const char* xdg = std::getenv("XDG_DATA_HOME");
        if (xdg)
            previousXdg = xdg;
        hadXdg = xdg != nullptr;
        ::setenv("XDG_DATA_HOME", data.c_str(), 1);
        own = data + "/QInventur";
    }
    void TearDown() override
    {
        if (hadXdg)
            ::setenv("XDG_DATA_HOME", previousXdg.c_str(), 1);
        else
            ::unsetenv("XDG_DATA_HOME");
    }

    /// programFolders on the installation mounted read-only (in a child process of its own),
    /// with the installation's files compared before and after.
    void onReadOnlyInstallation(const std::function<void()>& body)
    {
        const test::FileDigests before = test::digestFiles(installation);
        test::inOwnMounts([&] {
            test::mountReadOnly(installation);
            body();
        });
        EXPECT_EQ(test::changedFiles(before, test::digestFiles(installation)), "");
    }

    TempDir dir;
    std::string installation, data, own, previousXdg;
    bool hadXdg = false;
};

TEST_F(ProgramFolderTest, WritableInstallationIsTheProgramFolderAndNothingIsMade)
{
    const test::FileDigests before = test::digestFiles(installation);
    const ProgramFolders folders = programFolders(installation);
    EXPECT_EQ(folders.installation, installation);
    EXPECT_EQ(folders.own, installation);
    EXPECT_FALSE(folders.perUser());
    EXPECT_FALSE(needsProjectChoice(folders));
    EXPECT_FALSE(fs::exists(data));
    EXPECT_EQ(test::changedFiles(before, test::digestFiles(installation)), "");
}

TEST_F(ProgramFolderTest, UserFolderFollowsXdgDataHomeElseHome)
{
    EXPECT_EQ(nativePath(userProgramFolder()), data + "/QInventur");
    ::setenv("XDG_DATA_HOME", "relativ", 1);
    const char* home = std::getenv("HOME");
    ASSERT_NE(home, nullptr);
    EXPECT_EQ(nativePath(userProgramFolder()), std::string(home) + "/.local/share/QInventur");
}

TEST_F(ProgramFolderTest, ReadOnlyInstallationGetsTheUsersFolderOnceAndReusesIt)
{
    onReadOnlyInstallation([&] {
        EXPECT_FALSE(programFolderWritable(installation));
        const ProgramFolders first = programFolders(installation);
        EXPECT_TRUE(first.perUser());
        EXPECT_EQ(first.installation, installation);
        EXPECT_EQ(nativePath(first.own), own);
        // Only the report database is copied; "Quarn.ini" and the template are read from the installation.
        EXPECT_EQ(test::sortedNames(own), (std::vector<std::string>{"QInventurRpt.mdb", kReportDatabaseOrigin}));
        EXPECT_EQ(readFile(own + "/QInventurRpt.mdb"), readFile(installation + "/QInventurRpt.mdb"));
        EXPECT_TRUE(needsProjectChoice(first));
        EXPECT_EQ(quarnIniFolder(first), installation);

        // The next start takes the folder as it is.
        const ino_t copied = inodeOf(own + "/QInventurRpt.mdb");
        const ProgramFolders second = programFolders(installation);
        EXPECT_EQ(second.own, first.own);
        EXPECT_EQ(inodeOf(own + "/QInventurRpt.mdb"), copied);
    });
}

TEST_F(ProgramFolderTest, ChangedInstallationReportDatabaseReplacesTheUsersCopy)
{
    onReadOnlyInstallation([&] { programFolders(installation); });
    const std::string firstCopy = readFile(own + "/QInventurRpt.mdb");
    // An update of the installation brings another report database.
    fs::remove(installation + "/QInventurRpt.mdb");
    createReportDatabase(installation + "/QInventurRpt.mdb");
    writeFile(installation + "/QInventurRpt.mdb",
              readFile(installation + "/QInventurRpt.mdb") + std::string(4096, '\0'));
    onReadOnlyInstallation([&] { programFolders(installation); });
    EXPECT_NE(readFile(own + "/QInventurRpt.mdb"), firstCopy);
    EXPECT_EQ(readFile(own + "/QInventurRpt.mdb"), readFile(installation + "/QInventurRpt.mdb"));
}

TEST_F(ProgramFolderTest, WriteProtectedReportDatabaseMakesTheInstallationReadOnly)
{
    test::inOwnMounts([&] {
        test::mountReadOnly(installation + "/QInventurRpt.mdb");
        EXPECT_FALSE(programFolderWritable(installation));
        EXPECT_TRUE(programFolders(installation).perUser());
    });
}

/// Start-up with the user's own program folder: which "Quarn.ini" names the project.
class QuarnIniPrecedenceTest : public ProgramFolderTest {
protected:
    void SetUp() override
    {
        ProgramFolderTest::SetUp();
        inst = demo::buildInstallation(demo::smallSizes());
        for (const std::string& p : {dir.file("ProjektAdmin"), dir.file("ProjektNutzer")}) {
            fs::create_directories(p);
            demo::writeHostDatabases(inst, p);
        }
        fs::create_directories(own);
        folders = ProgramFolders{installation, own};
        previous = fs::current_path();
        fs::create_directories(dir.file("Arbeitsordner"));
        fs::current_path(dir.file("Arbeitsordner"));
    }
    void TearDown() override
    {
        fs::current_path(previous);
        ProgramFolderTest::TearDown();
    }

    StartupResult run() { return RunStartup(folders, settings, ui); }

    demo::Installation inst;
    ProgramFolders folders;
    Settings settings;
    ScriptedUserInteraction ui;
    fs::path previous;
};

TEST_F(QuarnIniPrecedenceTest, UsersProjectComesBeforeTheInstallations)
{
    writeFile(installation + "/Quarn.ini", "[Quarn]\r\nProjekt=" + dir.file("ProjektAdmin") + "\r\n");
    writeUserProject(folders, dir.file("ProjektNutzer"));
    EXPECT_EQ(readFile(own + "/Quarn.ini"), "[Quarn]\r\nProjekt=" + dir.file("ProjektNutzer") + "\r\n");
    EXPECT_EQ(quarnIniFolder(folders), own);
    const auto r = run();
    EXPECT_TRUE(r.completed);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(r.caption, "Aufträge im Projekt: '" + dir.file("ProjektNutzer") + "'");
    EXPECT_EQ(settings.gstProjektPfad, dir.file("ProjektNutzer") + "\\");
    // The programs' files are the installation's, the report database is the user's.
    EXPECT_EQ(settings.gstAppPfad, installation);
    EXPECT_EQ(nativePath(sharedReportDatabasePath(settings)), own + "/QInventurRpt.mdb");
    EXPECT_TRUE(fs::exists(dir.file("ProjektNutzer") + "/QInventur.mdb"));
    EXPECT_FALSE(fs::exists(dir.file("ProjektAdmin") + "/QInventur.mdb"));
}

TEST_F(QuarnIniPrecedenceTest, InstallationsProjectServesWhenTheUsersNamesNone)
{
    writeFile(installation + "/Quarn.ini", "[Quarn]\r\nProjekt=" + dir.file("ProjektAdmin") + "\r\n");
    writeFile(own + "/Quarn.ini", "[Quarn]\r\nProjekt=\r\n[Anderes]\r\nProjekt=x\r\n");
    EXPECT_EQ(quarnIniFolder(folders), installation);
    EXPECT_FALSE(needsProjectChoice(folders));
    const auto r = run();
    EXPECT_TRUE(r.completed);
    EXPECT_EQ(settings.gstProjektPfad, dir.file("ProjektAdmin") + "\\");
    EXPECT_EQ(nativePath(sharedReportDatabasePath(settings)), own + "/QInventurRpt.mdb");
}

TEST_F(QuarnIniPrecedenceTest, RelativeProjectOfTheInstallationLiesBelowIt)
{
    fs::create_directories(installation + "/Demo");
    demo::writeHostDatabases(inst, installation + "/Demo");
    writeFile(installation + "/Quarn.ini", "[Quarn]\r\nProjekt=Demo\r\n");
    run();
    EXPECT_EQ(settings.gstProjektPfad, installation + "\\Demo\\");
}

TEST_F(QuarnIniPrecedenceTest, NoProjectNamedAnywhereAsksTheUser)
{
    EXPECT_TRUE(needsProjectChoice(folders));
    // The specified start-up on no project is unchanged (the windows ask before it runs).
    const auto r = run();
    EXPECT_EQ(r.caption, "Aufträge im Projekt: ''");
    // A program folder that may be written never asks.
    EXPECT_FALSE(needsProjectChoice(ProgramFolders{installation, installation}));
}

TEST_F(QuarnIniPrecedenceTest, WritableInstallationReadsOnlyItsOwnQuarnIni)
{
    writeFile(own + "/Quarn.ini", "[Quarn]\r\nProjekt=" + dir.file("ProjektNutzer") + "\r\n");
    writeFile(installation + "/Quarn.ini", "[Quarn]\r\nProjekt=" + dir.file("ProjektAdmin") + "\r\n");
    RunStartup(installation, settings, ui);
    EXPECT_EQ(settings.gstProjektPfad, dir.file("ProjektAdmin") + "\\");
    EXPECT_EQ(settings.ownProgramFolder, "");
    EXPECT_EQ(nativePath(sharedReportDatabasePath(settings)), installation + "/QInventurRpt.mdb");
}

} // namespace
} // namespace qi
