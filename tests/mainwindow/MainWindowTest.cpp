// The main window driven through the scripted user: start-up, the order list,
// new and deleted orders, opening an order, help and the About box.

#include "ProjectFixture.h"
#include "ScriptedMain.h"

#include "ProgramWindows.h"
#include "Screenshots.h"

#include "CInventurDb.h"
#include "FileSystem.h"
#include "OrderName.h"
#include "HelpTools.h"
#include "LinkedDatabase.h"
#include "frmAbout.h"
#include "ProgramVersion.h"
#include "frmAufNeu.h"
#include "frmMain.h"

#include <QAction>
#include "TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>

#include <deque>
#include <filesystem>
#include <functional>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

QApplication& app() { return test::qtApplication(); }

class MainWindowTest : public ProjectFixture {
protected:
    void SetUp() override
    {
        app();
        ProjectFixture::SetUp();
        window = std::make_unique<ScriptedMain>(ui, programDir);
        connectWindows(*window);
    }
    void TearDown() override { window.reset(); }

    void load()
    {
        window->Form_Load();
        ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
        ASSERT_NE(window->inventurDb(), nullptr);
    }
    void newOrder(const std::string& name, const std::string& person = "Meier")
    {
        window->script.push_back(enter(name, person));
        window->mnuDateiFkt_Click(menuindex::NewOrder);
    }
    QTreeWidget& list() { return *window->lvAuftraege; }
    QTreeWidgetItem* item(const std::string& name)
    {
        for (int i = 0; i < list().topLevelItemCount(); ++i)
            if (list().topLevelItem(i)->text(0).toStdString() == name)
                return list().topLevelItem(i);
        return nullptr;
    }
    void select(const std::string& name)
    {
        QTreeWidgetItem* it = item(name);
        ASSERT_NE(it, nullptr) << name;
        list().setCurrentItem(it);
        it->setSelected(true);
        window->lvAuftraege_ItemClick(it);
    }
    std::vector<CAuftragRec> registerRows()
    {
        CInventurDb reg;
        reg.setDbPath(projectDir + "QInventur.mdb");
        EXPECT_TRUE(reg.OpenDb());
        CAuftragRecColl coll;
        EXPECT_TRUE(reg.ReadAllAuftragRec2Coll(coll));
        std::vector<CAuftragRec> out(coll.begin(), coll.end());
        return out;
    }
    std::string orderFile(const std::string& name) { return projectDir + "Inventur/" + name + ".mdb"; }
    void addRegisterRow(const std::string& name, const std::string& stPfad)
    {
        CInventurDb reg;
        reg.setDbPath(projectDir + "QInventur.mdb");
        ASSERT_TRUE(reg.OpenDb());
        CAuftragRec rec;
        rec.stBezeichung = name;
        rec.stPfad = stPfad;
        ASSERT_TRUE(reg.AddNewAuftragRec(&rec));
    }
    void expectMessage(std::size_t i, const std::string& text, MsgButtons b, MsgIcon icon, const std::string& title)
    {
        ASSERT_GT(ui.messages.size(), i);
        EXPECT_EQ(ui.messages[i].text, text);
        EXPECT_EQ(ui.messages[i].buttons, b);
        EXPECT_EQ(ui.messages[i].icon, icon);
        EXPECT_EQ(ui.messages[i].title, title);
    }

    std::unique_ptr<ScriptedMain> window;
};

TEST_F(MainWindowTest, WindowShowsItsListLabelAndMenus)
{
    // The list's own columns come first; the project overview's follow them (MainWindowOverviewTest).
    const QStringList headers = {"Name", "erstellt", "geändert", "Ersteller"};
    ASSERT_EQ(list().columnCount(), 9);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(list().headerItem()->text(i), headers[i]);
    EXPECT_EQ(window->Label1->text(), QStringLiteral("Öffnen mit Doppelklick"));
    EXPECT_EQ(window->mnuDatei->title(), QStringLiteral("&Datei"));
    EXPECT_EQ(window->mnuDateiFkt.at(100)->text(), QStringLiteral("Auftrag &Neu"));
    EXPECT_EQ(window->mnuDateiFkt.at(300)->text(), QStringLiteral("Auftrag &Löschen"));
    EXPECT_EQ(window->mnuDateiFkt.at(600)->text(), QStringLiteral("&Beenden"));
    EXPECT_EQ(window->mnuHelpFkt.at(100)->text(), QStringLiteral("&Hilfethemen"));
    EXPECT_EQ(window->mnuHelpFkt.at(500)->text(), QStringLiteral("&Info"));
    const auto datei = window->mnuDatei->actions();
    ASSERT_EQ(datei.size(), 4);
    EXPECT_TRUE(datei[2]->isSeparator());
    const auto help = window->mnuHelp->actions();
    ASSERT_EQ(help.size(), 3);
    EXPECT_TRUE(help[1]->isSeparator());
}

