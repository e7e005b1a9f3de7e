// qinventur-cli installed for every user: its folder read-only (mounted so, which the
// superuser's rights don't overcome), a "Quarn.ini" there naming no project, the demo
// project beside it. The program keeps its report database in the user's own program
// folder and changes nothing in the installation.

#include "CliFixture.h"

#include "ExitCodes.h"
#include "FileDigests.h"
#include "FileSystem.h"
#include "OwnMounts.h"
#include "ProgramFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;
using cli::kNoProject;
using cli::kSuccess;

class CliInstalledTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        writeFile(programDir + "/Quarn.ini", "[Quarn]\r\nProjekt=\r\n");
        installedDemo = demoDir;
        const char* xdg = std::getenv("XDG_DATA_HOME");
        hadXdg = xdg != nullptr;
        if (xdg)
            previousXdg = xdg;
        ::setenv("XDG_DATA_HOME", root.file("Daten").c_str(), 1);
        own = root.file("Daten") + "/QInventur";
    }
    void TearDown() override
    {
        if (hadXdg)
            ::setenv("XDG_DATA_HOME", previousXdg.c_str(), 1);
        else
            ::unsetenv("XDG_DATA_HOME");
    }

    /// Runs `body` with the installation mounted read-only and expects the installation unchanged.
    void onReadOnlyInstallation(const std::function<void()>& body)
    {
        const FileDigests before = digestFiles(programDir);
        inOwnMounts([&] {
            mountReadOnly(programDir);
            body();
        });
        EXPECT_EQ(changedFiles(before, digestFiles(programDir)), "");
    }

    std::string installedDemo, own, previousXdg;
    bool hadXdg = false;
};

TEST_F(CliInstalledTest, WithoutAProjectItTellsHowToChooseOne)
{
    onReadOnlyInstallation([&] {
        const CliRun r = expectCli(kNoProject, {"auftraege"});
        EXPECT_EQ(r.out, "");
        EXPECT_EQ(r.err, "[qinventur-cli] Es ist noch kein Projekt eingestellt. Geben Sie den Projektordner mit "
                         "--projekt ORDNER an, oder tragen Sie ihn in '" +
                             own + "/Quarn.ini' ein (Abschnitt [Quarn], Eintrag Projekt=ORDNER); QInventur fragt "
                                   "beim ersten Start danach. Zum Ausprobieren kopieren Sie das Demoprojekt '" +
                             installedDemo + "' in einen eigenen Ordner.\n");
    });
    // The user's program folder holds the report database, nothing else of the installation.
    EXPECT_EQ(sortedNames(own), (std::vector<std::string>{"QInventurRpt.mdb", kReportDatabaseOrigin}));
}

TEST_F(CliInstalledTest, TheReadmeRoadOnACopyOfTheDemo)
{
    // The user's copy of the demo project, named in the user's "Quarn.ini".
    demoDir = root.file("Projekt");
    fs::copy(installedDemo, demoDir, fs::copy_options::recursive);
    fs::create_directories(own);
    writeFile(own + "/Quarn.ini", "[Quarn]\r\nProjekt=" + demoDir + "\r\n");
    const std::string berichte = root.file("Berichte");
    onReadOnlyInstallation([&] {
        prepareOrder("Erdgeschoss");
        const CliRun evaluated = expectCli(kSuccess, {"auswerten", "Erdgeschoss"});
        EXPECT_NE(evaluated.out.find("3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)\t"),
                  std::string::npos)
            << evaluated.out;
        const CliRun exported = expectCli(kSuccess, {"export", "Erdgeschoss", "--ausgabe", berichte, "--format", "csv"});
        EXPECT_NE(exported.out.find("Bericht 'differenz' geschrieben: " + berichte + "/differenz.csv\n"),
                  std::string::npos)
            << exported.out;
        // --projekt names the same project without the user's "Quarn.ini".
        fs::remove(own + "/Quarn.ini");
        const CliRun listed = expectCli(kSuccess, {"auftraege", "--projekt", demoDir});
        EXPECT_NE(listed.out.find("Erdgeschoss"), std::string::npos) << listed.out;
    });
    EXPECT_TRUE(fs::exists(orderFile("Erdgeschoss")));
    EXPECT_GT(count(orderFile("Erdgeschoss"), "SELECT COUNT(*) FROM T_Differenzliste"), 0);
    EXPECT_TRUE(fs::exists(berichte + "/differenz.csv"));
    EXPECT_FALSE(fs::exists(installedDemo + "/Inventur"));
    // The report database relinked for the order is the user's.
    EXPECT_TRUE(fs::exists(own + "/QInventurRpt.mdb"));
}

} // namespace
} // namespace qi::test
