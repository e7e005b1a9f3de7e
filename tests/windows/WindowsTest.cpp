// The work window and the room selection window as a person meets them: captions,
// headings and menus, lists that fill the window, columns that sort, the keyboard,
// the windows' memory of their size, and what closing does.

#include "ProgramFixture.h"

#include "MainWindowOverview.h"
#include "ProjectOverviewWindow.h"
#include "frmAbout.h"
#include "frmAufNeu.h"
#include "frmFehler.h"

#include "QTreeGebStruCtrl.h"
#include "ReportMenus.h"

#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

#include <map>

namespace qi::test {
namespace {

class WindowsTest : public ProgramFixture {
protected:
    void openDemoOrder()
    {
        startProgram();
        newOrder("Lager");
        openOrder("Lager");
        ASSERT_NE(work(), nullptr);
        ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    }
    static QStringList headings(const QTreeWidget& view)
    {
        QStringList out;
        for (int i = 0; i < view.columnCount(); ++i)
            out << view.headerItem()->text(i);
        return out;
    }
    static QStringList column(const QTreeWidget& view, int c)
    {
        QStringList out;
        for (int i = 0; i < view.topLevelItemCount(); ++i)
            out << view.topLevelItem(i)->text(c);
        return out;
    }
    /// Presses Alt and a letter in the active window, and waits while a button shows itself pressed.
    static void altKey(QWidget& window, Qt::Key key)
    {
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, key, Qt::AltModifier);
        QTest::qWait(250);
    }
    /// The mnemonic letters of the buttons, check boxes and labels of a window.
    static std::multimap<QChar, QString> mnemonics(QWidget& window)
    {
        std::multimap<QChar, QString> out;
        const auto add = [&](const QString& text) {
            const int at = text.indexOf(QLatin1Char('&'));
            if (at >= 0 && at + 1 < text.size())
                out.emplace(text.at(at + 1).toLower(), text);
        };
        for (const QAbstractButton* b : window.findChildren<QAbstractButton*>())
            add(b->text());
        for (const QLabel* l : window.findChildren<QLabel*>())
            add(l->text());
        return out;
    }
};

// ------------------------------------------------------------------ the work window

TEST_F(WindowsTest, WorkWindowShowsItsCaptionsHeadingsAndMenus)
{
    openDemoOrder();
    frmWorkWindow& w = *work();
    EXPECT_EQ(w.lbRoomsLabel->text(), QStringLiteral("Auftragsräume"));
    // The run of blanks belongs to the caption.
    EXPECT_EQ(w.lbDateienLabel->text(),
              QStringLiteral("hinzugefügte Daten (*.dat-Dateien)                       Öffnen mit Doppelklick"));
    EXPECT_EQ(w.lbDateienLabel->textFormat(), Qt::PlainText);
    EXPECT_EQ(headings(*w.lvRooms), (QStringList{"Raum", "Status", "Datum", "Anzahl", "Datei"}));
    EXPECT_EQ(headings(*w.lvDateien), (QStringList{"Name", "Erf.-datum", "Pfad"}));
    EXPECT_EQ(w.pbAdd->text(), QStringLiteral("&Hinzufügen"));
    EXPECT_EQ(w.pbRemove->text(), QStringLiteral("&Entfernen"));
    EXPECT_EQ(w.pbNeu->text(), QStringLiteral("&Auswertung aktualisieren"));
    EXPECT_EQ(w.pbRooms->text(), QStringLiteral("&Auswahl"));
    EXPECT_EQ(w.pbOk->text(), QStringLiteral("&OK"));

    EXPECT_EQ(w.mnuDatei->title(), QStringLiteral("&Datei"));
    const auto datei = w.mnuDatei->actions();
    ASSERT_EQ(datei.size(), 4);
    EXPECT_EQ(datei[0], w.mnuDateiFkt.at(100));
    EXPECT_EQ(datei[0]->text(), QStringLiteral("&Räume"));
    EXPECT_EQ(datei[1], w.mnuDateiFkt.at(200));
    EXPECT_EQ(datei[1]->text(), QStringLiteral("&Scandaten zusammenfassen"));
    EXPECT_TRUE(datei[2]->isSeparator());
    EXPECT_EQ(datei[2], w.mnuDateiFkt.at(444));
    EXPECT_EQ(datei[3], w.mnuDateiFkt.at(500));
    EXPECT_EQ(datei[3]->text(), QStringLiteral("&Beenden"));

    EXPECT_EQ(w.mnuReport->title(), QStringLiteral("&Berichte"));
    ASSERT_EQ(w.mnuReport->actions().size(), 5);
    for (const ReportMenuEntry& e : kReportMenu)
        EXPECT_EQ(w.mnuReportFkt.at(e.index)->text().toStdString(), e.caption);
    EXPECT_EQ(w.mnuReport->actions()[0]->text(), QStringLiteral("&Artikel"));
    EXPECT_EQ(w.mnuReport->actions()[3]->text(), QStringLiteral("I&nventurauswertung"));
    EXPECT_EQ(w.mnuFehler->title(), QStringLiteral("&Fehlerlisten (Auftragsbereich)"));
    ASSERT_EQ(w.mnuFehler->actions().size(), 3);
    EXPECT_EQ(w.mnuFehlerFkt.at(100)->text(), QStringLiteral("&Neues Inventar"));
    EXPECT_EQ(w.mnuFehlerFkt.at(200)->text(), QStringLiteral("&Verschobenes Inventar"));
    EXPECT_EQ(w.mnuFehlerFkt.at(300)->text(), QStringLiteral("&Fehlendes Inventar"));
}

TEST_F(WindowsTest, WorkWindowCountsItsRoomsAndFiles)
{
    openDemoOrder();
    EXPECT_EQ(work()->lbCounts->text(), QStringLiteral("0 Räume, 0 Dateien"));
    chooseFirstFloor();
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat")};
    work()->pbAdd->click();
    EXPECT_EQ(work()->lbCounts->text(), QStringLiteral("6 Räume, 1 Datei"));
}

TEST_F(WindowsTest, WorkWindowShowsClearedListsWhenTheyCantBeRead)
{
    openDemoOrder();
    chooseFirstFloor();
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat")};
    work()->pbAdd->click();
    frmWorkWindow& w = *work();
    ASSERT_EQ(w.lbCounts->text(), QStringLiteral("6 Räume, 1 Datei"));
    ASSERT_TRUE(w.pbRemove->isEnabled());
    ui.messages.clear();
    // Neither list of the order can be read any more.
    Database& order = *main->orderDb()->database();
    order.execute("ALTER TABLE T_Dateien RENAME TO T_DateienWeg");
    order.execute("ALTER TABLE T_Raum RENAME TO T_RaumWeg");
    w.Form_Activate();
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.Init\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[1].text.rfind("frmWork.InitData\r\n", 0), 0u) << ui.messages[1].text;
    EXPECT_EQ(w.lvDateien->topLevelItemCount(), 0);
    EXPECT_EQ(w.lvRooms->topLevelItemCount(), 0);
    EXPECT_EQ(w.lbCounts->text(), QStringLiteral("0 Räume, 0 Dateien"));
    EXPECT_FALSE(w.pbRemove->isEnabled());
    order.execute("ALTER TABLE T_DateienWeg RENAME TO T_Dateien");
    order.execute("ALTER TABLE T_RaumWeg RENAME TO T_Raum");
}