TEST_F(MainWindowTest, StartUpSetsTheCaptionAndAnEmptyList)
{
    load();
    EXPECT_EQ(window->windowTitle().toStdString(), "Aufträge im Projekt: '" + root.file("Projekt 1") + "'");
    EXPECT_EQ(list().topLevelItemCount(), 0);
    EXPECT_EQ(window->currentOrder(), nullptr);
    EXPECT_NE(window->orderDb(), nullptr);
    EXPECT_TRUE(fileExists(projectDir + "QInventur.mdb")); // seeded from the template
}

TEST_F(MainWindowTest, StartUpThatEndsEarlyLeavesAWindowWithoutRegister)
{
    writeFile(programDir + "/Quarn.ini", "[Quarn]\r\nProjekt=" + root.file("fehlt") + "\r\n");
    window->Form_Load();
    expectMessage(0, "Projekt nicht gefunden!", MsgButtons::Ok, MsgIcon::Critical, "Problem");
    EXPECT_EQ(window->inventurDb(), nullptr);
    EXPECT_EQ(list().topLevelItemCount(), 0);
    window->mnuDateiFkt_Click(menuindex::NewOrder);
    expectMessage(1, "frmMain.MakeNewOrder\r\nObjektvariable oder With-Blockvariable nicht festgelegt",
                  MsgButtons::Ok, MsgIcon::Critical, "QInventur");
    EXPECT_TRUE(window->dialogs.empty());
}

TEST_F(MainWindowTest, NewOrderCreatesItsDatabaseAndRegisterRow)
{
    load();
    newOrder("Alpha", "Meier");
    EXPECT_TRUE(ui.messages.empty());
    ASSERT_EQ(list().topLevelItemCount(), 1);
    QTreeWidgetItem* it = list().topLevelItem(0);
    EXPECT_EQ(it->text(0), QStringLiteral("Alpha"));
    EXPECT_EQ(it->text(3), QStringLiteral("Meier"));
    EXPECT_EQ(it->data(0, Qt::UserRole).toString(), QStringLiteral("A 1"));
    EXPECT_EQ(it->text(1), it->text(2));
    EXPECT_EQ(it->text(1).size(), 19); // dd.MM.yyyy hh:mm:ss

    const auto rows = registerRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].stBezeichung, "Alpha");
    EXPECT_EQ(rows[0].stPfad, "\\Inventur\\Alpha.mdb");
    EXPECT_EQ(rows[0].stErsteller, "Meier");

    ASSERT_TRUE(fileExists(orderFile("Alpha")));
    auto db = Database::open(orderFile("Alpha"));
    Recordset rs = db->query("SELECT stAuftrag FROM T_Auftrag");
    ASSERT_EQ(rs.size(), 1u);
    EXPECT_EQ(toText(rs.field("stAuftrag")), "Alpha");
    // The list's last order is the current one.
    ASSERT_NE(window->currentOrder(), nullptr);
    EXPECT_EQ(window->currentOrder()->stBezeichung, "Alpha");
}

