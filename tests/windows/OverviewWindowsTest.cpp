// The project overview as a person meets it: the window "Projektübersicht" over a result
// filled by hand and over the demo project's own, the menu "&Projekt" of the main window,
// the columns of our own in its order list, and opening an order from the overview.

#include "ProgramFixture.h"

#include "CorrectionListWindow.h"
#include "Database.h"
#include "FileSystem.h"
#include "MainWindowOverview.h"
#include "OverviewTables.h"
#include "ProjectOverviewWindow.h"
#include "ProjectReports.h"
#include "ProjectResultSchema.h"
#include "ReportPreview.h"
#include "Screenshots.h"

#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include <future>
#include <stdexcept>

namespace qi::test {
namespace {

/// A result with two orders and rows in every list, as a computation might leave it.
std::unique_ptr<Database> handResult()
{
    auto db = Database::inMemory();
    createProjectResultSchema(*db);
    db->execute("INSERT INTO P_Auftrag (lAuftragID, stAuftrag, stStand, iRaeume, iRaeumeN, iRaeumeE, iRaeumeL, "
                "iDateien, iScans, iErwartet, iAmPlatz, i1, i3b, dProzent, dRaeumeFertig, stLetzterScan) VALUES "
                "(1, 'Erdgeschoss', 'aktuell', 3, 1, 1, 1, 2, 12, 10, 6, 6, 4, 60.0, 66.6667, '2026-11-03 14:05:09'), "
                "(2, 'Keller', 'nie ausgewertet', 2, 2, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, '')");
    db->execute("INSERT INTO P_Raum (stAuftrag, lRaumID, stRaumNr, stBezeichnung, stStatus, iErwartet, iAmPlatz, "
                "iGescannt, dProzent, stLetzterScan) VALUES "
                "('Erdgeschoss', 1, 'E0.1', 'Büro Nord', 'E', 4, 3, 5, 75, '2026-11-03 14:05:09'), "
                "('Erdgeschoss', 2, 'E0.2', 'Flur', 'L', 3, 3, 3, 100, '2026-11-02 08:00:00'), "
                "('Erdgeschoss', 3, 'E0.3', 'Lager', 'N', 3, 0, 0, 0, ''), "
                "('Keller', 1, 'K0.1', 'Heizung', 'N', 5, 0, 0, 0, '')");
    db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stIstInvNR, stTyp, stBeschreibung, stArtNr, "
                "Datum, Uhrzeit) VALUES "
                "('Erdgeschoss', 'E0.1', 'I100', 'I100', '1 OK', 'Stuhl', 'A1', '03.11.2026', '14:05:09'), "
                "('Erdgeschoss', 'E0.1', 'I101', '', '3b', 'Tisch', 'A2', '', ''), "
                "('Erdgeschoss', 'E0.2', 'I200', 'I200', '1 OK', 'Schrank', 'A3', '02.11.2026', '08:00:00')");
    db->execute("INSERT INTO L_Verschoben (stInvNr, stBeschreibung, stArtNr, stAuftragSoll, stRaumSoll, stAuftragIst, "
                "stRaumIst, Datum, Uhrzeit) VALUES ('I101', 'Tisch', 'A2', 'Erdgeschoss', 'E0.1', 'Keller', 'K0.1', "
                "'04.11.2026', '09:30:00'), ('I102', 'Lampe', 'A4', 'Keller', 'K0.1', 'Erdgeschoss', 'E0.2', "
                "'02.11.2026', '08:10:00')");
    db->execute("INSERT INTO L_Doppelt (stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stDatei, iAuftraege, iRang) VALUES "
                "('I300', 'Keller', 'K0.1', '04.11.2026', '10:00:00', 'k.dat', 2, 1), "
                "('I300', 'Erdgeschoss', 'E0.1', '03.11.2026', '11:00:00', 'e.dat', 2, 2)");
    db->execute("INSERT INTO L_Zuviel (stAuftrag, stRaum, stInvNr, stArtNr, stQuarn) VALUES "
                "('Erdgeschoss', 'E0.1', 'I400', 'A5', 'O2.7')");
    db->execute("INSERT INTO L_Unbekannt (stInvNr, stArtNr, stAuftraege, stRaum, iScans, Datum) VALUES "
                "('X1', 'A6', 'Erdgeschoss, Keller', 'E0.1', 2, '03.11.2026'), ('X2', '', 'Keller', 'K0.1', 1, "
                "'04.11.2026'), ('X3', '', 'Keller', 'K0.1', 1, '04.11.2026')");
    db->execute("INSERT INTO L_Fehlend (stInvNr, stBeschreibung, stArtNr, stAuftrag, stRaum) VALUES "
                "('I500', 'Regal', 'A7', 'Erdgeschoss', 'E0.3')");
    db->execute("INSERT INTO L_Ungeprueft (lIdRB, stRaumNr, stBezeichnung, iErwartet, stPruefung) VALUES "
                "(90, 'D1.1', 'Dachboden', 7, ?1)",
                {kNichtGeprueft});
    db->execute("INSERT INTO L_Ueberschneidung (lIdRB, stRaumNr, stBezeichnung, stAuftraege, iAuftraege) VALUES "
                "(11, 'E0.1', 'Büro Nord', 'Erdgeschoss, Keller', 2)");
    db->execute("INSERT INTO L_Hinweis (stAuftrag, stArt, stText, stDatei) VALUES "
                "('Keller', ?1, 'Der Auftrag Keller wurde noch nie ausgewertet.', ''), "
                "('', ?2, 'Die Datei Alt.mdb im Ordner Inventur gehört zu keinem Auftrag.', 'Alt.mdb')",
                {kHinweisNieAusgewertet, kHinweisOhneAuftrag});
    return db;
}

QStringList row(const QTreeWidget& list, int i)
{
    QStringList out;
    for (int c = 0; c < list.columnCount(); ++c)
        out << list.topLevelItem(i)->text(c);
    return out;
}

QStringList headings(const QTreeWidget& list)
{
    QStringList out;
    for (int c = 0; c < list.columnCount(); ++c)
        out << list.headerItem()->text(c);
    return out;
}

int shownRows(const QTreeWidget& list)
{
    int n = 0;
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        n += list.topLevelItem(i)->isHidden() ? 0 : 1;
    return n;
}

QTreeWidgetItem* itemOf(QTreeWidget& list, const QString& first)
{
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        if (list.topLevelItem(i)->text(0) == first)
            return list.topLevelItem(i);
    return nullptr;
}

/// Lets a run end and hands over what it sent, also the runs that its end starts.
void settle(ProjectResultRun& run)
{
    for (int i = 0; i < 10 && run.running(); ++i)
        run.wait();
}

/// The same for the order list's figures, whose computation starts from the event loop.
void settle(MainWindowOverview& overview)
{
    for (int i = 0; i < 10; ++i) {
        QCoreApplication::processEvents();
        if (!overview.figuresRun().running())
            break;
        settle(overview.figuresRun());
    }
}

// ------------------------------------------------------------------ the window over a given result

class OverviewWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        qtApplication();
        window = std::make_unique<ProjectOverviewWindow>(ui, [this](const OverviewOptions& o) {
            asked.push_back(o.freshEvaluation);
            return handResult();
        });
    }

    ScriptedUserInteraction ui;
    std::vector<bool> asked; ///< freshEvaluation of each computation
    std::unique_ptr<ProjectOverviewWindow> window;
};

