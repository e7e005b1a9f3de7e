// Every window of the program rendered offscreen to a PNG (kept in "screenshots"
// beside the test program), with the captions a person must find on it.

#include "ProgramFixture.h"

#include "QTreeGebStruCtrl.h"
#include "QtUserInteraction.h"
#include "Screenshots.h"
#include "frmFehler.h"

#include <QListWidget>
#include <QPushButton>
#include <QTextBrowser>
#include <QTreeWidget>

namespace qi::test {
namespace {

class ScreenshotTest : public ProgramFixture {
protected:
    QString floorText() const
    {
        for (const demo::Node& n : inst.nodes)
            if (n.id == firstFloor())
                return QString::fromStdString(n.nr + " " + n.name);
        return {};
    }
};

TEST_F(ScreenshotTest, MainWindow)
{
    startProgram();
    newOrder("Erdgeschoss Nord", "Meier");
    newOrder("Lager Süd", "Schulz");
    expectOnScreen(*main, QStringLiteral("main"),
                   {"&Datei", "&?", "Name", "erstellt", "geändert", "Ersteller", "Erdgeschoss Nord", "Lager Süd",
                    "Öffnen mit Doppelklick"});
    EXPECT_EQ(main->windowTitle(), QStringLiteral("Aufträge im Projekt: 'Demo'"));
}

TEST_F(ScreenshotTest, WorkWindowWithData)
{
    startProgram();
    newOrder("Erdgeschoss");
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        w.tvGeb->SelectNode(firstFloor());
        emit w.tvGeb->Click();
        w.pbAllIn->click();
        w.pbFertig->click();
    });
    work()->pbRooms->click();
    ui.fileChoices = {scanFile("Scan_EG_Teil1.dat"), scanFile("Scan_EG_Teil2.dat")};
    work()->pbAdd->click();
    work()->pbAdd->click();
    const auto rooms = inst.roomsOfFloor(firstFloor());
    expectOnScreen(*work(), QStringLiteral("work"),
                   {"&Datei", "&Berichte", "&Fehlerlisten (Auftragsbereich)", "Auftragsräume",
                    "hinzugefügte Daten (*.dat-Dateien)                       Öffnen mit Doppelklick", "Raum",
                    "Status", "Datum", "Anzahl", "Datei", "Name", "Erf.-datum", "Pfad", "&Hinzufügen", "&Entfernen",
                    "&Auswertung aktualisieren", "&Auswahl", "&OK", "Scan_EG_Teil1.dat", "Scan_EG_Teil2.dat",
                    "14.03.2025", QString::fromStdString(rooms.front()->nr), "E"});
    EXPECT_EQ(work()->windowTitle(), QStringLiteral("Auftrag: Erdgeschoss"));
}

TEST_F(ScreenshotTest, RoomSelectionWithTheTree)
{
    startProgram();
    newOrder("Erdgeschoss");
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    const auto rooms = inst.roomsOfFloor(firstFloor());
    bool shot = false;
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        w.tvGeb->SelectNode(firstFloor());
        emit w.tvGeb->Click();
        w.lbRooms->item(0)->setSelected(true);
        w.lbRooms->item(1)->setSelected(true);
        w.pbIn->click();
        expectOnScreen(w, QStringLiteral("rooms"),
                       {"&Gebäudestruktur", "&Räume", "Räume des A&uftrags", "Auswahl alle Räume", "&Fertig",
                        "&Hinzufügen >", "&Alle hinzufügen >>", "< &Entfernen", "<< Alle e&ntfernen", "Raum",
                        "Status", floorText(), QString::fromStdString(rooms[0]->nr),
                        QString::fromStdString(rooms[5]->nr), "N"});
        shot = true;
        w.pbFertig->click();
    });
    work()->pbRooms->click();
    EXPECT_TRUE(shot);
}

TEST_F(ScreenshotTest, ConflictDialog)
{
    qtApplication();
    frmFehler f;
    f.setInfo({"INV-000123", "A-0815", "Bürostuhl Drehstuhl", "1.001", "Scan_EG_Teil1.dat", "14.03.2025", "1.002",
               "Scan_EG_Teil2.dat", "17.03.2025"});
    f.show();
    expectOnScreen(f, QStringLiteral("conflict"),
                   {"Bitte zwischen beiden Räumen entscheiden !", "Inventarnummer", "Artikelnummer",
                    "Artikelbezeichnung", "Erstes Auftreten:", "Zweites Auftreten:", "Raum", "Datei", "Datum",
                    "INV-000123", "A-0815", "Bürostuhl Drehstuhl", "1.001", "1.002", "Scan_EG_Teil1.dat",
                    "Scan_EG_Teil2.dat", "14.03.2025", "17.03.2025", "&behalten", "&übernehmen", "&OK"});
    EXPECT_EQ(f.windowTitle(), QStringLiteral("Fehler"));
}

TEST_F(ScreenshotTest, NewOrderDialog)
{
    qtApplication();
    frmAufNeu f;
    f.txName->setText(QStringLiteral("Lager Süd"));
    f.edPerson->setText(QStringLiteral("Schulz"));
    f.show();
    expectOnScreen(f, QStringLiteral("neworder"), {"Bezeichnung", "Mitarbeiter", f.pbOk->text(), f.pbCancel->text()});
    EXPECT_FALSE(f.windowTitle().isEmpty());
}

TEST_F(ScreenshotTest, AboutBox)
{
    qtApplication();
    frmAbout f;
    f.show();
    expectOnScreen(f, QStringLiteral("about"), {"Quarn - Inventurauftrag Quarn 4", "Version :  4.01.00", "&Schließen"});
    EXPECT_EQ(f.windowTitle(), QStringLiteral("Info über ..."));
}

TEST_F(ScreenshotTest, Help)
{
    QtUserInteraction qt;
    qt.showHelp(programDir + "\\QInventur.html");
    QTextBrowser* help = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* b = qobject_cast<QTextBrowser*>(w); b && b->isVisible())
            help = b;
    ASSERT_NE(help, nullptr);
    expectOnScreen(*help, QStringLiteral("help"), {});
    EXPECT_EQ(help->windowTitle(), QStringLiteral("QInventur - Hilfe"));
    const QString text = help->toPlainText();
    for (const char* topic : {"Aufträge", "Räume", "Scannerdateien", "Berichte", "Fehlerlisten"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(topic))) << topic;
    help->close();
}

} // namespace
} // namespace qi::test