TEST_F(MainWindowTest, DuplicateNameAsksAgainWithAFreshDialog)
{
    load();
    newOrder("Alpha");
    window->script.push_back([](QDialog& d) {
        auto& f = dynamic_cast<frmAufNeu&>(d);
        EXPECT_TRUE(f.txName->text().isEmpty());
        enter("Alpha")(d);
    });
    window->script.push_back([](QDialog& d) {
        EXPECT_TRUE(dynamic_cast<frmAufNeu&>(d).txName->text().isEmpty());
        enter("Beta", "Schulz")(d);
    });
    window->mnuDateiFkt_Click(menuindex::NewOrder);
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "Es existiert bereits ein Auftrag mit diesem Namen!", MsgButtons::Ok, MsgIcon::Exclamation,
                  "Problem");
    EXPECT_EQ(window->dialogs.size(), 3u);
    ASSERT_EQ(list().topLevelItemCount(), 2);
    EXPECT_EQ(list().topLevelItem(1)->text(0), QStringLiteral("Beta"));
    EXPECT_EQ(registerRows().size(), 2u);
}

TEST_F(MainWindowTest, NameDifferingOnlyInCaseIsAcceptedWithItsOwnFile)
{
    load();
    newOrder("Alpha");
    newOrder("ALPHA");
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(list().topLevelItemCount(), 2);
    EXPECT_TRUE(fileExists(orderFile("Alpha")));
    EXPECT_TRUE(fileExists(orderFile("ALPHA")));
}

TEST_F(MainWindowTest, CancelledDialogCreatesNothing)
{
    load();
    newOrder("Alpha");
    window->script.push_back(cancel());
    window->mnuDateiFkt_Click(menuindex::NewOrder);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(list().topLevelItemCount(), 1);
    EXPECT_EQ(registerRows().size(), 1u);
    EXPECT_EQ(window->currentOrder()->stBezeichung, "Alpha"); // list refilled
}

TEST_F(MainWindowTest, DialogStaysOpenWithoutAName)
{
    frmAufNeu dialog;
    dialog.show();
    dialog.edPerson->setText(QStringLiteral("Meier"));
    dialog.pbOk->click();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.stName, "");
    dialog.txName->setText(QStringLiteral("Lager"));
    dialog.pbOk->click();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.stName, "Lager");
    EXPECT_EQ(dialog.stPerson, "Meier");
    EXPECT_EQ(dialog.Label1->text(), QStringLiteral("Bezeichnung"));
    EXPECT_EQ(dialog.Label2->text(), QStringLiteral("Mitarbeiter"));
}

class EscapingNames : public MainWindowTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(EscapingNames, FailInMakeDatabaseAndCreateNothing)
{
    load();
    newOrder("Alpha");
    const std::string name = GetParam();
    newOrder(name);
    expectMessage(0, "frmMain.MakeDatabase\r\n" + orderNameProblem(name), MsgButtons::Ok, MsgIcon::Critical,
                  "QInventur");
    EXPECT_FALSE(orderNameProblem(name).empty());
    EXPECT_EQ(registerRows().size(), 1u);
    EXPECT_EQ(list().topLevelItemCount(), 1);
    // Only the order folder and its one database are there.
    std::vector<std::string> files;
    for (const auto& e : fs::recursive_directory_iterator(root.path()))
        if (e.path().extension() == ".mdb" && e.path().parent_path().filename() == "Inventur")
            files.push_back(e.path().filename().string());
    EXPECT_EQ(files, std::vector<std::string>{"Alpha.mdb"});
    EXPECT_FALSE(fs::exists(root.file("evil.mdb")));
    EXPECT_FALSE(fs::exists(root.file("Projekt 1/evil.mdb")));
    EXPECT_FALSE(fs::exists("/tmp/evil.mdb"));
}

INSTANTIATE_TEST_SUITE_P(Names, EscapingNames,
                         ::testing::Values("..\\evil", "../evil", "..\\..\\evil", "sub\\evil", "sub/evil", "..",
                                           "C:evil", "C:\\evil", "/tmp/evil", "\\evil", "bad|name", "frage?",
                                           "stern*", "a\"b", "tab\tname"));

TEST_F(MainWindowTest, NameTooLongForTheJournalIsRefusedBeforeAnythingIsWritten)
{
    load();
    newOrder(std::string(300, 'x'));
    expectMessage(0,
                  "frmMain.MakeDatabase\r\nDer Auftragsname ist zu lang: Er darf höchstens 243 Bytes haben (Umlaute "
                  "und andere Sonderzeichen zählen doppelt oder mehrfach), hat aber 300.",
                  MsgButtons::Ok, MsgIcon::Critical, "QInventur");
    EXPECT_TRUE(registerRows().empty());
    EXPECT_EQ(list().topLevelItemCount(), 0);
    EXPECT_FALSE(folderExists(projectDir + "Inventur"));
}