TEST_F(WindowsTest, WorkWindowRemovesNothingWithoutAVisibleSelection)
{
    openDemoOrder();
    chooseFirstFloor();
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat")};
    work()->pbAdd->click();
    frmWorkWindow& w = *work();
    ASSERT_EQ(w.lvDateien->topLevelItemCount(), 1);
    ui.messages.clear();
    // The file is the list's current item, but nothing shows it selected.
    w.lvDateien->clearSelection();
    w.lvDateien->setCurrentItem(w.lvDateien->topLevelItem(0), 0, QItemSelectionModel::NoUpdate);
    ASSERT_TRUE(w.lvDateien->selectedItems().isEmpty());
    ASSERT_NE(w.lvDateien->currentItem(), nullptr);
    ui.answers.push_back(MsgResult::Yes);
    w.pbRemove->click();
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(w.lvDateien->topLevelItemCount(), 1);
    EXPECT_EQ(count(orderFile("Lager"), "SELECT COUNT(*) FROM T_Dateien"), 1);
    // Selected, it is offered.
    w.lvDateien->topLevelItem(0)->setSelected(true);
    ui.answers = {MsgResult::No};
    w.pbRemove->click();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Die Datei 'Scan_EG_Teil1.dat' entfernen und Inventurdaten entsprechen "
                                   "verbleibenden Dateien aktualisieren ?");
}

