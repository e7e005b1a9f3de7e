// What qinventur-cli tells and answers matches what happened to the order: files
// are told as added only once the change is committed, a refused file is named
// with its reason, a change that stands ends with 0 even when something beside it
// failed, and without a project to work on nothing is done and nothing written.

#include "CliFixture.h"

#include "ExitCodes.h"
#include "FileSystem.h"

#include <filesystem>
#include <set>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

const std::string kUnchanged = "[qinventur-cli] Der Auftrag bleibt, wie er vor dem Befehl war.\n";
const std::string kGiveProject = " Geben Sie den Projektordner mit --projekt ORDNER an.\n";

/// Every file and folder below a folder, lock files included.
std::set<std::string> everything(const std::string& folder)
{
    std::set<std::string> all;
    for (const auto& e : fs::recursive_directory_iterator(folder))
        all.insert(fs::relative(e.path(), folder).string());
    return all;
}

class CliOutcomeTest : public CliFixture {
protected:
    std::int64_t rows(const std::string& order, const std::string& table)
    {
        return count(orderFile(order), "SELECT COUNT(*) FROM " + table);
    }
    void prepareRooms(const std::string& order)
    {
        expectCli(0, {"anlegen", order});
        std::vector<std::string> args = {"raeume", order, "--setzen"};
        for (const std::string& nr : orderRooms())
            args.push_back(nr);
        expectCli(0, args);
    }
    /// Runs the program in `folder` as its working folder.
    CliRun cliIn(const std::string& folder, const std::vector<std::string>& args)
    {
        const auto cwd = fs::current_path();
        fs::current_path(folder);
        CliRun r = cli(args);
        fs::current_path(cwd);
        return r;
    }
    /// The program refuses with 16 and the message, in a working folder of its own, and writes nothing
    /// there, in the program folder or in the demo project.
    void expectNoProject(const std::string& message, const std::vector<std::string>& args = {"anlegen", "Lager"})
    {
        const std::string work = root.file("Arbeitsordner");
        fs::create_directories(work);
        const auto programBefore = everything(programDir);
        const CliRun r = cliIn(work, args);
        EXPECT_EQ(r.code, 16) << r.err;
        EXPECT_EQ(r.err, "[qinventur-cli] " + message + kGiveProject);
        EXPECT_EQ(r.out, "");
        EXPECT_TRUE(everything(work).empty());
        EXPECT_EQ(everything(programDir), programBefore);
    }
};

// ---------------------------------------------------------------- scanner files

TEST_F(CliOutcomeTest, FilesAreToldAsAddedOnlyOnceTheChangeIsCommittedAndARefusedFileIsNamed)
{
    prepareRooms("Nord");
    const std::string before = contentDigest(orderFile("Nord"));
    const std::string refused = scanFile("Scan_Raum_ausserhalb.dat");
    CliRun r = expectCli(9, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat"), refused, "--konflikt", "behalten"});
    EXPECT_EQ(r.out, "");
    const std::string tail = "[Quarn-Inventur] In der Datei sind Räume enthalten, die nicht zum Auftrag gehören. "
                             "Bearbeiten Sie bitte die Textdatei.\n[qinventur-cli] Die Datei '" +
                             displayPath(refused) +
                             "' ist abgewiesen: Datei enthält Räume, die nicht zum Auftrag gehören.\n" + kUnchanged;
    ASSERT_GE(r.err.size(), tail.size()) << r.err;
    EXPECT_EQ(r.err.substr(r.err.size() - tail.size()), tail);
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);

    // A file of different days, alone.
    r = expectCli(10, {"hinzufuegen", "Nord", scanFile("Scan_Zwei_Tage.dat")});
    EXPECT_EQ(r.err, "[Quarn-Inventur] In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten "
                     "Sie bitte die Textdatei.\n[qinventur-cli] Die Datei '" +
                         displayPath(scanFile("Scan_Zwei_Tage.dat")) +
                         "' ist abgewiesen: Datei enthält Daten verschiedener Tage.\n" + kUnchanged);
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);

    // Both good files: each told once the change stands.
    r = expectCli(0, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat"), scanFile("Scan_EG_Teil2.dat"),
                      "--konflikt", "behalten"});
    EXPECT_EQ(r.out, "Datei 'Scan_EG_Teil1.dat' hinzugefügt.\nDatei 'Scan_EG_Teil2.dat' hinzugefügt.\n");
    EXPECT_EQ(rows("Nord", "T_Dateien"), 2);
}

TEST_F(CliOutcomeTest, AFileThatFailsIsNamedAndNoFileIsAdded)
{
    prepareRooms("Nord");
    const std::string before = contentDigest(orderFile("Nord"));
    const std::string empty = root.file("leer.dat");
    writeFile(empty, "");
    const CliRun r = cli({"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat"), empty, "--konflikt", "behalten"});
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(r.out, "");
    std::string why = " konnte nicht hinzugefügt werden (siehe die Meldung oben).";
    if (r.code != 1)
        for (const cli::ExitCodeInfo& info : cli::kExitCodes)
            if (info.code == r.code)
                why = " ist abgewiesen: " + std::string(info.meaning) + ".";
    const std::string tail = "[qinventur-cli] Die Datei '" + displayPath(empty) + "'" + why + "\n" + kUnchanged;
    ASSERT_GE(r.err.size(), tail.size()) << r.err;
    EXPECT_EQ(r.err.substr(r.err.size() - tail.size()), tail);
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
}