TEST_F(MainWindowTest, MissingOrderTemplateFailsInMakeDatabase)
{
    load();
    fs::remove(projectDir + "QAuftrag.mdb");
    newOrder("Alpha");
    expectMessage(0, "frmMain.MakeDatabase\r\nDatei nicht gefunden", MsgButtons::Ok, MsgIcon::Critical, "QInventur");
    EXPECT_TRUE(registerRows().empty());
}

TEST_F(MainWindowTest, FirstOrderWithABadNameCreatesNotEvenTheOrderFolder)
{
    load();
    ASSERT_FALSE(folderExists(projectDir + "Inventur"));
    newOrder("frage?");
    expectMessage(0, "frmMain.MakeDatabase\r\nDer Auftragsname darf keines der Zeichen < > : \" / \\ | ? * enthalten.",
                  MsgButtons::Ok, MsgIcon::Critical, "QInventur");
    EXPECT_FALSE(folderExists(projectDir + "Inventur"));
    EXPECT_TRUE(registerRows().empty());
}

TEST_F(MainWindowTest, RefilledListLeavesTheCursorOnTheLastOrderWhichIsCurrent)
{
    load();
    newOrder("Alpha");
    newOrder("Beta");
    newOrder("Gamma");
    select("Alpha");
    window->InitAuftraege();
    CAuftragRecColl& coll = window->auftraege();
    ASSERT_EQ(coll.Count(), 3);
    EXPECT_EQ(coll.CurPosition(), 3);
    // The current-order record is the collection's last element itself.
    EXPECT_EQ(window->currentOrder(), coll.Item(3));
    // A GetPrev from there walks on backwards to the one before it.
    CAuftragRec* prev = nullptr;
    ASSERT_TRUE(coll.GetPrev(prev));
    EXPECT_EQ(prev->stBezeichung, "Beta");
}

TEST_F(MainWindowTest, SelectingMakesThatOrderCurrent)
{
    load();
    newOrder("Alpha");
    newOrder("Beta");
    EXPECT_EQ(window->currentOrder()->stBezeichung, "Beta"); // the last one after the refill
    select("Alpha");
    EXPECT_EQ(window->currentOrder()->stBezeichung, "Alpha");
    EXPECT_EQ(window->currentOrder(), window->auftraege().Item(CAuftragRecColl::MakeIndex(1)));
}

TEST_F(MainWindowTest, DoubleClickWithoutSelectionDoesNothing)
{
    load();
    newOrder("Alpha");
    list().clearSelection();
    window->lvAuftraege_DblClick();
    EXPECT_EQ(window->workWindow(), nullptr);
    EXPECT_TRUE(window->isActiveState());
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_FALSE(window->orderDb()->isOpen());
}

TEST_F(MainWindowTest, OpeningAnOrderOpensItsDatabaseRelinksAndShowsTheWorkWindow)
{
    load();
    newOrder("Alpha");
    newOrder("Beta");
    const auto before = registerRows();
    select("Alpha");
    window->lvAuftraege_DblClick();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;

    ASSERT_NE(window->orderDb(), nullptr);
    EXPECT_TRUE(window->orderDb()->isOpen());
    const std::string proj = window->settings().gstProjektPfad;
    const std::string path = proj + "Inventur\\Alpha.mdb";
    EXPECT_EQ(window->orderDb()->DbPath(), path);
    EXPECT_EQ(window->currentOrder()->bOffen, -1);
    const auto after = registerRows();
    EXPECT_GE(after[0].letzte_Aenderung.serial, before[0].letzte_Aenderung.serial);
    EXPECT_EQ(after[0].letzte_Aenderung, window->currentOrder()->letzte_Aenderung);

    auto links = LinkedDatabase::open(reportDb);
    EXPECT_EQ(links->connect("t_Differenzliste"), ";DATABASE=" + path);
    EXPECT_EQ(links->connect("T_Raumkern"), ";DATABASE=" + proj + "QGebaeude.mdb");

    ASSERT_NE(window->workWindow(), nullptr);
    EXPECT_EQ(window->workWindow()->windowTitle(), QStringLiteral("Auftrag: Alpha"));
    EXPECT_TRUE(window->workWindow()->isVisible());
    EXPECT_FALSE(window->isActiveState());
    EXPECT_FALSE(window->centralWidget()->isEnabled());
    EXPECT_TRUE(window->workWindow()->isEnabled());

    // While the order is open the main window does nothing on a double click.
    auto* work = window->workWindow();
    select("Beta");
    window->lvAuftraege_DblClick();
    EXPECT_EQ(window->workWindow(), work);

    // Closing the work window closes the order database; the next paint releases it.
    work->close();
    EXPECT_TRUE(work->f_bReload);
    EXPECT_TRUE(window->isActiveState());
    ASSERT_NE(window->orderDb(), nullptr);
    EXPECT_FALSE(window->orderDb()->isOpen());
    window->Form_Paint();
    EXPECT_EQ(window->orderDb(), nullptr);

    // The second order: the links follow it.
    select("Beta");
    window->lvAuftraege_DblClick();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(LinkedDatabase::open(reportDb)->connect("t_Raum"), ";DATABASE=" + proj + "Inventur\\Beta.mdb");
    window->workWindow()->close();
}