TEST_F(WindowsTest, WorkWindowListsFillTheWindowAndFollowItsSize)
{
    openDemoOrder();
    frmWorkWindow& w = *work();
    w.resize(800, 600);
    QApplication::processEvents();
    const int rooms = w.lvRooms->width(), files = w.lvDateien->width();
    const int height = w.lvRooms->height() + w.lvDateien->height();
    EXPECT_GT(rooms, 800 / 2);
    w.resize(1200, 900);
    QApplication::processEvents();
    EXPECT_GE(w.lvRooms->width(), rooms + 350);
    EXPECT_GE(w.lvDateien->width(), files + 350);
    EXPECT_GE(w.lvRooms->height() + w.lvDateien->height(), height + 250);
    // The last column fills the list.
    EXPECT_TRUE(w.lvRooms->header()->stretchLastSection());
    EXPECT_TRUE(w.lvDateien->header()->stretchLastSection());
}

TEST_F(WindowsTest, WorkWindowColumnsSortNumbersAndDatesAsSuch)
{
    openDemoOrder();
    chooseFirstFloor();
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat")};
    work()->pbAdd->click();
    ui.fileChoices = {scanFile("Scan_EG_Teil2.dat")};
    work()->pbAdd->click();
    frmWorkWindow& w = *work();
    ASSERT_EQ(w.lvDateien->topLevelItemCount(), 2);
    emit w.lvRooms->header()->sectionClicked(3);
    QList<double> counts;
    for (const QString& c : column(*w.lvRooms, 3))
        counts << c.toDouble();
    ASSERT_FALSE(counts.isEmpty());
    EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end()));
    EXPECT_NE(counts.front(), counts.back());
    emit w.lvDateien->header()->sectionClicked(1);
    EXPECT_EQ(column(*w.lvDateien, 1), (QStringList{"14.03.2025", "17.03.2025"}));
    emit w.lvDateien->header()->sectionClicked(1);
    EXPECT_EQ(column(*w.lvDateien, 1), (QStringList{"17.03.2025", "14.03.2025"}));
    // A refill keeps the order the user chose.
    w.Form_Activate();
    EXPECT_EQ(column(*w.lvDateien, 1), (QStringList{"17.03.2025", "14.03.2025"}));
}

