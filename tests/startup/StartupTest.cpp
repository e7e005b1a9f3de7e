// Start-up: the project from the profile files, seeding from the template,
// the register and Quarn's components, and every message on the way.

#include "DemoInstallation.h"
#include "FileSystem.h"
#include "Startup.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <stdexcept>

namespace qi {
namespace {

namespace fs = std::filesystem;
using test::TempDir;
using test::writeFile;

/// A program folder with its template folder and a prepared project folder with Quarn's data.
class StartupTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        program = dir.file("Programm");
        project = dir.file("Projekt");
        fs::create_directories(program + "/Leeres Projekt/Report");
        fs::create_directories(project);
        test::makeRegisterDatabase(program + "/Leeres Projekt/QInventur.mdb");
        test::makeOrderDatabase(program + "/Leeres Projekt/QAuftrag.mdb");
        for (const char* r : kReportFiles)
            writeFile(program + "/Leeres Projekt/Report/" + r, std::string("Report ") + r);
        inst = demo::buildInstallation(demo::smallSizes());
        demo::writeHostDatabases(inst, project);
        // Files named relative to no folder land in a folder of the test's own.
        previous = fs::current_path();
        fs::create_directories(dir.file("Arbeitsordner"));
        fs::current_path(dir.file("Arbeitsordner"));
    }
    void TearDown() override { fs::current_path(previous); }

    void quarnIni(const std::string& projektValue)
    {
        writeFile(program + "/Quarn.ini", "[Quarn]\r\nProjekt=" + projektValue + "\r\n");
    }
    void projektIni(const std::string& body) { writeFile(project + "/Projekt.ini", body); }

    StartupResult run() { return RunStartup(program, settings, ui); }
    /// Start-up on a project whose register holds `registerBytes`, as a seeding that was cut
    /// off leaves it, seeds the project again without a word.
    void expectRegisterSeededAgain(const std::string& registerBytes);

    void expectProblem(std::size_t index, const std::string& text)
    {
        ASSERT_LT(index, ui.messages.size());
        EXPECT_EQ(ui.messages[index].text, text);
        EXPECT_EQ(ui.messages[index].icon, MsgIcon::Critical);
        EXPECT_EQ(ui.messages[index].buttons, MsgButtons::Ok);
        EXPECT_EQ(ui.messages[index].title, "Problem");
    }

    TempDir dir;
    std::string program, project;
    fs::path previous;
    demo::Installation inst;
    Settings settings;
    ScriptedUserInteraction ui;
};

TEST_F(StartupTest, JetProjectStartsCompletely)
{
    quarnIni(project);
    projektIni("[ODBC]\r\nProjekttyp=ptJet\r\n[Inventur]\r\nModul=INVENTAR\r\n");
    const auto r = run();
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(r.completed);
    EXPECT_EQ(r.caption, "Aufträge im Projekt: '" + project + "'");
    EXPECT_EQ(settings.gstProjektPfad, project + "\\");
    EXPECT_EQ(settings.gstProjekttyp, "ptJet");
    EXPECT_EQ(settings.gstConnectionString, "");
    EXPECT_EQ(settings.gstAppPfad, program);
    EXPECT_EQ(settings.giModul, 0);
}

TEST_F(StartupTest, RegisterIsOpenedWritableOnTheProjectFolder)
{
    quarnIni(project);
    const auto r = run();
    ASSERT_TRUE(r.inventurDb);
    EXPECT_EQ(r.inventurDb->DbPath(), project + "\\QInventur.mdb");
    ASSERT_TRUE(r.inventurDb->isOpen()) << r.inventurDb->LastError();
    EXPECT_TRUE(r.inventurDb->IsValidDb());
    EXPECT_FALSE(r.inventurDb->database()->readOnly());
    CAuftragRecColl orders;
    EXPECT_TRUE(r.inventurDb->ReadAllAuftragRec2Coll(orders));
    EXPECT_EQ(orders.Count(), 0);
}

