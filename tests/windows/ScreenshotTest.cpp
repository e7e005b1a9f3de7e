// Every window of the program rendered offscreen to a PNG (kept in "screenshots"
// beside the test program), with the captions a person must find on it.

#include "ProgramFixture.h"

#include "QTreeGebStruCtrl.h"
#include "QtUserInteraction.h"
#include "ProgramVersion.h"
#include "Screenshots.h"
#include "frmFehler.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeView>
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
    chooseFirstFloor();
    addDemoScanFiles();
    for (const RecordedMessage& m : ui.messages)
        EXPECT_NE(m.icon, MsgIcon::Critical) << m.text;
    const auto rooms = inst.roomsOfFloor(firstFloor());
    expectOnScreen(*work(), QStringLiteral("work"),
                   {"&Datei", "&Berichte", "&Fehlerlisten (Auftragsbereich)", "Auftragsräume",
                    "hinzugefügte Daten (*.dat-Dateien)                       Öffnen mit Doppelklick", "Raum",
                    "Status", "Datum", "Anzahl", "Datei", "Name", "Erf.-datum", "Pfad", "&Hinzufügen", "&Entfernen",
                    "&Auswertung aktualisieren", "&Auswahl", "&OK", "Scan_EG_Teil1.dat", "Scan_EG_Teil2.dat",
                    "14.03.2025", QString::fromStdString(rooms.front()->nr), "E"});
    EXPECT_EQ(work()->windowTitle(), QStringLiteral("Auftrag: Erdgeschoss"));
}

TEST_F(ScreenshotTest, ImportMessagesAndConflictDialogReachTheScreen)
{
    // The program's own dialogs: the file is chosen in the file dialog, and the import's
    // messages and the conflict dialog wait for their answer while the import runs.
    QtUserInteraction qt;
    installFrmFehler(qt);
    startProgram(qt);
    qt.setParent(main.get());
    newOrder("Erdgeschoss");
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    chooseFirstFloor();

    /// Checks what reached the screen of the dialog waiting in front: drawn at all, and the
    /// place of `text` drawn with more than the background.
    const auto expectDrawn = [](QWidget& dialog, const QString& name, QWidget& text) {
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog)) << name.toStdString();
        QTest::qWait(50);
        const QImage shown = screenContents(dialog, name);
        ASSERT_FALSE(shown.isNull()) << name.toStdString();
        EXPECT_GT(colourCount(shown), 20) << name.toStdString();
        const QRect place(text.mapTo(&dialog, QPoint(0, 0)), text.size());
        const qreal dpr = shown.devicePixelRatio();
        const QImage textPixels = shown.copy(QRect(place.topLeft() * dpr, place.size() * dpr));
        EXPECT_GT(colourCount(textPixels), 4) << name.toStdString() << ": " << text.objectName().toStdString();
    };

    QStringList messages;
    int conflicts = 0;
    int fileDialogs = 0;
    QTimer answer;
    answer.setInterval(10);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        answer.stop(); // the checks below run the event loop
        if (auto* files = qobject_cast<QFileDialog*>(modal)) {
            if (++fileDialogs > 1) {
                ADD_FAILURE() << "the file dialog did not take the scanner file";
                files->reject();
            } else {
                // Typed into the name field, as a person does.
                files->setDirectory(QString::fromStdString(demoDir));
                if (auto* name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
                    name->setText(QStringLiteral("Scan_EG_Teil1.dat"));
                QMetaObject::invokeMethod(files, "accept");
            }
        } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            messages << box->text();
            auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
            if (label)
                expectDrawn(*box, QStringLiteral("import-message-%1").arg(messages.size()), *label);
            else
                ADD_FAILURE() << "message box without its text label";
            box->buttons().first()->click();
        } else if (auto* conflict = qobject_cast<frmFehler*>(modal)) {
            ++conflicts;
            expectDrawn(*conflict, QStringLiteral("import-conflict-%1").arg(conflicts), *conflict->lbInvNr);
            conflict->opBehalten->click();
            conflict->pbOk->click();
        } else {
            ADD_FAILURE() << "unexpected window " << modal->metaObject()->className() << " "
                          << modal->windowTitle().toStdString();
            modal->close();
        }
        answer.start();
    });
    answer.start();
    work()->pbAdd->click();
    answer.stop();

    bool sameRoom = false;
    bool withoutNumber = false;
    for (const QString& m : messages) {
        sameRoom |= m.endsWith(QStringLiteral("' mehrfach eingescannt worden."));
        withoutNumber |= m.endsWith(QStringLiteral("' steht ein Datensatz ohne Objektnummer."));
    }
    EXPECT_TRUE(sameRoom) << messages.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(withoutNumber) << messages.join(QLatin1Char('\n')).toStdString();
    EXPECT_GE(conflicts, 1);
    ASSERT_EQ(work()->lvDateien->topLevelItemCount(), 1);
}

TEST_F(ScreenshotTest, FileDialogShowsItsColumnsWhole)
{
    QtUserInteraction qt;
    bool shot = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        auto* list = dialog->findChild<QTreeView*>(QStringLiteral("treeView"));
        ASSERT_NE(list, nullptr);
        ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount(list->rootIndex()) >= 4; }));
        QTest::qWait(50);
        expectOnScreen(*dialog, QStringLiteral("filedialog"), {});
        const QHeaderView* header = list->header();
        const QAbstractItemView& view = *list;
        for (int c = 1; c < header->count(); ++c) {
            if (!header->isSectionHidden(c)) {
                EXPECT_GE(header->sectionSize(c), view.sizeHintForColumn(c)) << "column " << c;
            }
        }
        EXPECT_GE(header->sectionSize(0), header->sectionSize(1));
        shot = true;
        dialog->reject();
    });
    FileDialogRequest request;
    request.startFolder = demoDir;
    request.filter = "Alle Dateien (*.*)|*.*|Scannerdaten (*.dat)|*.dat";
    request.filterIndex = 2;
    EXPECT_FALSE(qt.openFile(request).has_value());
    EXPECT_TRUE(shot);
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
    expectOnScreen(f, QStringLiteral("about"), {"Quarn - Inventurauftrag Quarn 4", "Version :  4.01.00",
                                                QString::fromStdString(versionLine()), "&Schließen"});
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