TEST_F(WindowsTest, WorkWindowButtonsAnswerToTheirMnemonics)
{
    openDemoOrder();
    chooseFirstFloor();
    frmWorkWindow& w = *work();
    altKey(w, Qt::Key_H);
    ASSERT_EQ(ui.fileRequests.size(), 1u); // "&Hinzufügen" asked for a file
    EXPECT_EQ(ui.fileRequests[0].filter, "Alle Dateien (*.*)|*.*|Scannerdaten (*.dat)|*.dat");
    // "&Auswertung aktualisieren" and "&Auswahl" share their letter: Alt+A moves between them.
    altKey(w, Qt::Key_A);
    EXPECT_TRUE(w.pbNeu->hasFocus() || w.pbRooms->hasFocus());
    // The unloaded window goes as soon as the main window repaints, which may happen while the
    // key is handled: what "&OK" did is read from the window while it is still there.
    ASSERT_TRUE(w.isVisible());
    ASSERT_FALSE(w.f_bReload);
    int okClicks = 0, unloaded = 0;
    bool reloadAtUnload = false, visibleAtUnload = true, orderOpenAtUnload = true;
    QObject::connect(w.pbOk, &QPushButton::clicked, [&] { ++okClicks; });
    QObject::connect(&w, &OrderWindow::unloaded, [&] {
        ++unloaded;
        reloadAtUnload = w.f_bReload;
        visibleAtUnload = w.isVisible();
        orderOpenAtUnload = main->orderDb()->isOpen();
    });
    altKey(w, Qt::Key_O); // "&OK"
    EXPECT_EQ(okClicks, 1);
    EXPECT_EQ(unloaded, 1);
    EXPECT_TRUE(reloadAtUnload);
    EXPECT_FALSE(visibleAtUnload);
    EXPECT_FALSE(orderOpenAtUnload);
    EXPECT_TRUE(main->isActiveState());
}

TEST_F(WindowsTest, WorkWindowRemembersItsSizeAndColumns)
{
    openDemoOrder();
    work()->resize(1010, 707);
    work()->lvDateien->setColumnWidth(0, 222);
    work()->Unload();
    main->repaint();
    openOrder("Lager");
    ASSERT_NE(work(), nullptr);
    EXPECT_EQ(work()->size(), QSize(1010, 707));
    EXPECT_EQ(work()->lvDateien->columnWidth(0), 222);
}

TEST_F(WindowsTest, WorkWindowUnloadClosesTheOrderAndGivesTheMainWindowBack)
{
    openDemoOrder();
    frmWorkWindow& w = *work();
    int unloaded = 0;
    QObject::connect(&w, &OrderWindow::unloaded, [&] { ++unloaded; });
    w.mnuDateiFkt.at(workmenu::Beenden)->trigger();
    EXPECT_EQ(unloaded, 1);
    EXPECT_TRUE(w.f_bReload);
    EXPECT_FALSE(main->orderDb()->isOpen());
    EXPECT_TRUE(main->isActiveState());
    // Whatever comes after the unload does nothing.
    w.pbAdd->click();
    EXPECT_TRUE(ui.fileRequests.empty());
}

TEST_F(WindowsTest, WorkWindowStaysOpenWhileACommandWorksInTheOrder)
{
    openDemoOrder();
    frmWorkWindow& w = *work();
    chooseFirstFloor();
    int unloaded = 0;
    QObject::connect(&w, &OrderWindow::unloaded, [&] { ++unloaded; });
    // The import's messages wait for their answer: a person closes the window meanwhile.
    int closes = 0;
    ui.onMessage = [&](const RecordedMessage&) {
        ++closes;
        EXPECT_FALSE(w.close());
    };
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat")};
    w.pbAdd->click();
    ui.onMessage = nullptr;
    EXPECT_GT(closes, 0);
    EXPECT_EQ(unloaded, 0);
    EXPECT_TRUE(main->orderDb()->isOpen());
    ASSERT_NE(itemWithText(*w.lvDateien, QStringLiteral("Scan_EG_Teil1.dat")), nullptr);
    for (const RecordedMessage& m : ui.messages)
        EXPECT_NE(m.icon, MsgIcon::Critical) << m.text;

    // Once the command is done the window closes.
    EXPECT_TRUE(w.close());
    EXPECT_EQ(unloaded, 1);
    EXPECT_FALSE(main->orderDb()->isOpen());
}

// ------------------------------------------------------------------ the room selection window