TEST_F(MainWindowTest, WholeRoadOfTwoOrders)
{
    load();
    newOrder("Alpha");
    window->script.push_back(enter("Alpha"));
    window->script.push_back(enter("Beta", "Schulz"));
    window->mnuDateiFkt_Click(menuindex::NewOrder);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Es existiert bereits ein Auftrag mit diesem Namen!");
    ASSERT_EQ(registerRows().size(), 2u);

    select("Alpha");
    window->lvAuftraege_DblClick();
    ASSERT_EQ(ui.messages.size(), 1u);
    const std::string proj = window->settings().gstProjektPfad;
    EXPECT_EQ(toText(Database::open(orderFile("Alpha"))->scalar("SELECT stAuftrag FROM T_Auftrag")), "Alpha");
    EXPECT_EQ(registerRows()[0].stPfad, "\\Inventur\\Alpha.mdb");
    EXPECT_EQ(LinkedDatabase::open(reportDb)->connect("T_Auftrag"), ";DATABASE=" + proj + "Inventur\\Alpha.mdb");
    window->workWindow()->close();
    window->Form_Paint();
    EXPECT_EQ(window->orderDb(), nullptr);

    select("Beta");
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    EXPECT_FALSE(fileExists(orderFile("Beta")));
    EXPECT_TRUE(fileExists(orderFile("Alpha")));
    EXPECT_TRUE(folderExists(projectDir + "Inventur"));
    EXPECT_EQ(registerRows().size(), 1u);
}

TEST_F(MainWindowTest, OrderPathWithoutLeadingBackslashIsOpenedAsItStands)
{
    load();
    newOrder("Alpha");
    const std::string asItStands = projectDir + "Inventur/Extern.mdb";
    makeOrderDatabase(asItStands);
    addRegisterRow("Extern", asItStands);
    window->InitAuftraege();
    select("Extern");
    window->lvAuftraege_DblClick();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(window->orderDb()->DbPath(), asItStands);
    EXPECT_TRUE(window->orderDb()->isOpen());
    window->workWindow()->close();
}