TEST_F(OverviewWindowTest, ShowsTheOrdersAndEveryListInATabOfItsOwn)
{
    window->showResult(handResult());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Projektübersicht"));
    ASSERT_EQ(window->tabs->count(), 9);
    const QStringList captions{"Aufträge (2)",         "Verschoben (2)",     "Doppelt erfasst (2)",
                               "Zuviel (1)",           "Nicht in Quarn (3)", "Fehlend (1)",
                               "Nicht geprüft (1)",    "Überschneidungen (1)", "Hinweise (2)"};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(window->tabs->tabText(i), captions[i]);
    EXPECT_EQ(window->lbSumme->text(),
              QStringLiteral("2 Aufträge, Räume fertig: 2 von 5 (40,0 %), Objekte gefunden: 6 von 15 (40,0 %), Scans: 12"));

    QTreeWidget& orders = *window->lvAuftraege;
    EXPECT_EQ(headings(orders).mid(0, 3), (QStringList{"Auftrag", "Stand", "Räume"}));
    ASSERT_EQ(orders.topLevelItemCount(), 2);
    EXPECT_EQ(row(orders, 0).mid(0, 12), (QStringList{"Erdgeschoss", "aktuell", "3", "1", "1", "1", "66,7", "2", "12",
                                                      "10", "6", "60,0"}));
    EXPECT_EQ(orders.topLevelItem(0)->text(18), QStringLiteral("03.11.2026 14:05:09"));
    EXPECT_EQ(row(orders, 1).mid(0, 2), (QStringList{"Keller", "nie ausgewertet"}));

    const auto& tabs = window->listTabs;
    ASSERT_EQ(tabs.size(), 8u);
    EXPECT_EQ(headings(*tabs[0].list), (QStringList{"Inv.-Nr.", "Beschreibung", "Artikel", "Auftrag (Soll)",
                                                    "Raum (Soll)", "Auftrag (Ist)", "Raum (Ist)", "Datum", "Uhrzeit"}));
    EXPECT_EQ(row(*tabs[0].list, 0), (QStringList{"I101", "Tisch", "A2", "Erdgeschoss", "E0.1", "Keller", "K0.1",
                                                  "04.11.2026", "09:30:00"}));
    EXPECT_EQ(row(*tabs[0].list, 1).mid(0, 4), (QStringList{"I102", "Lampe", "A4", "Keller"}));
    // The later scan of a number in several orders comes first.
    EXPECT_EQ(row(*tabs[1].list, 0), (QStringList{"I300", "Keller", "K0.1", "04.11.2026", "10:00:00", "k.dat", "2", "1"}));
    EXPECT_EQ(row(*tabs[1].list, 1)[1], QStringLiteral("Erdgeschoss"));
    EXPECT_EQ(row(*tabs[2].list, 0), (QStringList{"Erdgeschoss", "E0.1", "I400", "A5", "O2.7", "", ""}));
    EXPECT_EQ(row(*tabs[3].list, 0), (QStringList{"X1", "A6", "Erdgeschoss, Keller", "E0.1", "2", "03.11.2026"}));
    EXPECT_EQ(row(*tabs[4].list, 0), (QStringList{"I500", "Regal", "A7", "Erdgeschoss", "E0.3"}));
    EXPECT_EQ(headings(*tabs[5].list), (QStringList{"Raum", "Bezeichnung", "Objekte in Quarn", "Prüfung"}));
    EXPECT_EQ(row(*tabs[5].list, 0), (QStringList{"D1.1", "Dachboden", "7", "nicht geprüft"}));
    EXPECT_EQ(row(*tabs[6].list, 0), (QStringList{"E0.1", "Büro Nord", "Erdgeschoss, Keller", "2"}));
    EXPECT_EQ(headings(*tabs[7].list), (QStringList{"Auftrag", "Art", "Hinweis", "Datei"}));
    EXPECT_EQ(row(*tabs[7].list, 0),
              (QStringList{"", "Datei ohne Auftrag", "Die Datei Alt.mdb im Ordner Inventur gehört zu keinem Auftrag.",
                           "Alt.mdb"}));
    EXPECT_EQ(row(*tabs[7].list, 1)[1], QStringLiteral("nie ausgewertet"));
}