TEST_F(WindowsTest, RoomWindowShowsItsCaptionsAndTheTree)
{
    openDemoOrder();
    bool seen = false;
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        seen = true;
        EXPECT_TRUE(w.isModal());
        EXPECT_EQ(w.parentWidget(), work());
        EXPECT_EQ(w.windowTitle(), QStringLiteral("Raumauswahl"));
        EXPECT_EQ(w.pbFertig->text(), QStringLiteral("&Fertig"));
        EXPECT_EQ(w.cbAllRooms->text(), QStringLiteral("Auswahl alle Räume"));
        EXPECT_FALSE(w.cbAllRooms->isChecked());
        EXPECT_EQ(headings(*w.lvRooms), (QStringList{"Raum", "Status"}));
        EXPECT_EQ(w.lbRooms->selectionMode(), QAbstractItemView::ExtendedSelection);
        EXPECT_EQ(w.lvRooms->selectionMode(), QAbstractItemView::ExtendedSelection);
        EXPECT_GT(w.tvGeb->topLevelItemCount(), 0);
        EXPECT_NE(w.tvGeb->ItemOfNode(firstFloor()), nullptr);
        for (QPushButton* b : {w.pbIn, w.pbAllIn, w.pbOut, w.pbAllOut})
            EXPECT_FALSE(b->toolTip().isEmpty()) << b->objectName().toStdString();
        w.pbFertig->click();
    });
    work()->mnuDateiFkt.at(workmenu::Raeume)->trigger();
    EXPECT_TRUE(seen);
}

TEST_F(WindowsTest, RoomWindowClosedByItsCloseButtonSavesLikeFertig)
{
    openDemoOrder();
    {
        auto order = Database::open(orderFile("Lager"));
        order->execute("INSERT INTO T_Differenzliste (stSollInvNR, stTyp) VALUES ('X', '1 OK')");
    }
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        w.tvGeb->SelectNode(firstFloor());
        emit w.tvGeb->Click();
        w.pbAllIn->click();
        w.close();
    });
    work()->pbRooms->click();
    EXPECT_EQ(count(orderFile("Lager"), "SELECT COUNT(*) FROM T_Raum"), 6);
    EXPECT_EQ(count(orderFile("Lager"), "SELECT COUNT(*) FROM T_Differenzliste"), 0);
    EXPECT_EQ(work()->lvRooms->topLevelItemCount(), 6);
}

TEST_F(WindowsTest, RoomWindowSavesTheRoomsInTheOrderTheListShows)
{
    openDemoOrder();
    QStringList shown;
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        w.tvGeb->SelectNode(firstFloor());
        emit w.tvGeb->Click();
        w.pbAllIn->click();
        emit w.lvRooms->header()->sectionClicked(0);
        emit w.lvRooms->header()->sectionClicked(0); // descending
        shown = column(*w.lvRooms, 0);
        w.pbFertig->click();
    });
    work()->pbRooms->click();
    ASSERT_EQ(shown.size(), 6);
    auto stored = read(orderFile("Lager"))->query("SELECT stRaumNr FROM T_Raum ORDER BY lID");
    QStringList saved;
    for (const auto& row : stored.rows())
        saved << QString::fromStdString(toText(row[0]));
    EXPECT_EQ(saved, shown);
    QStringList ascending = shown;
    std::reverse(ascending.begin(), ascending.end());
    EXPECT_NE(saved, ascending);
}