class OutsidePaths : public MainWindowTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(OutsidePaths, AreNeitherOpenedNorDeleted)
{
    // A register row pointing out of the order folder (a register changed by hand, shared with others).
    load();
    makeOrderDatabase(root.file("anderswo.mdb"));
    makeOrderDatabase(projectDir + "QAuftrag-Kopie.mdb");
    writeFile(projectDir + "Inventur-Notiz.mdb", "keine Datenbank");
    fs::create_directories(projectDir + "Inventur");
    writeFile(projectDir + "Inventur/A1.dat", "7,4711,01.02.2015,10:00:00,101,X1,S,I\r\n");
    std::string stPfad = GetParam();
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"<root>", root.path()},
                                   {"<project>", projectDir.substr(0, projectDir.size() - 1)}})
        if (const auto at = stPfad.find(from); at != std::string::npos)
            stPfad.replace(at, from.size(), to);
    addRegisterRow("Extern", stPfad);
    window->InitAuftraege();
    const auto before = treeDigest(root.path());

    select("Extern");
    window->lvAuftraege_DblClick();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmMain.lvAuftraege_DblClick\r\nDie Datenbank '", 0), 0u) << ui.messages[0].text;
    EXPECT_NE(ui.messages[0].text.find("' liegt nicht im Ordner Inventur des Projekts. Sie wird weder geöffnet noch "
                                       "gelöscht."),
              std::string::npos)
        << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(window->workWindow(), nullptr);
    EXPECT_FALSE(window->orderDb()->isOpen());

    select("Extern");
    ui.answers.push_back(MsgResult::Yes);
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    ASSERT_EQ(ui.messages.size(), 3u);
    EXPECT_EQ(ui.messages[2].text.rfind("frmMain.mnuDateiFkt_Click\r\nDie Datenbank '", 0), 0u) << ui.messages[2].text;
    EXPECT_EQ(registerRows().size(), 1u);
    // Not a file changed, the register's time stamps included.
    EXPECT_EQ(treeDigest(root.path()), before);
}

INSTANTIATE_TEST_SUITE_P(Paths, OutsidePaths,
                         ::testing::Values("\\..\\..\\anderswo.mdb", "\\Inventur\\..\\QAuftrag-Kopie.mdb",
                                           "\\Inventur\\..\\..\\anderswo.mdb", "\\QAuftrag-Kopie.mdb",
                                           "\\Inventur-Notiz.mdb", "<root>/anderswo.mdb", "\\Inventur\\A1.dat",
                                           "\\Inventur", "\\Inventur\\", "\\Inventur\\.\\..\\QInventur.mdb",
                                           "/etc/passwd", "..\\anderswo.mdb", "", "\\QInventur.mdb"));

TEST_F(MainWindowTest, OrderWithoutItsDatabaseFileReportsTheOpenError)
{
    load();
    newOrder("Alpha");
    fs::remove(orderFile("Alpha"));
    select("Alpha");
    window->lvAuftraege_DblClick();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmMain.lvAuftraege_DblClick\r\nDie Datenbank ", 0), 0u) << ui.messages[0].text;
    // The path the person reads has one kind of separator.
    EXPECT_NE(ui.messages[0].text.find(displayPath(orderFile("Alpha"))), std::string::npos) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].text.find('\\'), std::string::npos) << ui.messages[0].text;
    EXPECT_EQ(window->workWindow(), nullptr);
    EXPECT_TRUE(window->isActiveState());
}

TEST_F(MainWindowTest, DeletingAnOrderRemovesFileAndRowButKeepsTheFolder)
{
    load();
    newOrder("Alpha");
    newOrder("Beta");
    select("Beta");
    ui.answers.push_back(MsgResult::Yes);
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    expectMessage(0, "Auftrag 'Beta' löschen ?", MsgButtons::YesNo, MsgIcon::None, "Quarn");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_FALSE(fileExists(orderFile("Beta")));
    EXPECT_TRUE(fileExists(orderFile("Alpha")));
    EXPECT_TRUE(folderExists(projectDir + "Inventur"));
    const auto rows = registerRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].stBezeichung, "Alpha");
    ASSERT_EQ(list().topLevelItemCount(), 1);
    EXPECT_EQ(window->orderDb(), nullptr);

    // The last order too: the folder stays.
    select("Alpha");
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    EXPECT_TRUE(registerRows().empty());
    EXPECT_TRUE(folderExists(projectDir + "Inventur"));
    EXPECT_EQ(window->currentOrder(), nullptr);
}

TEST_F(MainWindowTest, DeletingAskedNoKeepsTheOrder)
{
    load();
    newOrder("Alpha");
    select("Alpha");
    ui.answers.push_back(MsgResult::No);
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    EXPECT_EQ(ui.messages.size(), 1u);
    EXPECT_TRUE(fileExists(orderFile("Alpha")));
    EXPECT_EQ(registerRows().size(), 1u);
}

