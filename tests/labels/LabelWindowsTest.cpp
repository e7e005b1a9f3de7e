// The label commands in the windows on the demo project: the work window's menu "&Etiketten"
// after its own menus, the label dialog (screenshots of both), room labels saved as PDF from
// it with every barcode read back, the walk list opened in the report preview, and the room
// selection's context menu of the building tree.

#include "ProgramFixture.h"

#include "FileSystem.h"
#include "LabelDialog.h"
#include "LabelWindows.h"
#include "QTreeGebStruCtrl.h"
#include "ReportPreview.h"
#include "Screenshots.h"
#include "frmRaumWindow.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QSpinBox>
#include <QComboBox>

#include <algorithm>
#include <cstdio>

namespace qi::test {
namespace {

std::string commandOutput(const std::string& command)
{
    std::string out;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[4096];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            out.append(buffer, n);
        ::pclose(pipe);
    }
    return out;
}

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else if (c != '\r')
            lines.back() += c;
    }
    return lines;
}

class LabelWindowsTest : public ProgramFixture {
protected:
    void openDemoOrder()
    {
        startProgram();
        newOrder("Erdgeschoss");
        openOrder("Erdgeschoss");
        ASSERT_NE(work(), nullptr);
        chooseFirstFloor();
    }

    QMenu* labelMenu()
    {
        for (QAction* a : work()->menuBar()->actions())
            if (a->text() == QString::fromUtf8(labelmenu::Caption))
                return a->menu();
        return nullptr;
    }

    QAction* entry(const char* caption)
    {
        QMenu* menu = labelMenu();
        if (!menu)
            return nullptr;
        for (QAction* a : menu->actions())
            if (a->text() == QString::fromUtf8(caption))
                return a;
        return nullptr;
    }

    std::vector<std::string> roomNumbers() const
    {
        std::vector<std::string> numbers;
        for (const demo::Room* r : inst.roomsOfFloor(firstFloor()))
            numbers.push_back(r->nr);
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }
};

TEST_F(LabelWindowsTest, TheWorkWindowHasTheMenuEtikettenAfterItsOwnMenus)
{
    openDemoOrder();
    QStringList menus;
    for (QAction* a : work()->menuBar()->actions())
        menus << a->text();
    EXPECT_EQ(menus, (QStringList{"&Datei", "&Berichte", "&Fehlerlisten (Auftragsbereich)", "&Etiketten"}));
    QMenu* menu = labelMenu();
    ASSERT_NE(menu, nullptr);
    QStringList entries;
    for (QAction* a : menu->actions())
        entries << a->text();
    EXPECT_EQ(entries, (QStringList{"&Raumetiketten …", "&Objektetiketten (neues Inventar) …", "&Begehungsliste …"}));
    menu->popup(work()->mapToGlobal(QPoint(200, 20)));
    QApplication::processEvents();
    // The menu's entries are no widgets of their own: its picture is kept and must be drawn.
    const QImage shot = screenshot(*menu, QStringLiteral("label-menu"));
    ASSERT_FALSE(shot.isNull());
    EXPECT_GT(colourCount(shot), 2);
    menu->hide();
}

TEST_F(LabelWindowsTest, RoomLabelsOfTheOrderAreSavedAsPdfAndScan)
{
    openDemoOrder();
    const std::string pdf = root.file("tueren.pdf");
    ui.saveChoices.push_back(pdf);
    bool asked = false;
    whenModal<LabelDialog>([&](LabelDialog& dialog) {
        asked = true;
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Raumetiketten"));
        EXPECT_EQ(dialog.cbSymbologie, nullptr);
        EXPECT_GT(dialog.cbLayout->count(), 0);
        EXPECT_EQ(dialog.lbWhat->text().toStdString(),
                  std::to_string(roomNumbers().size()) + " Räume des Auftrags 'Erdgeschoss'");
        expectOnScreen(dialog, QStringLiteral("label-dialog"),
                       {"Etiketten&format:", "&Startposition auf dem ersten Bogen:", "&Kopien je Etikett:", "Ausgabe",
                        "&Vorschau", "&PDF speichern", "&Drucken", "OK", "Abbrechen"});
        dialog.rbPdf->setChecked(true);
        dialog.accept();
    });
    QAction* action = entry(labelmenu::Raumetiketten);
    ASSERT_NE(action, nullptr);
    action->trigger();
    EXPECT_TRUE(asked);
    ASSERT_FALSE(ui.messages.empty());
    EXPECT_EQ(ui.messages.back().text.rfind("Etiketten geschrieben: " + pdf + " (" +
                                                std::to_string(roomNumbers().size()) + " Etiketten, ",
                                            0),
              0u)
        << ui.messages.back().text;
    ASSERT_EQ(ui.saveRequests.size(), 1u);
    EXPECT_EQ(ui.saveRequests[0].title, "Etiketten speichern");
    // Every barcode of the sheets reads as a room of the order.
    commandOutput("pdftoppm -r 300 -gray -png " + std::string("'") + pdf + "' '" + root.file("seite") + "'");
    std::vector<std::string> decoded;
    for (const std::string& line : splitLines(commandOutput("zbarimg --raw -q '" + root.file("seite") + "'-*.png")))
        if (!line.empty())
            decoded.push_back(line);
    std::sort(decoded.begin(), decoded.end());
    EXPECT_EQ(decoded, roomNumbers());
}