TEST_F(WindowsTest, RoomWindowRunsAClickOnATreeNodeOnce)
{
    openDemoOrder();
    int runs = 0, floorRuns = 0;
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        // Every run of tvGeb_Click on a selected node unticks "all rooms"; on a floor it lists its rooms.
        const auto unticked = w.form().onAllRoomsChanged;
        w.form().onAllRoomsChanged = [&, unticked] {
            ++runs;
            unticked();
        };
        const auto listed = w.form().onRoomLinesChanged;
        w.form().onRoomLinesChanged = [&, listed] {
            ++floorRuns;
            listed();
        };
        w.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&w));
        QTreeWidgetItem* floor = w.tvGeb->ItemOfNode(firstFloor());
        ASSERT_NE(floor, nullptr);
        QTreeWidgetItem* building = floor->parent();
        ASSERT_NE(building, nullptr);
        w.tvGeb->scrollToItem(floor);
        const auto click = [&](QTreeWidgetItem* item) {
            QTest::mouseClick(w.tvGeb->viewport(), Qt::LeftButton, {}, w.tvGeb->visualItemRect(item).center());
        };
        click(floor);
        EXPECT_EQ(w.tvGeb->currentItem(), floor);
        EXPECT_EQ(w.lbRooms->count(), 6);
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(floorRuns, 1);
        // From the floor to its building: once, with the building (the floor's rooms are not listed again).
        click(building);
        EXPECT_EQ(w.tvGeb->currentItem(), building);
        EXPECT_EQ(runs, 2);
        EXPECT_EQ(floorRuns, 1);
        // A click on the node that is current already runs it once as well.
        click(building);
        EXPECT_EQ(runs, 3);
        // Walking the tree with the keyboard runs it once per node reached.
        EXPECT_TRUE(w.tvGeb->hasFocus());
        w.tvGeb->setCurrentItem(floor);
        EXPECT_EQ(runs, 4);
        EXPECT_EQ(floorRuns, 2);
        w.Unload();
    });
    work()->pbRooms->click();
    EXPECT_EQ(runs, 4);
}

TEST_F(WindowsTest, RoomWindowWorksFromTheKeyboard)
{
    openDemoOrder();
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        // Walking the tree with the keyboard to the floor lists its rooms.
        altKey(w, Qt::Key_G);
        EXPECT_TRUE(w.tvGeb->hasFocus());
        w.tvGeb->setCurrentItem(w.tvGeb->ItemOfNode(firstFloor()));
        EXPECT_EQ(w.lbRooms->count(), 6);
        altKey(w, Qt::Key_A); // "&Alle hinzufügen >>"
        EXPECT_EQ(w.lvRooms->topLevelItemCount(), 6);
        altKey(w, Qt::Key_U); // the order's rooms
        EXPECT_TRUE(w.lvRooms->hasFocus());
        w.lvRooms->setCurrentItem(w.lvRooms->topLevelItem(0));
        QTest::keyClick(w.lvRooms, Qt::Key_Return); // the toggle
        EXPECT_EQ(w.lvRooms->topLevelItem(0)->text(1), QStringLiteral("L"));
        altKey(w, Qt::Key_F); // "&Fertig"
    });
    work()->pbRooms->click();
    EXPECT_EQ(count(orderFile("Lager"), "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'L'"), 1);
}

// ------------------------------------------------------------------ the main window

TEST_F(WindowsTest, MainWindowShowsTheOrdersNewStampOnceItsWindowHasClosed)
{
    startProgram();
    newOrder("Lager");
    // The order was last changed long ago.
    CAuftragRecColl orders;
    ASSERT_TRUE(main->inventurDb()->ReadAllAuftragRec2Coll(orders));
    ASSERT_EQ(orders.Count(), 1);
    CAuftragRec old = *orders.begin();
    old.letzte_Aenderung = JetDate::fromParts(2001, 2, 3, 4, 5, 6);
    ASSERT_TRUE(main->inventurDb()->EditAuftragRec(&old));
    main->InitAuftraege();
    QTreeWidgetItem* item = itemWithText(*main->lvAuftraege, QStringLiteral("Lager"));
    ASSERT_NE(item, nullptr);
    const QString before = item->text(2);
    ASSERT_EQ(before.toStdString(), old.letzte_Aenderung.toDisplayText());

    openOrder("Lager");
    ASSERT_NE(work(), nullptr);
    work()->Unload();
    ASSERT_TRUE(main->inventurDb()->ReadAllAuftragRec2Coll(orders));
    const std::string stamped = orders.begin()->letzte_Aenderung.toDisplayText();
    ASSERT_NE(stamped, old.letzte_Aenderung.toDisplayText());
    item = itemWithText(*main->lvAuftraege, QStringLiteral("Lager"));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->text(2).toStdString(), stamped);
    EXPECT_EQ(item->text(1).toStdString(), orders.begin()->erstellt.toDisplayText());
}