TEST_F(MainWindowTest, DeletingWithoutSelectionAsksToSelect)
{
    load();
    newOrder("Alpha");
    list().clearSelection();
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "Zu löschenden Auftrag zuerst auswählen!", MsgButtons::Ok, MsgIcon::Exclamation, "Achtung");
    EXPECT_EQ(registerRows().size(), 1u);
}

TEST_F(MainWindowTest, DeletingAnOrderWhoseFileIsGoneStillDeletesTheRow)
{
    load();
    newOrder("Alpha");
    fs::remove(orderFile("Alpha"));
    select("Alpha");
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    EXPECT_EQ(ui.messages.size(), 1u); // only the question
    EXPECT_TRUE(registerRows().empty());
}

TEST_F(MainWindowTest, FailingRegisterDeleteIsReported)
{
    load();
    newOrder("Alpha");
    select("Alpha");
    window->inventurDb()->CloseDb();
    window->mnuDateiFkt_Click(menuindex::DeleteOrder);
    ASSERT_EQ(ui.messages.size(), 2u);
    expectMessage(1, "frmMain.mnuDateiFkt_Click\r\nDer Datensatz konnte nicht gelöscht werden!", MsgButtons::Ok,
                  MsgIcon::Critical, "QInventur");
}

TEST_F(MainWindowTest, FailingListReadIsReported)
{
    load();
    window->inventurDb()->CloseDb();
    window->InitAuftraege();
    expectMessage(0, "frmMain.InitAuftraege\r\nDie Datensätze konnten nicht in die Liste gelesen werden!",
                  MsgButtons::Ok, MsgIcon::Critical, "QInventur");
}

TEST_F(MainWindowTest, FailingRegisterInsertIsReported)
{
    load();
    Database::create(root.file("leer.mdb"))->executeScript("CREATE TABLE T_Andere (a)"); // no T_Auftrag
    window->inventurDb()->setDbPath(root.file("leer.mdb"));
    ASSERT_TRUE(window->inventurDb()->OpenDb());
    newOrder("Alpha");
    ASSERT_GE(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmMain.MakeNewOrder\r\nDer Datensatz konnte nicht gespeichert werden!", 0), 0u)
        << ui.messages[0].text;
}

TEST_F(MainWindowTest, UnloadWritesTheCurrentOrderBackAndReportsFailure)
{
    load();
    newOrder("Alpha");
    select("Alpha");
    window->lvAuftraege_DblClick();
    ASSERT_TRUE(ui.messages.empty());
    QPointer<OrderWindow> work = window->workWindow();
    ASSERT_NE(work, nullptr);
    const JetDate opened = window->currentOrder()->letzte_Aenderung;

    // Someone changed the row behind the window's back: the unload writes the record back over it.
    {
        CInventurDb reg;
        reg.setDbPath(projectDir + "QInventur.mdb");
        ASSERT_TRUE(reg.OpenDb());
        CAuftragRec rec = registerRows().at(0);
        rec.letzte_Aenderung = JetDate::fromParts(2001, 2, 3, 4, 5, 6);
        rec.stErsteller = "Fremd";
        ASSERT_TRUE(reg.EditAuftragRec(&rec));
    }
    window->currentOrder()->stErsteller = "Meier-Schulz";
    window->close();
    EXPECT_TRUE(ui.messages.empty());
    const auto rows = registerRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].stErsteller, "Meier-Schulz");
    EXPECT_EQ(rows[0].letzte_Aenderung, opened);
    // Everything was released, the work window closed its order first.
    EXPECT_EQ(window->orderDb(), nullptr);
    EXPECT_EQ(window->inventurDb(), nullptr);
    EXPECT_EQ(window->gebDb(), nullptr);
    EXPECT_EQ(window->workWindow(), nullptr);
    ASSERT_NE(work, nullptr); // goes with the next turn of the event loop
    EXPECT_TRUE(work->f_bReload);
    EXPECT_FALSE(work->isVisible());

    // A write-back that fails is reported, and the unload stops there.
    auto second = std::make_unique<ScriptedMain>(ui, programDir);
    connectWindows(*second);
    second->Form_Load();
    ASSERT_TRUE(ui.messages.empty());
    second->inventurDb()->CloseDb();
    second->close();
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "frmMain.Form_Unload\r\nDer Datensatz konnte nicht aktualisiert werden!", MsgButtons::Ok,
                  MsgIcon::Critical, "QInventur");
    EXPECT_NE(second->inventurDb(), nullptr);
    EXPECT_NE(second->gebDb(), nullptr);
}