TEST_F(LabelWindowsTest, TheWalkListOpensInTheReportPreview)
{
    openDemoOrder();
    QAction* action = entry(labelmenu::Begehungsliste);
    ASSERT_NE(action, nullptr);
    action->trigger();
    ReportPreview* preview = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<ReportPreview*>(w); p && p->isVisible())
            preview = p;
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->windowTitle(), QStringLiteral("Begehungsliste"));
    screenshot(*preview, QStringLiteral("walk-list-preview"));
    preview->close();
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(LabelWindowsTest, ObjectLabelsOfTheNewInventoryAskForTheSymbology)
{
    openDemoOrder();
    addDemoScanFiles();
    bool asked = false;
    whenModal<LabelDialog>([&](LabelDialog& dialog) {
        asked = true;
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Objektetiketten (neues Inventar)"));
        ASSERT_NE(dialog.cbSymbologie, nullptr);
        EXPECT_EQ(dialog.cbSymbologie->count(), 3);
        expectOnScreen(dialog, QStringLiteral("label-dialog-objects"), {"&Barcode:", "&Vorschau"});
        dialog.reject();
    });
    QAction* action = entry(labelmenu::Objektetiketten);
    ASSERT_NE(action, nullptr);
    action->trigger();
    EXPECT_TRUE(asked);
}

TEST_F(LabelWindowsTest, TheRoomSelectionOffersLabelsAndTheWalkListOfANode)
{
    startProgram();
    newOrder("Erdgeschoss");
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    const std::string pdf = root.file("geschoss.pdf");
    ui.saveChoices.push_back(pdf);
    bool shown = false;
    whenModal<frmRaumWindow>([&](frmRaumWindow& w) {
        ASSERT_TRUE(w.tvGeb->SelectNode(firstFloor()));
        QTreeWidgetItem* item = w.tvGeb->ItemOfNode(firstFloor());
        ASSERT_NE(item, nullptr);
        emit w.tvGeb->customContextMenuRequested(w.tvGeb->visualItemRect(item).center());
        QApplication::processEvents();
        auto* menu = w.findChild<QMenu*>(QStringLiteral("mnuRaumEtiketten"));
        ASSERT_NE(menu, nullptr);
        QStringList entries;
        for (QAction* a : menu->actions())
            entries << a->text();
        EXPECT_EQ(entries, (QStringList{"&Raumetiketten …", "&Begehungsliste …"}));
        EXPECT_TRUE(menu->isVisible());
        screenshot(*menu, QStringLiteral("room-selection-label-menu"));
        menu->hide();

        // The walk list of the floor's rooms.
        menu->actions().at(1)->trigger();
        ReportPreview* preview = w.findChild<ReportPreview*>();
        ASSERT_NE(preview, nullptr);
        EXPECT_EQ(preview->windowTitle(), QStringLiteral("Begehungsliste"));
        preview->close();

        // The floor's room labels as PDF.
        whenModal<LabelDialog>([&](LabelDialog& dialog) {
            EXPECT_EQ(dialog.lbWhat->text().toStdString(),
                      std::to_string(roomNumbers().size()) + " Räume unter '" + [&] {
                          for (const demo::Node& n : inst.nodes)
                              if (n.id == firstFloor())
                                  return n.name;
                          return std::string();
                      }() + "'");
            dialog.rbPdf->setChecked(true);
            dialog.accept();
        });
        menu->actions().at(0)->trigger();
        shown = true;
        w.pbFertig->click();
    });
    work()->pbRooms->click();
    EXPECT_TRUE(shown);
    ASSERT_FALSE(ui.messages.empty());
    EXPECT_EQ(ui.messages.back().text,
              "Etiketten geschrieben: " + pdf + " (" + std::to_string(roomNumbers().size()) + " Etiketten, 1 Seite).");
    EXPECT_TRUE(fileExists(pdf));
}

} // namespace
} // namespace qi::test