TEST_F(OverviewWindowTest, AnOrderShowsItsRoomsAndARoomItsObjects)
{
    window->showResult(handResult());
    EXPECT_EQ(window->lvRaeume->topLevelItemCount(), 0);
    EXPECT_EQ(window->lbRaeume->text(), QStringLiteral("Räume"));
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    EXPECT_EQ(window->lbRaeume->text(), QStringLiteral("Räume des Auftrags Erdgeschoss"));
    EXPECT_EQ(headings(*window->lvRaeume), (QStringList{"Raum", "Bezeichnung", "Status", "Erwartet", "Gefunden",
                                                        "Gescannt", "Gefunden %", "Letzter Scan"}));
    ASSERT_EQ(window->lvRaeume->topLevelItemCount(), 3);
    EXPECT_EQ(row(*window->lvRaeume, 0),
              (QStringList{"E0.1", "Büro Nord", "E", "4", "3", "5", "75,0", "03.11.2026 14:05:09"}));
    EXPECT_EQ(window->lvObjekte->topLevelItemCount(), 0);

    window->lvRaeume->setCurrentItem(itemOf(*window->lvRaeume, QStringLiteral("E0.1")));
    EXPECT_EQ(window->lbObjekte->text(), QStringLiteral("Objekte im Raum E0.1"));
    ASSERT_EQ(window->lvObjekte->topLevelItemCount(), 2);
    EXPECT_EQ(row(*window->lvObjekte, 0).mid(0, 5), (QStringList{"1 OK", "I100", "I100", "Stuhl", "A1"}));
    EXPECT_EQ(row(*window->lvObjekte, 1).mid(0, 4), (QStringList{"3b", "I101", "", "Tisch"}));

    // Another order: its rooms, no objects until a room is chosen.
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Keller")));
    ASSERT_EQ(window->lvRaeume->topLevelItemCount(), 1);
    EXPECT_EQ(window->lvRaeume->topLevelItem(0)->text(0), QStringLiteral("K0.1"));
    EXPECT_EQ(window->lvObjekte->topLevelItemCount(), 0);
    EXPECT_EQ(window->lbObjekte->text(), QStringLiteral("Objekte"));

    // A new result keeps the order and the room chosen.
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    window->lvRaeume->setCurrentItem(itemOf(*window->lvRaeume, QStringLiteral("E0.2")));
    window->showResult(handResult());
    ASSERT_NE(window->lvAuftraege->currentItem(), nullptr);
    EXPECT_EQ(window->lvAuftraege->currentItem()->text(0), QStringLiteral("Erdgeschoss"));
    ASSERT_NE(window->lvRaeume->currentItem(), nullptr);
    EXPECT_EQ(window->lvRaeume->currentItem()->text(0), QStringLiteral("E0.2"));
    EXPECT_EQ(window->lvObjekte->topLevelItemCount(), 1);
}