TEST_F(StartupTest, HostComponentsAreOpenedForTheModule)
{
    quarnIni(project);
    projektIni("[Inventur]\r\nModul=BRANDSCHUTZ\r\n");
    const auto r = run();
    ASSERT_TRUE(r.completed);
    ASSERT_TRUE(r.gebDb);
    ASSERT_TRUE(r.gebDb->IsOpen()) << r.gebDb->LastError();
    std::vector<GebRoom> rooms;
    ASSERT_TRUE(r.gebDb->GetAllRooms(rooms));
    EXPECT_EQ(rooms.size(), inst.rooms.size());
    std::vector<RoomObject> objects;
    ASSERT_TRUE(r.gebDb->GetObjectsOfRoom(inst.rooms.front().id, objects)) << r.gebDb->LastError();
    EXPECT_EQ(objects.size(), inst.objectsOfRoom(2, inst.rooms.front().id).size());
    ASSERT_TRUE(r.objektDb);
    ASSERT_TRUE(r.objektDb->IsOpen()) << r.objektDb->LastError();
    const auto& o = inst.modules[2].objects.front();
    const auto found = r.objektDb->FindByInvNr(o.name);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->stArtNr, inst.modules[2].articleOf(o)->artNr);
}

// ------------------------------------------------------------------ project value

TEST_F(StartupTest, EmptyProjectValueGivesTwoApostrophesAndNoProjectMessage)
{
    quarnIni("");
    const auto r = run();
    EXPECT_EQ(r.caption, "Aufträge im Projekt: ''");
    for (const auto& m : ui.messages)
        EXPECT_NE(m.text, "Projekt nicht gefunden!");
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(settings.gstProjektPfad, "");
    EXPECT_TRUE(r.completed);
    // The file names became relative: the template was copied into the working folder.
    EXPECT_TRUE(fs::exists("QInventur.mdb"));
    EXPECT_TRUE(fs::exists("Reportinvraum.rpt"));
    ASSERT_TRUE(r.inventurDb);
    EXPECT_EQ(r.inventurDb->DbPath(), "QInventur.mdb");
    EXPECT_TRUE(r.inventurDb->isOpen());
}

TEST_F(StartupTest, MissingHostProfileCountsAsEmptyProjectValue)
{
    const auto r = run();
    EXPECT_EQ(r.caption, "Aufträge im Projekt: ''");
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(settings.gstProjektPfad, "");
}

TEST_F(StartupTest, ProjectValueWithTrailingBackslashKeepsOneBackslash)
{
    quarnIni(project + "\\");
    const auto r = run();
    EXPECT_EQ(r.caption, "Aufträge im Projekt: '" + project + "\\'");
    EXPECT_EQ(settings.gstProjektPfad, project + "\\");
}

TEST_F(StartupTest, MissingProjectFolderEndsStartup)
{
    quarnIni(dir.file("Gibt es nicht"));
    const auto r = run();
    ASSERT_EQ(ui.messages.size(), 1u);
    expectProblem(0, "Projekt nicht gefunden!");
    EXPECT_EQ(r.caption, "Aufträge im Projekt: '" + dir.file("Gibt es nicht") + "'");
    EXPECT_FALSE(r.completed);
    EXPECT_FALSE(r.inventurDb);
    EXPECT_FALSE(r.gebDb);
    EXPECT_FALSE(r.objektDb);
    EXPECT_EQ(settings.gstProjektPfad, "");
    EXPECT_EQ(settings.gstAppPfad, "");
}

TEST_F(StartupTest, ProjectValueNamingAFileIsNotFound)
{
    quarnIni(project + "/QGebaeude.mdb");
    run();
    ASSERT_EQ(ui.messages.size(), 1u);
    expectProblem(0, "Projekt nicht gefunden!");
}

TEST_F(StartupTest, EmptyProjectFolderLeavesTheProjectPathEmpty)
{
    const std::string empty = dir.file("LeererOrdner");
    fs::create_directories(empty + "/Unterordner");
    quarnIni(empty);
    const auto r = run();
    EXPECT_EQ(settings.gstProjektPfad, "");
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(r.caption, "Aufträge im Projekt: '" + empty + "'");
    // Nothing was seeded into the empty folder; the relative names point elsewhere.
    EXPECT_FALSE(fs::exists(empty + "/QInventur.mdb"));
    EXPECT_TRUE(fs::exists("QInventur.mdb"));
}

// ------------------------------------------------------------------ project type

TEST_F(StartupTest, EmptyProjectTypeMeansJet)
{
    quarnIni(project);
    projektIni("[ODBC]\r\nProjekttyp=\r\n");
    EXPECT_TRUE(run().completed);
    EXPECT_EQ(settings.gstProjekttyp, "ptJet");
}

