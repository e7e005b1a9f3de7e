// The whole road of one order through the program's windows, as a person walks it:
// start on the demo project, create an order, choose its rooms from the building
// tree, add scanner files (conflicts answered both ways, a refused file), print
// every report and error list, archive the scan data, remove a file, close the
// order and open it again, delete it. The databases are checked after each step.

#include "ProgramFixture.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "QTreeGebStruCtrl.h"
#include "ReportDatabase.h"
#include "ReportMenus.h"
#include "TextFile.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>

namespace qi::test {
namespace {

class RoadTest : public ProgramFixture {
protected:
    std::string db() const { return orderFile("Erdgeschoss"); }
    std::int64_t rows(const std::string& table) { return count(db(), "SELECT COUNT(*) FROM " + table); }
    std::string statusOf(const std::string& roomNr)
    {
        return toText(read(db())->scalar("SELECT ststatus FROM T_Raum WHERE stRaumNr = ?1", {roomNr}));
    }
    std::string roomOfScan(const std::string& invNr)
    {
        return toText(read(db())->scalar("SELECT stRaum FROM T_DatInventur WHERE stInvNr = ?1", {invNr}));
    }
    std::size_t criticalMessages() const
    {
        return std::size_t(std::count_if(ui.messages.begin(), ui.messages.end(),
                                         [](const RecordedMessage& m) { return m.icon == MsgIcon::Critical; }));
    }
    void addFile(const std::string& name)
    {
        ui.fileChoices.push_back(scanFile(name));
        QTest::mouseClick(work()->pbAdd, Qt::LeftButton);
    }
    static void clickItem(QTreeWidget& view, QTreeWidgetItem* item)
    {
        view.scrollToItem(item);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualItemRect(item).center());
    }
    static void doubleClickItem(QTreeWidget& view, QTreeWidgetItem* item)
    {
        view.scrollToItem(item);
        // A double click is a press, a release and a press that the window system reports as a double click.
        const QPoint at = view.visualItemRect(item).center();
        QTest::mousePress(view.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at);
    }
};

TEST_F(RoadTest, WholeRoadOfAnOrderThroughTheWindows)
{
    // ------------------------------------------------------------ start and a new order
    startProgram();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(main->windowTitle(), QStringLiteral("Aufträge im Projekt: 'Demo'"));
    newOrder("Erdgeschoss", "Meier");
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(count(demoDir + "/QInventur.mdb", "SELECT COUNT(*) FROM T_Auftrag"), 1);
    ASSERT_TRUE(fileExists(db()));
    EXPECT_EQ(toText(read(db())->scalar("SELECT stAuftrag FROM T_Auftrag")), "Erdgeschoss");

    // ------------------------------------------------------------ opening it
    openOrder("Erdgeschoss");
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    ASSERT_NE(work(), nullptr);
    EXPECT_TRUE(work()->isVisible());
    EXPECT_EQ(work()->windowTitle(), QStringLiteral("Auftrag: Erdgeschoss"));
    EXPECT_EQ(work()->parentWidget(), main.get());
    EXPECT_FALSE(main->isActiveState());
    EXPECT_FALSE(main->centralWidget()->isEnabled());
    EXPECT_EQ(work()->form().f_QGebDb, main->gebDb()); // the start-up's building component
    EXPECT_EQ(work()->lvRooms->topLevelItemCount(), 0);
    EXPECT_EQ(work()->lvDateien->topLevelItemCount(), 0);
    EXPECT_FALSE(work()->pbRemove->isEnabled());
    EXPECT_EQ(fileNamePart(LinkedDatabase::open(programDir + "/QInventurRpt.mdb")->connect("t_Raum")),
              "Erdgeschoss.mdb");

    // ------------------------------------------------------------ the rooms, from the tree
    std::vector<const demo::Node*> floors;
    for (const demo::Node& n : inst.nodes)
        if (n.typ == 3)
            floors.push_back(&n);
    ASSERT_GE(floors.size(), 2u);
    const auto floorRooms = inst.roomsOfFloor(floors[0]->id);
    const auto otherRooms = inst.roomsOfFloor(floors[1]->id);
    // A room of the other floor that no scanner file names: it is marked "L".
    const std::string outsideScans = readFile(scanFile("Scan_Raum_ausserhalb.dat"));
    const demo::Room* marked = nullptr;
    for (const demo::Room* r : otherRooms)
        if (outsideScans.find("," + r->nr + ",") == std::string::npos)
            marked = r;
    ASSERT_NE(marked, nullptr);

    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        EXPECT_GT(w.tvGeb->topLevelItemCount(), 0);
        QTreeWidgetItem* floorItem = w.tvGeb->ItemOfNode(floors[0]->id);
        ASSERT_NE(floorItem, nullptr);
        clickItem(*w.tvGeb, floorItem);
        EXPECT_EQ(w.lbRooms->count(), int(floorRooms.size()));
        QTest::mouseClick(w.pbAllIn, Qt::LeftButton);
        EXPECT_EQ(w.lvRooms->topLevelItemCount(), int(floorRooms.size()));
        QTest::mouseClick(w.cbAllRooms, Qt::LeftButton, {}, QPoint(6, w.cbAllRooms->height() / 2));
        EXPECT_TRUE(w.cbAllRooms->isChecked());
        EXPECT_EQ(w.lbRooms->count(), int(inst.rooms.size()));
        const auto lines = w.lbRooms->findItems(QString::fromStdString(marked->nr), Qt::MatchExactly);
        ASSERT_EQ(lines.size(), 1);
        w.lbRooms->clearSelection();
        lines[0]->setSelected(true);
        QTest::mouseClick(w.pbIn, Qt::LeftButton);
        ASSERT_EQ(w.lvRooms->topLevelItemCount(), int(floorRooms.size()) + 1);
        QTreeWidgetItem* row = itemWithText(*w.lvRooms, QString::fromStdString(marked->nr));
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->text(1), QStringLiteral("N"));
        doubleClickItem(*w.lvRooms, row);
        row = itemWithText(*w.lvRooms, QString::fromStdString(marked->nr));
        EXPECT_EQ(row->text(1), QStringLiteral("L"));
        QTest::mouseClick(w.pbFertig, Qt::LeftButton);
    });
    QTest::mouseClick(work()->pbRooms, Qt::LeftButton);
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(work()->roomWindow(), nullptr);
    EXPECT_EQ(rows("T_Raum"), std::int64_t(floorRooms.size()) + 1);
    EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_Raum WHERE stAuftrag = 'Erdgeschoss'"), rows("T_Raum"));
    EXPECT_EQ(statusOf(marked->nr), "L");
    EXPECT_EQ(statusOf(floorRooms[0]->nr), "N");
    EXPECT_FALSE(main->settings().gbRaeumeGeaendert);
    // Back in the work window its room list was filled again.
    ASSERT_EQ(work()->lvRooms->topLevelItemCount(), int(floorRooms.size()) + 1);
    EXPECT_EQ(itemWithText(*work()->lvRooms, QString::fromStdString(marked->nr))->text(1), QStringLiteral("L"));

    // ------------------------------------------------------------ scanner files
    const std::size_t half = floorRooms.size() / 2;
    ui.conflictAnswers = {true};
    addFile("Scan_EG_Teil1.dat");
    EXPECT_EQ(criticalMessages(), 0u);
    EXPECT_EQ(rows("T_Dateien"), 1);
    ASSERT_EQ(ui.conflicts.size(), 1u);
    EXPECT_EQ(ui.conflicts[0].stDateiAlt, "Scan_EG_Teil1.dat");
    EXPECT_EQ(ui.conflicts[0].stRaumAlt, floorRooms[1]->nr);
    EXPECT_EQ(ui.conflicts[0].stRaumNeu, floorRooms[2]->nr);
    EXPECT_EQ(roomOfScan(ui.conflicts[0].stInvNr), floorRooms[2]->nr); // the second occurrence was taken
    for (std::size_t j = 0; j < half; ++j)
        EXPECT_EQ(statusOf(floorRooms[j]->nr), "E") << floorRooms[j]->nr;
    EXPECT_EQ(statusOf(floorRooms[half]->nr), "N");
    ASSERT_EQ(work()->lvDateien->topLevelItemCount(), 1);
    EXPECT_EQ(work()->lvDateien->topLevelItem(0)->text(0), QStringLiteral("Scan_EG_Teil1.dat"));
    EXPECT_EQ(work()->lvDateien->topLevelItem(0)->text(1), QStringLiteral("14.03.2025"));
    EXPECT_FALSE(work()->lvDateien->topLevelItem(0)->text(2).contains(QLatin1Char('\\')));
    EXPECT_TRUE(work()->pbRemove->isEnabled());

    ui.conflictAnswers = {false};
    addFile("Scan_EG_Teil2.dat");
    EXPECT_EQ(criticalMessages(), 0u);
    EXPECT_EQ(rows("T_Dateien"), 2);
    ASSERT_EQ(ui.conflicts.size(), 2u);
    EXPECT_EQ(ui.conflicts[1].stDateiAlt, "Scan_EG_Teil1.dat");
    EXPECT_EQ(ui.conflicts[1].stDateiNeu, "Scan_EG_Teil2.dat");
    EXPECT_EQ(roomOfScan(ui.conflicts[1].stInvNr), floorRooms[0]->nr); // the first occurrence was kept
    for (const demo::Room* r : floorRooms)
        EXPECT_EQ(statusOf(r->nr), "E") << r->nr;
    const std::int64_t scans = rows("T_DatInventur");
    EXPECT_GT(scans, 0);

    const std::size_t messagesBefore = ui.messages.size();
    addFile("Scan_Zwei_Tage.dat");
    ASSERT_EQ(ui.messages.size(), messagesBefore + 1);
    EXPECT_EQ(ui.messages.back().text, "In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten "
                                       "Sie bitte die Textdatei.");
    EXPECT_EQ(ui.messages.back().title, "Quarn-Inventur");
    EXPECT_EQ(rows("T_Dateien"), 2);
    EXPECT_EQ(rows("T_DatInventur"), scans);
    EXPECT_FALSE(ui.busy);
    EXPECT_EQ(work()->lvDateien->topLevelItemCount(), 2);

    // ------------------------------------------------------------ every report and error list
    const std::string project = main->settings().gstProjektPfad;
    // The reports read the program's own copy of the report database, linked to this order.
    const std::string reportDb = reportDatabasePath(main->settings());
    EXPECT_EQ(reportDb.find(programDir), std::string::npos) << reportDb;
    for (const ReportMenuEntry& e : kReportMenu) {
        const std::size_t before = ui.reports.size();
        const std::int64_t differencesBefore = rows("T_Differenzliste");
        work()->mnuReportFkt.at(e.index)->trigger();
        EXPECT_EQ(criticalMessages(), 0u) << e.caption;
        ASSERT_EQ(ui.reports.size(), before + 1) << e.caption;
        const RecordedReport& r = ui.reports.back();
        EXPECT_EQ(r.dataFile, reportDb);
        if (e.index == reportmenu::Artikel) {
            EXPECT_EQ(r.reportFile, project + std::string(kArtikelReportFile));
            EXPECT_EQ(r.title, kArtikelReportTitle);
            EXPECT_GT(rows("T_Artikelliste"), 0);
        } else {
            EXPECT_EQ(r.reportFile, project + std::string(e.reportFile));
            EXPECT_EQ(r.title, e.title);
        }
        if (e.index == reportmenu::Raumerfassung) {
            EXPECT_EQ(rows("T_Differenzliste"), differencesBefore); // no evaluation
        }
        if (e.index == reportmenu::Inventur) {
            EXPECT_GT(rows("T_Invliste"), 0);
        }
        if (e.index == reportmenu::Inventurauswertung || e.index == reportmenu::Differenz) {
            EXPECT_GT(count(db(), "SELECT COUNT(*) FROM T_Differenzliste WHERE stTyp = '1 OK'"), 0);
            // The marked room takes part: its objects are missing.
            EXPECT_GT(count(db(), "SELECT COUNT(*) FROM T_Differenzliste d JOIN T_Raum r ON d.lRaumId = r.lID "
                                  "WHERE r.ststatus = 'L' AND d.stTyp LIKE '3b%'"),
                      0);
        }
        EXPECT_FALSE(ui.busy) << e.caption;
    }
    EXPECT_FALSE(ui.steps.empty()); // the evaluation reported its steps
    for (const ReportMenuEntry& e : kFehlerMenu) {
        const std::size_t before = ui.reports.size();
        work()->mnuFehlerFkt.at(e.index)->trigger();
        EXPECT_EQ(criticalMessages(), 0u) << e.caption;
        ASSERT_EQ(ui.reports.size(), before + 1) << e.caption;
        EXPECT_EQ(ui.reports.back().reportFile, project + std::string(e.reportFile));
        EXPECT_EQ(ui.reports.back().title, e.title);
        EXPECT_EQ(ui.reports.back().dataFile, reportDb);
        const std::int64_t left = rows("T_Differenzliste");
        EXPECT_GT(left, 0) << e.caption;
        std::string kept;
        if (e.index == fehlermenu::Neu)
            kept = "stSollInvNR = '' AND stQuelle = '' AND stIstInvNR <> ''";
        else if (e.index == fehlermenu::Verschoben)
            kept = "stZiel <> '' AND stSollInvNR <> ''";
        else
            kept = "stTyp LIKE '3b%'";
        EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_Differenzliste WHERE " + kept), left) << e.caption;
    }

    // ------------------------------------------------------------ archive
    work()->mnuDateiFkt.at(workmenu::Archiv)->trigger();
    EXPECT_EQ(criticalMessages(), 0u);
    const std::string archive = demoDir + "/Inventur/Erdgeschoss.dat";
    ASSERT_TRUE(fileExists(archive));
    const std::string text = readFile(archive);
    EXPECT_EQ(std::int64_t(std::count(text.begin(), text.end(), '\n')), scans);
    EXPECT_TRUE(work()->statusBar()->currentMessage().contains(QString::fromStdString(displayPath(archive))));

    // ------------------------------------------------------------ removing a file rebuilds the scan data
    QTreeWidgetItem* teil1 = itemWithText(*work()->lvDateien, QStringLiteral("Scan_EG_Teil1.dat"));
    ASSERT_NE(teil1, nullptr);
    clickItem(*work()->lvDateien, teil1);
    ui.answers.push_back(MsgResult::Yes);
    QTest::mouseClick(work()->pbRemove, Qt::LeftButton);
    EXPECT_EQ(ui.messages.back().text, "Die Datei 'Scan_EG_Teil1.dat' entfernen und Inventurdaten entsprechen "
                                       "verbleibenden Dateien aktualisieren ?");
    EXPECT_EQ(criticalMessages(), 0u);
    EXPECT_EQ(rows("T_Dateien"), 1);
    const std::int64_t teil2 = toLong(read(db())->scalar("SELECT lID FROM T_Dateien"));
    EXPECT_GT(rows("T_DatInventur"), 0);
    EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_DatInventur WHERE lDatID <> " + std::to_string(teil2)), 0);
    EXPECT_EQ(rows("T_Differenzliste"), 0);
    EXPECT_EQ(statusOf(floorRooms[0]->nr), "N");
    EXPECT_EQ(statusOf(floorRooms[half]->nr), "E");
    EXPECT_EQ(statusOf(marked->nr), "N"); // the rebuild resets every room, the marked one too
    ASSERT_EQ(work()->lvDateien->topLevelItemCount(), 1);
    EXPECT_EQ(work()->lvDateien->topLevelItem(0)->text(0), QStringLiteral("Scan_EG_Teil2.dat"));

    // ------------------------------------------------------------ closing and opening again
    QPointer<frmWorkWindow> first = work();
    QTest::mouseClick(work()->pbOk, Qt::LeftButton);
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->f_bReload);
    EXPECT_FALSE(first->isVisible());
    EXPECT_TRUE(main->isActiveState());
    EXPECT_TRUE(main->centralWidget()->isEnabled());
    ASSERT_NE(main->orderDb(), nullptr);
    EXPECT_FALSE(main->orderDb()->isOpen());
    main->repaint(); // the paint releases the order database
    EXPECT_EQ(main->orderDb(), nullptr);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(rows("T_Raum"), std::int64_t(floorRooms.size()) + 1);

    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    EXPECT_EQ(work()->lvRooms->topLevelItemCount(), int(floorRooms.size()) + 1);
    EXPECT_EQ(work()->lvDateien->topLevelItemCount(), 1);
    EXPECT_EQ(itemWithText(*work()->lvRooms, QString::fromStdString(floorRooms[half]->nr))->text(1),
              QStringLiteral("E"));

    // ------------------------------------------------------------ deleting it closes its window first
    QPointer<frmWorkWindow> open = work();
    ui.answers.push_back(MsgResult::Yes);
    main->mnuDateiFkt_Click(menuindex::DeleteOrder);
    EXPECT_EQ(ui.messages.back().text, "Auftrag 'Erdgeschoss' löschen ?");
    ASSERT_NE(open, nullptr);
    EXPECT_TRUE(open->f_bReload);
    EXPECT_FALSE(open->isVisible());
    EXPECT_EQ(main->workWindow(), nullptr);
    EXPECT_FALSE(fileExists(db()));
    EXPECT_EQ(count(demoDir + "/QInventur.mdb", "SELECT COUNT(*) FROM T_Auftrag"), 0);
    EXPECT_EQ(main->lvAuftraege->topLevelItemCount(), 0);
    EXPECT_EQ(criticalMessages(), 0u);
}

} // namespace
} // namespace qi::test