TEST_F(OverviewWindowTest, FilterKeepsTheRowsThatContainItsText)
{
    window->showResult(handResult());
    auto& unknown = window->listTabs[3];
    EXPECT_EQ(unknown.filter->placeholderText(), QStringLiteral("Filter"));
    unknown.filter->setText(QStringLiteral("kel"));
    EXPECT_EQ(shownRows(*unknown.list), 3); // "Erdgeschoss, Keller" and twice "Keller"
    unknown.filter->setText(QStringLiteral("x2"));
    EXPECT_EQ(shownRows(*unknown.list), 1);
    EXPECT_FALSE(itemOf(*unknown.list, QStringLiteral("X2"))->isHidden());
    // A new result keeps the filter.
    window->showResult(handResult());
    EXPECT_EQ(shownRows(*unknown.list), 1);
    unknown.filter->clear();
    EXPECT_EQ(shownRows(*unknown.list), 3);

    // The tab counts the list's rows, whatever the filter keeps.
    unknown.filter->setText(QStringLiteral("x3"));
    EXPECT_EQ(shownRows(*unknown.list), 1);
    EXPECT_EQ(window->tabs->tabText(4), QStringLiteral("Nicht in Quarn (3)"));
    EXPECT_TRUE(rowMatches({"Erdgeschoss", "Büro"}, QStringLiteral(" büro ")));
    EXPECT_FALSE(rowMatches({"Erdgeschoss", "Büro"}, QStringLiteral("Keller")));
    EXPECT_TRUE(rowMatches({}, QString()));

    // An order that the filter leaves out takes its rooms along; one it keeps keeps them.
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    EXPECT_EQ(window->lvRaeume->topLevelItemCount(), 3);
    window->txFilterAuftraege->setText(QStringLiteral("aktuell"));
    EXPECT_EQ(shownRows(*window->lvAuftraege), 1);
    EXPECT_EQ(window->lvAuftraege->currentItem(), itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    EXPECT_EQ(window->lvRaeume->topLevelItemCount(), 3);
    window->txFilterAuftraege->setText(QStringLiteral("nie ausgewertet"));
    EXPECT_EQ(shownRows(*window->lvAuftraege), 1);
    EXPECT_NE(itemOf(*window->lvAuftraege, QStringLiteral("Keller")), nullptr);
    EXPECT_EQ(itemOf(*window->lvRaeume, QStringLiteral("E0.1")), nullptr);
    window->txFilterAuftraege->clear();
    EXPECT_EQ(shownRows(*window->lvAuftraege), 2);
}

TEST_F(OverviewWindowTest, ColumnsSortByAClickOnTheirHeading)
{
    window->showResult(handResult());
    QTreeWidget& orders = *window->lvAuftraege;
    // "Scans": 0 before 12; a second click turns the order round.
    emit orders.header()->sectionClicked(8);
    EXPECT_EQ(orders.topLevelItem(0)->text(0), QStringLiteral("Keller"));
    emit orders.header()->sectionClicked(8);
    EXPECT_EQ(orders.topLevelItem(0)->text(0), QStringLiteral("Erdgeschoss"));
    QTreeWidget& moved = *window->listTabs[0].list;
    emit moved.header()->sectionClicked(7); // "Datum" as dates
    EXPECT_EQ(moved.topLevelItem(0)->text(0), QStringLiteral("I102"));
    // A new result stays sorted as chosen.
    window->showResult(handResult());
    EXPECT_EQ(moved.topLevelItem(0)->text(0), QStringLiteral("I102"));
    EXPECT_EQ(orders.topLevelItem(0)->text(0), QStringLiteral("Erdgeschoss"));
}

TEST_F(OverviewWindowTest, RefreshComputesAsTheOrdersHoldItThenFresh)
{
    EXPECT_EQ(window->pbAktualisieren->text(), QStringLiteral("&Aktualisieren"));
    EXPECT_EQ(window->mnuAktualisieren->shortcut(), QKeySequence(Qt::Key_F5));
    EXPECT_FALSE(window->pbAbbrechen->isEnabled());
    window->refresh();
    EXPECT_FALSE(window->pbAktualisieren->isEnabled());
    EXPECT_TRUE(window->pbAbbrechen->isEnabled());
    EXPECT_EQ(window->lbStand->text(), QStringLiteral("Wird berechnet …"));
    settle(window->run());
    EXPECT_EQ(asked, (std::vector<bool>{false, true}));
    EXPECT_EQ(window->lvAuftraege->topLevelItemCount(), 2);
    EXPECT_TRUE(window->lbStand->text().startsWith(QStringLiteral("Stand: "))) << window->lbStand->text().toStdString();
    EXPECT_TRUE(window->pbAktualisieren->isEnabled());
    EXPECT_FALSE(window->pbAbbrechen->isEnabled());
    EXPECT_FALSE(window->pgBerechnung->isVisibleTo(window.get()));
    EXPECT_TRUE(ui.messages.empty());

    // F5 computes again, as the menu entry does.
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(window.get(), Qt::Key_F5);
    EXPECT_TRUE(window->run().running());
    settle(window->run());
    EXPECT_EQ(asked.size(), 4u);
    window->mnuAktualisieren->trigger();
    settle(window->run());
    EXPECT_EQ(asked.size(), 6u);
}

TEST_F(OverviewWindowTest, MenusAndButtons)
{
    const auto menus = window->menuBar()->actions();
    ASSERT_EQ(menus.size(), 2);
    EXPECT_EQ(menus[0]->text(), QStringLiteral("&Datei"));
    EXPECT_EQ(menus[1]->text(), QStringLiteral("&Berichte"));
    const auto datei = window->mnuDatei->actions();
    ASSERT_EQ(datei.size(), 4);
    EXPECT_EQ(datei[0], window->mnuAktualisieren);
    EXPECT_EQ(datei[0]->text(), QStringLiteral("&Aktualisieren"));
    EXPECT_EQ(datei[1], window->mnuKorrekturliste);
    EXPECT_EQ(datei[1]->text(), QStringLiteral("&Korrekturliste…"));
    EXPECT_TRUE(datei[2]->isSeparator());
    EXPECT_EQ(datei[3], window->mnuSchliessen);
    EXPECT_EQ(datei[3]->text(), QStringLiteral("&Schließen"));
    window->show();
    window->mnuSchliessen->trigger();
    EXPECT_FALSE(window->isVisible());
    // Without a result the reports have nothing to show.
    for (QPushButton* button : window->pbBerichte)
        EXPECT_FALSE(button->isEnabled());
    for (QAction* action : window->mnuBerichteFkt)
        EXPECT_FALSE(action->isEnabled());
    window->showResult(handResult());
    for (QPushButton* button : window->pbBerichte)
        EXPECT_TRUE(button->isEnabled());
    for (QAction* action : window->mnuBerichteFkt)
        EXPECT_TRUE(action->isEnabled());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(OverviewWindowTest, ProgressIsShownAndTheComputationMayBeStopped)
{
    std::promise<void> stepTaken, goOn;
    std::shared_future<void> released = goOn.get_future().share();
    window->setSource([&](const OverviewOptions& o) -> std::unique_ptr<Database> {
        o.progress(1, 3, "Auftrag Keller");
        stepTaken.set_value();
        released.wait();
        if (!o.progress(2, 3, "Auftrag Erdgeschoss"))
            throw OverviewCancelled{};
        return handResult();
    });
    window->refresh();
    stepTaken.get_future().wait();
    QCoreApplication::sendPostedEvents(&window->run(), QEvent::MetaCall);
    EXPECT_TRUE(window->pgBerechnung->isVisibleTo(window.get()));
    EXPECT_EQ(window->pgBerechnung->maximum(), 3);
    EXPECT_EQ(window->pgBerechnung->value(), 1);
    EXPECT_EQ(window->lbStand->text(), QStringLiteral("Auftrag Keller"));
    EXPECT_EQ(window->pbAbbrechen->text(), QStringLiteral("Abb&rechen"));
    window->pbAbbrechen->click();
    goOn.set_value();
    settle(window->run());
    EXPECT_EQ(window->lbStand->text(), QStringLiteral("Berechnung abgebrochen."));
    EXPECT_EQ(window->lvAuftraege->topLevelItemCount(), 0);
    EXPECT_TRUE(window->pbAktualisieren->isEnabled());
    EXPECT_FALSE(window->pbAbbrechen->isEnabled());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(OverviewWindowTest, AFailedComputationIsReported)
{
    window->setSource([](const OverviewOptions&) -> std::unique_ptr<Database> {
        throw std::runtime_error("Die Auftragsverwaltung kann nicht gelesen werden.");
    });
    window->refresh();
    settle(window->run());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "ProjectOverviewWindow.refresh\r\nDie Auftragsverwaltung kann nicht gelesen werden.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(window->lbStand->text(), QStringLiteral("Berechnung fehlgeschlagen."));
    EXPECT_TRUE(window->pbAktualisieren->isEnabled());
}

TEST_F(OverviewWindowTest, DoubleClickOnAnOrderAsksToOpenIt)
{
    std::vector<std::int32_t> opened;
    window->setOpenOrder([&](std::int32_t id) { opened.push_back(id); });
    window->showResult(handResult());
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Keller")));
    emit window->lvAuftraege->itemDoubleClicked(window->lvAuftraege->currentItem(), 0);
    EXPECT_EQ(opened, (std::vector<std::int32_t>{2}));
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    QTest::keyClick(window->lvAuftraege, Qt::Key_Return);
    EXPECT_EQ(opened, (std::vector<std::int32_t>{2, 1}));
    EXPECT_EQ(window->lvAuftraege->toolTip(), QStringLiteral("Öffnen mit Doppelklick"));
}

TEST_F(OverviewWindowTest, AReportWhoseFileIsMissingIsReported)
{
    // No project: the report file is found nowhere.
    window->showResult(handResult());
    window->mnuBerichteFkt.at(1)->trigger();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("ProjectOverviewWindow.showReport\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_NE(ui.messages[0].text.find("invfortschritt.rpt"), std::string::npos) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(window->findChildren<ReportPreview*>().isEmpty());
    EXPECT_EQ(ui.busyChanges, (std::vector<bool>{true, false}));
}

TEST_F(OverviewWindowTest, Screenshot)
{
    window->showResult(handResult());
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    window->lvRaeume->setCurrentItem(itemOf(*window->lvRaeume, QStringLiteral("E0.1")));
    window->show();
    expectOnScreen(*window, QStringLiteral("projektuebersicht"),
                   {"&Aktualisieren", "Aufträge (2)", "Verschoben (2)", "Hinweise (2)", "Erdgeschoss", "Keller",
                    "Räume des Auftrags Erdgeschoss", "Objekte im Raum E0.1", "Büro Nord", "Stuhl"});
    window->tabs->setCurrentIndex(1);
    expectOnScreen(*window, QStringLiteral("projektuebersicht-verschoben"), {"I101", "I102", "Auftrag (Soll)"});
    window->tabs->setCurrentIndex(8);
    expectOnScreen(*window, QStringLiteral("projektuebersicht-hinweise"), {"Datei ohne Auftrag"});
}

// ------------------------------------------------------------------ in the program

class MainWindowOverviewTest : public ProgramFixture {
protected:
    MainWindowOverview& overview()
    {
        MainWindowOverview* o = projectOverviewOf(*main);
        EXPECT_NE(o, nullptr);
        return *o;
    }
    /// The order "Erdgeschoss" with the rooms of the first floor and both of the demo's files, and
    /// the order "Lager" without rooms; the work window is closed again.
    void twoOrders()
    {
        startProgram();
        newOrder("Erdgeschoss", "Meier");
        newOrder("Lager", "Schulz");
        openOrder("Erdgeschoss");
        ASSERT_NE(work(), nullptr);
        chooseFirstFloor();
        addDemoScanFiles();
        for (const RecordedMessage& m : ui.messages)
            ASSERT_NE(m.icon, MsgIcon::Critical) << m.text;
        ui.messages.clear();
        work()->close();
        main->repaint();
        settle(overview());
    }
    QTreeWidgetItem* mainItem(const std::string& name) { return itemWithText(*main->lvAuftraege, QString::fromStdString(name)); }
};

TEST_F(MainWindowOverviewTest, TheMenuProjektComesAfterTheMainWindowsOwnMenus)
{
    startProgram();
    const auto menus = main->menuBar()->actions();
    ASSERT_EQ(menus.size(), 3);
    EXPECT_EQ(menus[0]->text(), QStringLiteral("&Datei"));
    EXPECT_EQ(menus[1]->text(), QStringLiteral("&?"));
    EXPECT_EQ(menus[2]->text(), QStringLiteral("&Projekt"));
    EXPECT_EQ(overview().mnuProjekt->title(), QStringLiteral("&Projekt"));
    ASSERT_EQ(overview().mnuProjekt->actions().size(), 1);
    EXPECT_EQ(overview().mnuProjektFkt.at(projektmenu::Uebersicht)->text(), QStringLiteral("Projekt&übersicht…"));
    // The main window's own entries keep their places.
    EXPECT_EQ(main->mnuDatei->actions().size(), 4);
    EXPECT_EQ(main->mnuDatei->actions()[0], main->mnuDateiFkt.at(menuindex::NewOrder));
    EXPECT_EQ(main->mnuHelp->actions().size(), 3);
    EXPECT_EQ(main->mnuHelp->actions()[2], main->mnuHelpFkt.at(menuindex::About));
}

TEST_F(MainWindowOverviewTest, TheOrderListShowsEachOrdersProgressAfterItsOwnColumns)
{
    twoOrders();
    QTreeWidget& list = *main->lvAuftraege;
    EXPECT_EQ(headings(list), (QStringList{"Name", "erstellt", "geändert", "Ersteller", "Räume fertig", "Gescannt",
                                           "Gefunden %", "Letzter Scan", "Stand"}));
    EXPECT_EQ(overview().firstColumn(), 4);
    ASSERT_NE(overview().figures(), nullptr);

    // Counted here from the order database itself.
    const std::string eg = orderFile("Erdgeschoss");
    const auto rooms = count(eg, "SELECT COUNT(*) FROM T_Raum");
    const auto done = count(eg, "SELECT COUNT(*) FROM T_Raum WHERE ststatus IN ('E', 'L')");
    const auto scans = count(eg, "SELECT COUNT(*) FROM T_DatInventur");
    ASSERT_GT(rooms, 0);
    ASSERT_GT(scans, 0);
    QTreeWidgetItem* item = mainItem("Erdgeschoss");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->text(4).toStdString(), std::to_string(done) + " von " + std::to_string(rooms));
    EXPECT_EQ(item->text(5).toStdString(), std::to_string(scans));
    const auto figures = read(eg)->query("SELECT Datum, Uhrzeit FROM T_DatInventur");
    std::string latest;
    for (const auto& r : figures.rows()) {
        const std::string d = toText(r[0]), t = toText(r[1]);
        const std::string stamp = d.substr(6, 4) + "-" + d.substr(3, 2) + "-" + d.substr(0, 2) + " " + t;
        latest = std::max(latest, stamp);
    }
    EXPECT_EQ(item->text(7).toStdString(), stampText(latest));
    // The percentage and the state as the result has them.
    const Recordset p = overview().figures()->query(
        "SELECT dProzent, stStand FROM P_Auftrag WHERE stAuftrag = 'Erdgeschoss'");
    ASSERT_EQ(p.size(), 1u);
    EXPECT_EQ(item->text(6).toStdString(), percentText(std::get<double>(p.rows()[0][0])));
    EXPECT_EQ(item->text(8).toStdString(), toText(p.rows()[0][1]));
    EXPECT_FALSE(item->text(8).isEmpty());

    QTreeWidgetItem* lager = mainItem("Lager");
    ASSERT_NE(lager, nullptr);
    EXPECT_EQ(lager->text(4), QStringLiteral("0 von 0"));
    EXPECT_EQ(lager->text(5), QStringLiteral("0"));
    EXPECT_EQ(lager->text(7), QString());

    // The main window's own columns are as they were.
    EXPECT_EQ(lager->text(3), QStringLiteral("Schulz"));
    EXPECT_EQ(item->text(3), QStringLiteral("Meier"));
    EXPECT_TRUE(item->data(0, Qt::UserRole).toString().startsWith(QStringLiteral("A ")));

    // A refill keeps the figures at once and computes them anew.
    main->InitAuftraege();
    EXPECT_EQ(mainItem("Erdgeschoss")->text(5).toStdString(), std::to_string(scans));
    settle(overview());
    EXPECT_EQ(mainItem("Erdgeschoss")->text(5).toStdString(), std::to_string(scans));
    expectOnScreen(*main, QStringLiteral("main-fortschritt"),
                   {"&Projekt", "Name", "Räume fertig", "Gescannt", "Erdgeschoss", "Lager", "Meier"});
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(MainWindowOverviewTest, TheColumnsFillInFirstAsTheOrdersHoldThemThenFresh)
{
    std::vector<bool> asked;
    startProgram();
    overview().setSourceFactory([&](const Settings& settings) -> ProjectResultSource {
        EXPECT_EQ(settings.gstProjektPfad, main->settings().gstProjektPfad);
        return [&](const OverviewOptions& o) {
            asked.push_back(o.freshEvaluation);
            auto result = handResult();
            if (o.freshEvaluation)
                result->execute("UPDATE P_Auftrag SET iScans = 99, stStand = 'neu ausgewertet' WHERE lAuftragID = 1");
            return result;
        };
    });
    newOrder("Erdgeschoss", "Meier");
    newOrder("Keller", "Schulz");
    QTreeWidgetItem* item = mainItem("Erdgeschoss");
    ASSERT_NE(item, nullptr);
    ASSERT_EQ(item->data(0, Qt::UserRole).toString(), QStringLiteral("A 1"));
    // Nothing is computed before the window is back in the event loop.
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(item->text(5), QString());
    QCoreApplication::processEvents();
    overview().figuresRun().wait();
    EXPECT_EQ(asked, (std::vector<bool>{false}));
    EXPECT_EQ(item->text(4), QStringLiteral("2 von 3"));
    EXPECT_EQ(item->text(5), QStringLiteral("12"));
    EXPECT_EQ(item->text(6), QStringLiteral("60,0"));
    EXPECT_EQ(item->text(7), QStringLiteral("03.11.2026 14:05:09"));
    EXPECT_EQ(item->text(8), QStringLiteral("aktuell"));
    EXPECT_EQ(mainItem("Keller")->text(8), QStringLiteral("nie ausgewertet"));
    EXPECT_TRUE(overview().figuresRun().running());
    overview().figuresRun().wait();
    EXPECT_EQ(asked, (std::vector<bool>{false, true}));
    EXPECT_EQ(item->text(5), QStringLiteral("99"));
    EXPECT_EQ(item->text(8), QStringLiteral("neu ausgewertet"));
    EXPECT_FALSE(overview().figuresRun().running());
    // Sorted by a column of our own, the list stays sorted as its figures change.
    emit main->lvAuftraege->header()->sectionClicked(5);
    EXPECT_EQ(main->lvAuftraege->topLevelItem(0)->text(0), QStringLiteral("Keller"));
    main->InitAuftraege();
    EXPECT_EQ(main->lvAuftraege->topLevelItem(0)->text(0), QStringLiteral("Keller"));
    EXPECT_EQ(mainItem("Erdgeschoss")->text(5), QStringLiteral("99"));
    settle(overview());
    EXPECT_EQ(asked.size(), 4u);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(MainWindowOverviewTest, TheMenuOpensTheOverviewOfTheProject)
{
    twoOrders();
    overview().mnuProjektFkt.at(projektmenu::Uebersicht)->trigger();
    ProjectOverviewWindow* window = overview().overview();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->parentWidget(), main.get());
    settle(window->run());
    EXPECT_TRUE(window->lbStand->text().startsWith(QStringLiteral("Stand: ")));
    ASSERT_EQ(window->lvAuftraege->topLevelItemCount(), 2);
    EXPECT_NE(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")), nullptr);
    EXPECT_NE(itemOf(*window->lvAuftraege, QStringLiteral("Lager")), nullptr);
    // The rooms of the order are the order's rooms.
    window->lvAuftraege->setCurrentItem(itemOf(*window->lvAuftraege, QStringLiteral("Erdgeschoss")));
    EXPECT_EQ(window->lvRaeume->topLevelItemCount(), count(orderFile("Erdgeschoss"), "SELECT COUNT(*) FROM T_Raum"));
    // Every list has its tab, also when it is empty, with every row of its table in the result.
    ASSERT_NE(window->result(), nullptr);
    for (std::size_t i = 0; i < window->listTabs.size(); ++i) {
        const auto& tab = window->listTabs[i];
        EXPECT_EQ(tab.list->topLevelItemCount(), toLong(window->result()->scalar("SELECT count(*) FROM " + tab.table)))
            << tab.table;
        EXPECT_EQ(window->tabs->tabText(int(i) + 1), tabCaption(tab.title, tab.list->topLevelItemCount()));
    }
    // The demo's rooms that no order has are not checked.
    EXPECT_GT(window->listTabs[5].list->topLevelItemCount(), 0);
    QTreeWidgetItem* room = window->lvRaeume->topLevelItem(0);
    ASSERT_NE(room, nullptr);
    window->lvRaeume->setCurrentItem(room);
    EXPECT_GT(window->lvObjekte->topLevelItemCount(), 0);
    expectOnScreen(*window, QStringLiteral("projektuebersicht-demo"),
                   {"Erdgeschoss", "Lager", "Aufträge (2)", "Objekte im Raum " + room->text(0), "1 OK"});

    // Opened again, the same window comes to the front.
    overview().mnuProjektFkt_Click(projektmenu::Uebersicht);
    EXPECT_EQ(overview().overview(), window);
    settle(window->run());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(MainWindowOverviewTest, DoubleClickOnAnOrderOpensItsWorkWindowAndItsEndRefreshes)
{
    twoOrders();
    overview().mnuProjektFkt_Click(projektmenu::Uebersicht);
    ProjectOverviewWindow& window = *overview().overview();
    settle(window.run());
    window.lvAuftraege->setCurrentItem(itemOf(*window.lvAuftraege, QStringLiteral("Lager")));
    window.lvAuftraege_DblClick();
    ASSERT_NE(work(), nullptr);
    EXPECT_EQ(work()->windowTitle(), QStringLiteral("Auftrag: Lager"));
    ASSERT_NE(main->currentOrder(), nullptr);
    EXPECT_EQ(main->currentOrder()->stBezeichung, "Lager");
    EXPECT_EQ(main->lvAuftraege->currentItem(), mainItem("Lager"));
    EXPECT_FALSE(main->isActiveState());

    // While the order is open no other opens; its window comes to the front.
    QPointer<frmWorkWindow> open = work();
    window.lvAuftraege->setCurrentItem(itemOf(*window.lvAuftraege, QStringLiteral("Erdgeschoss")));
    window.lvAuftraege_DblClick();
    EXPECT_EQ(work(), open.data());
    EXPECT_EQ(main->currentOrder()->stBezeichung, "Lager");

    // Its rooms chosen and the window closed, the overview shows them.
    chooseFirstFloor();
    work()->close();
    EXPECT_TRUE(window.run().running());
    QCoreApplication::processEvents();
    EXPECT_FALSE(overview().figuresRun().running()); // the overview's result fills the columns
    settle(window.run());
    window.lvAuftraege->setCurrentItem(itemOf(*window.lvAuftraege, QStringLiteral("Lager")));
    EXPECT_EQ(window.lvRaeume->topLevelItemCount(), count(orderFile("Lager"), "SELECT COUNT(*) FROM T_Raum"));
    EXPECT_GT(window.lvRaeume->topLevelItemCount(), 0);
    settle(overview());
    EXPECT_EQ(mainItem("Lager")->text(4).toStdString(),
              "0 von " + std::to_string(count(orderFile("Lager"), "SELECT COUNT(*) FROM T_Raum")));
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
}

TEST_F(MainWindowOverviewTest, TheReportsOfTheProjectOpenInThePreview)
{
    twoOrders();
    overview().mnuProjektFkt_Click(projektmenu::Uebersicht);
    ProjectOverviewWindow& window = *overview().overview();
    settle(window.run());
    ASSERT_EQ(window.pbBerichte.size(), projectReports().size());
    ASSERT_EQ(window.mnuBerichteFkt.size(), projectReports().size());
    EXPECT_EQ(window.mnuBerichte->title(), QStringLiteral("&Berichte"));
    EXPECT_EQ(window.pbBerichte[0]->text(), QStringLiteral("&Gesamtauswertung"));
    EXPECT_EQ(window.pbBerichte[1]->text(), QStringLiteral("&Fortschritt"));
    EXPECT_EQ(window.mnuBerichteFkt[0]->text(), QStringLiteral("&Gesamtauswertung"));
    EXPECT_EQ(window.mnuBerichteFkt[1]->text(), QStringLiteral("&Fortschritt"));
    for (QPushButton* button : window.pbBerichte) {
        button->click();
        ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    }
    const auto previews = window.findChildren<ReportPreview*>();
    ASSERT_EQ(previews.size(), qsizetype(projectReports().size()));
    ASSERT_EQ(previews.size(), 3);
    EXPECT_EQ(previews[0]->report().windowTitle(), "Gesamtauswertung");
    EXPECT_EQ(previews[1]->report().windowTitle(), "Fortschritt");
    EXPECT_EQ(previews[2]->report().windowTitle(), "Inventurprotokoll");
    for (ReportPreview* p : previews)
        EXPECT_GT(p->report().pageCount(), 0);
    for (int i = 0; i < 2; ++i)
        EXPECT_NE(previews[i]->report().text().find("Erdgeschoss"), std::string::npos);
    screenshot(*previews[0], QStringLiteral("projektuebersicht-gesamtauswertung"));
    screenshot(*previews[1], QStringLiteral("projektuebersicht-fortschritt"));
}

TEST_F(MainWindowOverviewTest, TheCorrectionListOfTheDemoProjectIsReviewedAndSignedOff)
{
    twoOrders();
    overview().mnuProjektFkt_Click(projektmenu::Uebersicht);
    ProjectOverviewWindow& window = *overview().overview();
    settle(window.run());
    ASSERT_TRUE(window.pbKorrekturliste->isEnabled());
    window.pbKorrekturliste->click();
    CorrectionListWindow* list = window.correctionList();
    ASSERT_NE(list, nullptr);
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    const std::vector<Proposal> proposals = makeProposals(*window.result());
    ASSERT_FALSE(proposals.empty());
    ASSERT_EQ(list->lvVorschlaege->topLevelItemCount(), int(proposals.size()));

    // The first two rows accepted with a comment; the decisions go into the project folder.
    list->lvVorschlaege->topLevelItem(0)->setSelected(true);
    list->lvVorschlaege->topLevelItem(1)->setSelected(true);
    list->txKommentar->setText(QStringLiteral("geprüft"));
    list->pbAnnehmen->click();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(list->lvVorschlaege->topLevelItem(0)->text(korrcol::Entscheidung), QStringLiteral("angenommen"));
    EXPECT_TRUE(fileExists(correctionsPath(main->settings())));
    EXPECT_NE(list->lbZaehler->text().indexOf(QStringLiteral("angenommen")), -1);

    // The protocol to sign shows the accepted ones.
    list->pbProtokoll->click();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    const auto previews = list->findChildren<ReportPreview*>();
    ASSERT_EQ(previews.size(), 1);
    EXPECT_EQ(previews[0]->report().windowTitle(), "Inventurprotokoll");
    EXPECT_NE(previews[0]->report().text().find(list->lvVorschlaege->topLevelItem(0)->text(korrcol::InvNr).toStdString()),
              std::string::npos);
    list->resize(1280, 600);
    screenshot(*list, QStringLiteral("korrekturliste-demo"));
    screenshot(*previews[0], QStringLiteral("korrekturliste-demo-protokoll"));
}

} // namespace
} // namespace qi::test