// ------------------------------------------------------------------ every window

/// How often Return on `button` pressed it.
int pressedByReturn(QPushButton& button)
{
    int pressed = 0;
    const auto c = QObject::connect(&button, &QPushButton::clicked, [&] { ++pressed; });
    button.setFocus();
    QTest::keyClick(&button, Qt::Key_Return);
    QObject::disconnect(c);
    return pressed;
}

TEST_F(WindowsTest, ReturnPressesTheFocusedButtonInEveryWindow)
{
    openDemoOrder();
    // The work window (a main window, where Return does not press a button by itself).
    frmWorkWindow& w = *work();
    EXPECT_EQ(pressedByReturn(*w.pbAdd), 1);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Zuerst müssen Räume ausgewählt werden!");
    EXPECT_EQ(pressedByReturn(*w.pbNeu), 1);
    // Enter on the keypad as well; with Ctrl it is something else.
    int pressed = 0;
    const auto c = QObject::connect(w.pbRooms, &QPushButton::clicked, [&] { pressed += 100; });
    whenModal<frmRaumWindow>([&](frmRaumWindow& r) {
        // The room selection.
        EXPECT_EQ(pressedByReturn(*r.pbAllOut), 1);
        EXPECT_EQ(pressedByReturn(*r.pbFertig), 1);
        EXPECT_FALSE(r.isVisible());
    });
    QTest::keyClick(w.pbRooms, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(pressed, 100);
    QTest::keyClick(w.pbRooms, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(pressed, 100);
    QObject::disconnect(c);

    // The project overview (a main window).
    MainWindowOverview* overview = projectOverviewOf(*main);
    ASSERT_NE(overview, nullptr);
    overview->mnuProjektFkt.at(projektmenu::Uebersicht)->trigger();
    ProjectOverviewWindow* projekt = overview->overview();
    ASSERT_NE(projekt, nullptr);
    for (int i = 0; i < 10 && projekt->run().running(); ++i)
        projekt->run().wait();
    EXPECT_EQ(pressedByReturn(*projekt->pbAktualisieren), 1);
    for (int i = 0; i < 10 && projekt->run().running(); ++i)
        projekt->run().wait();
    projekt->close();

    // The dialogs.
    frmAufNeu aufNeu;
    aufNeu.show();
    EXPECT_EQ(pressedByReturn(*aufNeu.pbCancel), 1);
    frmAbout about;
    about.show();
    EXPECT_EQ(pressedByReturn(*about.pbOk), 1);
    EXPECT_FALSE(about.isVisible());
    frmFehler fehler;
    fehler.show();
    fehler.opVerwerfen->click();
    EXPECT_EQ(pressedByReturn(*fehler.pbOk), 1);
    EXPECT_FALSE(fehler.isVisible());
    EXPECT_TRUE(fehler.bVerwerfen);
    // A disabled button is not pressed.
    frmFehler waiting;
    waiting.show();
    EXPECT_EQ(pressedByReturn(*waiting.pbOk), 0);
    EXPECT_TRUE(waiting.isVisible());
    waiting.opBehalten->click();
    waiting.pbOk->click();
}

TEST_F(WindowsTest, MnemonicsOfAWindowDoNotClashExceptTheTwoFixedCaptions)
{
    openDemoOrder();
    const auto workKeys = mnemonics(*work());
    for (auto it = workKeys.begin(); it != workKeys.end(); ++it)
        if (workKeys.count(it->first) > 1) {
            EXPECT_EQ(it->first, QLatin1Char('a')) << it->second.toStdString();
        }
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        const auto keys = mnemonics(w);
        EXPECT_GE(keys.size(), 8u);
        for (auto it = keys.begin(); it != keys.end(); ++it)
            EXPECT_EQ(keys.count(it->first), 1u) << it->second.toStdString();
        w.pbFertig->click();
    });
    work()->pbRooms->click();
}

} // namespace
} // namespace qi::test