TEST_F(MainWindowTest, UnloadWithAClosedRegisterReportsTheFailure)
{
    load();
    newOrder("Alpha");
    window->inventurDb()->CloseDb();
    window->Form_Unload();
    expectMessage(0, "frmMain.Form_Unload\r\nDer Datensatz konnte nicht aktualisiert werden!", MsgButtons::Ok,
                  MsgIcon::Critical, "QInventur");
    // The unload stopped there: nothing was released.
    EXPECT_NE(window->inventurDb(), nullptr);
    EXPECT_NE(window->orderDb(), nullptr);
    EXPECT_NE(window->gebDb(), nullptr);
}

TEST_F(MainWindowTest, QuitClosesTheWindow)
{
    load();
    window->show();
    window->mnuDateiFkt_Click(menuindex::Quit);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->inventurDb(), nullptr);
}

TEST_F(MainWindowTest, HelpContentsShowsTheProgramsHelpFile)
{
    window->mnuHelpFkt_Click(menuindex::HelpContents);
    ASSERT_EQ(ui.helpFiles.size(), 1u);
    EXPECT_EQ(ui.helpFiles[0], programDir + "\\QInventur.html");
}

TEST(HelpTools, OnlyTheContentsCommandShowsHelp)
{
    ScriptedUserInteraction ui;
    EXPECT_FALSE(WinHelpA(ui, "x.html", 1, 0));
    EXPECT_FALSE(WinHelpA(ui, "", HELP_CONTENTS, 0));
    EXPECT_TRUE(ui.helpFiles.empty());
    EXPECT_TRUE(WinHelpA(ui, "x.html", 3, 0));
    EXPECT_EQ(ui.helpFiles, std::vector<std::string>{"x.html"});
}

TEST(HelpFile, ShippedInTheProgramFolderInGerman)
{
    const std::string help = readFile(std::string(QI_PROGRAM_DIR) + "/QInventur.html");
    for (const char* topic : {"Aufträge", "Räume", "Scannerdateien", "Auswertung", "Berichte", "Fehlerlisten",
                              "Inventarnummer"})
        EXPECT_NE(help.find(topic), std::string::npos) << topic;
}

TEST_F(MainWindowTest, AboutBoxShowsTheVersion)
{
    window->mnuHelpFkt_Click(menuindex::About);
    ASSERT_EQ(window->dialogs.size(), 1u);
    EXPECT_EQ(window->dialogs[0], "Info über ...");
    EXPECT_EQ(window->aboutVersion, "Version :  4.01.00");
    EXPECT_EQ(window->aboutButton, "&Schließen");
    EXPECT_EQ(window->aboutLine, "Quarn - Inventurauftrag Quarn 4");
    // Below the version label, the version of the build as "--version" prints it.
    EXPECT_EQ(window->aboutBuild, versionLine());
    EXPECT_EQ(window->aboutBuild.rfind("QInventur 4.1.0", 0), 0u) << window->aboutBuild;
}

TEST_F(MainWindowTest, ScreenshotRendersOffscreen)
{
    load();
    newOrder("Erdgeschoss Nord", "Meier");
    newOrder("Lager Süd", "Schulz");
    window->show();
    const QImage shot = screenshot(*window, QStringLiteral("frmMain"));
    ASSERT_FALSE(shot.isNull());
    EXPECT_EQ(shot.size(), window->size() * window->devicePixelRatio());
    // Drawn: more than a background and a frame.
    EXPECT_GT(colourCount(shot), 20);
    const QStringList texts = visibleTexts(*window);
    for (const char* t : {"&Datei", "&?", "Name", "erstellt", "geändert", "Ersteller", "Erdgeschoss Nord", "Lager Süd",
                          "Meier", "Schulz", "Öffnen mit Doppelklick"})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(t))) << t;
    EXPECT_TRUE(QFileInfo::exists(QCoreApplication::applicationDirPath() + QStringLiteral("/screenshots/frmMain.png")));
}

} // namespace
} // namespace qi::test