TEST_F(StartupTest, LowerCasePtjetCountsAsOdbcAndNeedsAConnectionString)
{
    quarnIni(project);
    projektIni("[ODBC]\r\nProjekttyp=ptjet\r\n");
    const auto r = run();
    EXPECT_EQ(settings.gstProjekttyp, "ptjet");
    ASSERT_EQ(ui.messages.size(), 1u);
    expectProblem(0, "ConnectionString nicht gefunden!");
    EXPECT_FALSE(r.completed);
    EXPECT_FALSE(r.inventurDb);
    EXPECT_FALSE(fs::exists(project + "/QInventur.mdb"));
}

TEST_F(StartupTest, OdbcProjectWhoseServerIsOutOfReachShowsTheMessageAndOpensTheRegister)
{
    quarnIni(project);
    projektIni("[ODBC]\r\nProjekttyp=ptODBC\r\nConnectionString=DSN=Quarn;UID=inventur\r\n");
    const auto r = run();
    ASSERT_EQ(ui.messages.size(), 1u);
    const std::string unreachable = "Die Quarn-Datenbank auf dem Server ist nicht erreichbar (DSN=Quarn;UID=inventur).";
    EXPECT_EQ(ui.messages[0].text.rfind(unreachable + "\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].title, "Problem");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(r.completed);
    EXPECT_EQ(settings.gstConnectionString, "DSN=Quarn;UID=inventur");
    ASSERT_TRUE(r.inventurDb);
    EXPECT_TRUE(r.inventurDb->isOpen());
    ASSERT_TRUE(r.gebDb);
    EXPECT_FALSE(r.gebDb->IsOpen());
    EXPECT_EQ(r.gebDb->LastError().rfind("Die Quarn-Datenbank konnte nicht geöffnet werden!\r\n" + unreachable, 0), 0u);
    ASSERT_TRUE(r.objektDb);
    EXPECT_FALSE(r.objektDb->IsOpen());
    EXPECT_THROW(r.objektDb->FindByInvNr("100001"), DbError);
}

// ------------------------------------------------------------------ module

struct ModuleCase {
    const char* value;
    int modul;
};

class StartupModuleTest : public StartupTest, public ::testing::WithParamInterface<ModuleCase> {};

TEST_P(StartupModuleTest, ModuleValueSelectsTheModule)
{
    quarnIni(project);
    projektIni(std::string("[Inventur]\r\nModul=") + GetParam().value + "\r\n");
    settings.giModul = 0;
    const auto r = run();
    EXPECT_EQ(settings.giModul, GetParam().modul);
    ASSERT_TRUE(r.objektDb);
    const auto& m = inst.modules[GetParam().modul];
    EXPECT_TRUE(r.objektDb->FindByInvNr(m.objects.front().name).has_value());
}

INSTANTIATE_TEST_SUITE_P(Values, StartupModuleTest,
                         ::testing::Values(ModuleCase{"INVENTAR", 0}, ModuleCase{"technik", 1},
                                           ModuleCase{"Brandschutz", 2}, ModuleCase{"Möbel", 0},
                                           ModuleCase{"", 0}, ModuleCase{"TECHNIK2", 0}));

TEST_F(StartupTest, MissingModuleKeyMeansInventar)
{
    quarnIni(project);
    projektIni("[ODBC]\r\nProjekttyp=ptJet\r\n");
    run();
    EXPECT_EQ(settings.giModul, 0);
}

// ------------------------------------------------------------------ seeding

TEST_F(StartupTest, NewProjectIsSeededFromTheTemplate)
{
    quarnIni(project);
    run();
    EXPECT_EQ(test::readFile(project + "/QInventur.mdb"),
              test::readFile(program + "/Leeres Projekt/QInventur.mdb"));
    EXPECT_EQ(test::readFile(project + "/QAuftrag.mdb"), test::readFile(program + "/Leeres Projekt/QAuftrag.mdb"));
    for (const char* r : kReportFiles)
        EXPECT_EQ(test::readFile(project + "/Report" + r), std::string("Report ") + r) << r;
    EXPECT_FALSE(fs::exists(project + "/Report"));
}

TEST_F(StartupTest, ProjectWithRegisterIsNeverSeeded)
{
    test::makeRegisterDatabase(project + "/QInventur.mdb");
    const std::string before = test::readFile(project + "/QInventur.mdb");
    quarnIni(project);
    const auto r = run();
    EXPECT_TRUE(r.completed);
    EXPECT_FALSE(fs::exists(project + "/QAuftrag.mdb"));
    EXPECT_FALSE(fs::exists(project + "/Reportinvraum.rpt"));
}

TEST_F(StartupTest, FailedSeedingEndsStartup)
{
    fs::remove(program + "/Leeres Projekt/Report/invliste.rpt");
    quarnIni(project);
    const auto r = run();
    ASSERT_EQ(ui.messages.size(), 1u);
    expectProblem(0, "Die Datenbanken oder die Reports konnten nicht aus dem Verzeichnis Leeres Projekt kopiert "
                     "werden!");
    EXPECT_FALSE(r.completed);
    EXPECT_FALSE(r.inventurDb);
    EXPECT_EQ(settings.gstAppPfad, "");
    // What was copied before the failing file stays.
    EXPECT_TRUE(fs::exists(project + "/QInventur.mdb"));
    EXPECT_TRUE(fs::exists(project + "/Reportinvfehlend.rpt"));
    EXPECT_FALSE(fs::exists(project + "/Reportinvneu.rpt"));
}

TEST_F(StartupTest, CheckDbReportsStopsAtTheFirstMissingTemplateFile)
{
    fs::remove(program + "/Leeres Projekt/QAuftrag.mdb");
    settings.gstAppPfad = program;
    settings.gstProjektPfad = project + "\\";
    EXPECT_FALSE(CheckDB_Reports(settings));
    EXPECT_TRUE(fs::exists(project + "/QInventur.mdb"));
    EXPECT_FALSE(fs::exists(project + "/Reportinvraum.rpt"));
    // Now the register is there: nothing more is done, and that counts as success.
    EXPECT_TRUE(CheckDB_Reports(settings));
    EXPECT_FALSE(fs::exists(project + "/QAuftrag.mdb"));
}

TEST_F(StartupTest, CheckDbReportsWithoutTemplateFolderFails)
{
    settings.gstAppPfad = dir.file("Anderswo");
    settings.gstProjektPfad = project + "\\";
    EXPECT_FALSE(CheckDB_Reports(settings));
    EXPECT_FALSE(fs::exists(project + "/QInventur.mdb"));
}

TEST_F(StartupTest, CheckDbReportsOverwritesOlderCopies)
{
    writeFile(project + "/QAuftrag.mdb", "alt");
    writeFile(project + "/Reportinvart.rpt", "alt");
    settings.gstAppPfad = program;
    settings.gstProjektPfad = project + "\\";
    EXPECT_TRUE(CheckDB_Reports(settings));
    EXPECT_EQ(test::readFile(project + "/Reportinvart.rpt"), "Report invart.rpt");
    EXPECT_NE(test::readFile(project + "/QAuftrag.mdb"), "alt");
}

/// The files seeding puts in the project folder, compared with the template's.
void expectSeeded(const std::string& program, const std::string& project)
{
    EXPECT_EQ(test::readFile(project + "/QInventur.mdb"), test::readFile(program + "/Leeres Projekt/QInventur.mdb"));
    EXPECT_EQ(test::readFile(project + "/QAuftrag.mdb"), test::readFile(program + "/Leeres Projekt/QAuftrag.mdb"));
    for (const char* r : kReportFiles)
        EXPECT_EQ(test::readFile(project + "/Report" + r), std::string("Report ") + r) << r;
}

/// The first half of a file's bytes, as a copy that stopped half-way leaves it.
std::string cutShort(const std::string& file)
{
    const std::string bytes = test::readFile(file);
    return bytes.substr(0, bytes.size() / 2);
}

TEST_F(StartupTest, SeedingLeavesNoFileButTheSpecifiedOnes)
{
    quarnIni(project);
    const auto r = run();
    EXPECT_TRUE(r.completed);
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(project))
        if (entry.path().filename().string()[0] == '~')
            names.insert(entry.path().filename().string());
    EXPECT_TRUE(names.empty()) << *names.begin();
}

void StartupTest::expectRegisterSeededAgain(const std::string& registerBytes)
{
    writeFile(project + "/QInventur.mdb", registerBytes);
    quarnIni(project);
    const auto r = run();
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_TRUE(r.completed);
    expectSeeded(program, project);
}

TEST_F(StartupTest, AnEmptyRegisterLeftByAnInterruptedSeedingIsSeededAgain) { expectRegisterSeededAgain(""); }

TEST_F(StartupTest, ACutShortRegisterLeftByAnInterruptedSeedingIsSeededAgain)
{
    expectRegisterSeededAgain(cutShort(program + "/Leeres Projekt/QInventur.mdb"));
}

TEST_F(StartupTest, AnEmptyOrderTemplateLeftByAnInterruptedSeedingIsSeededAgain)
{
    test::makeRegisterDatabase(project + "/QInventur.mdb");
    writeFile(project + "/QAuftrag.mdb", "");
    quarnIni(project);
    EXPECT_TRUE(run().completed);
    expectSeeded(program, project);
}

TEST_F(StartupTest, ACutShortOrderTemplateLeftByAnInterruptedSeedingIsSeededAgain)
{
    test::makeRegisterDatabase(project + "/QInventur.mdb");
    writeFile(project + "/QAuftrag.mdb", cutShort(program + "/Leeres Projekt/QAuftrag.mdb"));
    quarnIni(project);
    EXPECT_TRUE(run().completed);
    expectSeeded(program, project);
}

TEST_F(StartupTest, ADamagedRegisterBesideAnOrderIsNeverSeeded)
{
    writeFile(project + "/QInventur.mdb", "");
    fs::create_directories(project + "/Inventur");
    test::makeOrderDatabase(project + "/Inventur/EG.mdb");
    quarnIni(project);
    const auto r = run();
    EXPECT_FALSE(r.completed);
    EXPECT_EQ(test::readFile(project + "/QInventur.mdb"), "");
    EXPECT_FALSE(fs::exists(project + "/QAuftrag.mdb"));
    EXPECT_FALSE(fs::exists(project + "/Reportinvraum.rpt"));
}

TEST_F(StartupTest, ADamagedOrderTemplateBesideAnOrderIsNeverSeeded)
{
    test::makeRegisterDatabase(project + "/QInventur.mdb");
    writeFile(project + "/QAuftrag.mdb", "");
    fs::create_directories(project + "/Inventur");
    test::makeOrderDatabase(project + "/Inventur/EG.mdb");
    quarnIni(project);
    EXPECT_TRUE(run().completed);
    EXPECT_EQ(test::readFile(project + "/QAuftrag.mdb"), "");
    EXPECT_FALSE(fs::exists(project + "/Reportinvraum.rpt"));
}

TEST_F(StartupTest, SeedingThatFailsAtTheOrderTemplateKeepsTheRegisterAndNoHiddenFile)
{
    // A copy of the template that can't be read stops seeding; the register was copied before.
    fs::remove(program + "/Leeres Projekt/QAuftrag.mdb");
    fs::create_directories(program + "/Leeres Projekt/QAuftrag.mdb");
    settings.gstAppPfad = program;
    settings.gstProjektPfad = project + "\\";
    EXPECT_FALSE(CheckDB_Reports(settings));
    EXPECT_EQ(test::readFile(project + "/QInventur.mdb"), test::readFile(program + "/Leeres Projekt/QInventur.mdb"));
    EXPECT_FALSE(fs::exists(project + "/QAuftrag.mdb"));
    for (const auto& entry : fs::directory_iterator(project))
        EXPECT_NE(entry.path().filename().string()[0], '~') << entry.path();
}

// ------------------------------------------------------------------ unexpected errors

/// A profile service that fails for one file.
class FailingProfile : public ProfileService {
public:
    explicit FailingProfile(std::string failing) : failing_(std::move(failing)) {}
    std::string ReadProfileValue(const std::string& file, const std::string& section, const std::string& key,
                                 const std::string& def) const override
    {
        if (fileNamePart(file) == failing_)
            throw DbError(dberr::Locked, "Die Datei '" + failing_ + "' ist bereits in Verwendung.");
        return ProfileService::ReadProfileValue(file, section, key, def);
    }

private:
    std::string failing_;
};

TEST_F(StartupTest, ErrorBeforeTheFolderCheckShowsTheCommonMessage)
{
    quarnIni(project);
    const FailingProfile profile("Quarn.ini");
    const auto r = RunStartup(program, settings, ui, profile);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmMain.Form_Load\r\nDie Datei 'Quarn.ini' ist bereits in Verwendung.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_FALSE(r.completed);
    EXPECT_FALSE(r.inventurDb);
}

TEST_F(StartupTest, ErrorsAfterTheFolderCheckAreIgnored)
{
    quarnIni(project);
    projektIni("[ODBC]\r\nProjekttyp=ptODBC\r\n[Inventur]\r\nModul=TECHNIK\r\n");
    const FailingProfile profile("Projekt.ini");
    const auto r = RunStartup(program, settings, ui, profile);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(r.completed);
    // The failing reads were skipped: the type stayed empty and became Jet, the module stayed INVENTAR.
    EXPECT_EQ(settings.gstProjekttyp, "ptJet");
    EXPECT_EQ(settings.giModul, 0);
    ASSERT_TRUE(r.inventurDb);
    EXPECT_TRUE(r.inventurDb->isOpen());
}

TEST_F(StartupTest, WithAnEmptyProjectValueLaterErrorsEndStartup)
{
    quarnIni("");
    const FailingProfile profile("Projekt.ini");
    const auto r = RunStartup(program, settings, ui, profile);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmMain.Form_Load\r\nDie Datei 'Projekt.ini' ist bereits in Verwendung.");
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_FALSE(r.completed);
    EXPECT_EQ(r.caption, "Aufträge im Projekt: ''");
}

TEST_F(StartupTest, RelativeProjectValueLiesBelowTheProgramFolderNotTheWorkingFolder)
{
    quarnIni("..\\Projekt");
    projektIni("[ODBC]\r\nProjekttyp=ptJet\r\n");
    const auto r = run();
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_TRUE(r.completed);
    // The caption shows the value as it stands.
    EXPECT_EQ(r.caption, "Aufträge im Projekt: '..\\Projekt'");
    EXPECT_EQ(settings.gstProjektPfad, program + "\\..\\Projekt\\");
    EXPECT_TRUE(fileExists(project + "/QInventur.mdb")); // seeded there
    EXPECT_FALSE(fs::exists(dir.file("Arbeitsordner") + "/QInventur.mdb"));
}

TEST_F(StartupTest, RelativeProjectValueThatIsNoFolderIsNotFound)
{
    quarnIni("Projekt");
    run();
    expectProblem(0, "Projekt nicht gefunden!");
}

// ------------------------------------------------------------------ the demo project

TEST_F(StartupTest, CopiedProgramFolderFindsTheDemoBesideItself)
{
    demo::writeDemoProject(demo::smallSizes(), program + "/Demo", std::string(QI_SOURCE_DIR) + "/resources/reports");
    demo::writeQuarnIni(program + "/Quarn.ini", demo::projectValueFor(program + "/Quarn.ini", program + "/Demo"));
    const std::string copy = dir.file("Kopie");
    fs::copy(program, copy, fs::copy_options::recursive);
    fs::remove_all(program);
    const auto r = RunStartup(copy, settings, ui);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    ASSERT_TRUE(r.completed);
    EXPECT_EQ(settings.gstProjektPfad, copy + "\\Demo\\");
    EXPECT_TRUE(fileExists(copy + "/Demo/QInventur.mdb"));
    EXPECT_TRUE(r.gebDb->GetGebStruktur(1).has_value());
}

TEST_F(StartupTest, DemoProjectStartsWithAnEmptyOrderListAndNoMessage)
{
    const std::string demoFolder = dir.file("Demo");
    demo::writeDemoProject(demo::smallSizes(), demoFolder, std::string(QI_SOURCE_DIR) + "/resources/reports");
    demo::writeQuarnIni(program + "/Quarn.ini", demoFolder);
    const auto r = run();
    EXPECT_TRUE(ui.messages.empty());
    ASSERT_TRUE(r.completed);
    ASSERT_TRUE(r.inventurDb && r.inventurDb->isOpen());
    CAuftragRecColl orders;
    EXPECT_TRUE(r.inventurDb->ReadAllAuftragRec2Coll(orders)) << r.inventurDb->LastError();
    EXPECT_EQ(orders.Count(), 0);
    EXPECT_TRUE(r.gebDb->GetGebStruktur(1).has_value());
    EXPECT_TRUE(r.objektDb->IsOpen());
}

} // namespace
} // namespace qi