TEST_F(CliOutcomeTest, AFailureBesideACommittedChangeIsAWarningAndTheExitCodeZero)
{
    prepareRooms("Nord");
    // A damaged building database: opening the order fails to link Quarn's rooms, the file is added all the same.
    const std::string building = demoDir + "/QGebaeude.mdb";
    writeFile(building, readFile(building).substr(0, 3000));
    const CliRun r = expectCli(0, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat"), "--konflikt", "behalten"});
    EXPECT_EQ(r.out, "Datei 'Scan_EG_Teil1.dat' hinzugefügt.\n");
    EXPECT_NE(r.err.find("[QInventur] COVRpt.CheckReportMdbLink\n"), std::string::npos) << r.err;
    const std::string warning = "[qinventur-cli] Warnung: Der Befehl ist ausgeführt und seine Änderung gespeichert; "
                                "die Fehlermeldungen oben haben sie nicht verhindert.\n";
    ASSERT_GE(r.err.size(), warning.size());
    EXPECT_EQ(r.err.substr(r.err.size() - warning.size()), warning);
    EXPECT_GT(rows("Nord", "T_DatInventur"), 0);
    EXPECT_EQ(rows("Nord", "T_Dateien"), 1);
    // A command that only reads does not hide the error.
    EXPECT_EQ(cli({"bericht", "Nord", "raumerfassung", "--ausgabe", root.file("raum.csv")}).code, 1);
}

// ---------------------------------------------------------------- no project

TEST_F(CliOutcomeTest, WithoutQuarnIniNothingIsDoneAnywhere)
{
    ASSERT_TRUE(removeFile(programDir + "/Quarn.ini"));
    expectNoProject("Die Datei '" + displayPath(programDir + "/Quarn.ini") + "', die das Projekt nennt, gibt es nicht.");
    expectNoProject("Die Datei '" + displayPath(programDir + "/Quarn.ini") + "', die das Projekt nennt, gibt es nicht.",
                    {"auftraege"});
}

TEST_F(CliOutcomeTest, AQuarnIniThatNamesNoProjectIsRefused)
{
    writeFile(programDir + "/Quarn.ini", "[Quarn]\r\nProjekt=\r\n");
    expectNoProject("Die Datei '" + displayPath(programDir + "/Quarn.ini") +
                    "' nennt kein Projekt (Abschnitt [Quarn], Eintrag Projekt).");
    writeFile(programDir + "/Quarn.ini", "[Anderes]\r\nProjekt=Demo\r\n");
    expectNoProject("Die Datei '" + displayPath(programDir + "/Quarn.ini") +
                    "' nennt kein Projekt (Abschnitt [Quarn], Eintrag Projekt).");
}

TEST_F(CliOutcomeTest, AQuarnIniThatNamesAMissingOrEmptyFolderIsRefused)
{
    const std::string ini = displayPath(programDir + "/Quarn.ini");
    writeFile(programDir + "/Quarn.ini", "[Quarn]\r\nProjekt=" + root.file("fehlt") + "\r\n");
    expectNoProject("Den Projektordner '" + displayFolder(root.file("fehlt")) + "', den '" + ini +
                    "' nennt, gibt es nicht.");

    // Empty, or holding only a folder: the window's start-up would make the working folder the project.
    const std::string empty = root.file("Leer");
    fs::create_directories(empty + "/Unterordner");
    writeFile(programDir + "/Quarn.ini", "[Quarn]\r\nProjekt=" + empty + "\r\n");
    expectNoProject("Der Projektordner '" + displayFolder(empty) + "', den '" + ini + "' nennt, enthält keine Datei.");
    EXPECT_EQ(everything(empty), std::set<std::string>{"Unterordner"});
}

TEST_F(CliOutcomeTest, AnEmptyFolderGivenWithProjektIsRefused)
{
    const std::string empty = root.file("Leer");
    fs::create_directories(empty);
    const auto programBefore = everything(programDir);
    const CliRun r = cliIn(empty, {"--projekt", empty, "anlegen", "Lager"});
    EXPECT_EQ(r.code, 16);
    EXPECT_EQ(r.err, "[qinventur-cli] Der Projektordner '" + displayFolder(empty) +
                         "' enthält keine Datei; ein Projekt von Quarn enthält mindestens seine \"Projekt.ini\" oder "
                         "seine Datenbanken.\n");
    EXPECT_TRUE(everything(empty).empty());
    EXPECT_EQ(everything(programDir), programBefore);
    // The project of "Quarn.ini" works as before.
    expectCli(0, {"anlegen", "Lager"});
}

} // namespace
} // namespace qi::test
