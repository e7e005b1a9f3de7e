// The label commands in the windows on the demo project: the work window's menu "&Etiketten"
// after its own menus, the label dialog (screenshots of both), room labels saved as PDF from
// it with every barcode read back, the preview of the sheets (screenshot) and their printing
// with the report engine's pages, progress and a failure of their own, the walk list opened in
// the report preview, and the room selection's context menu of the building tree.

#include "TestSupport.h"
#include "ProgramFixture.h"

#include "FileSystem.h"
#include "LabelDialog.h"
#include "LabelWindows.h"
#include "QTreeGebStruCtrl.h"
#include "ReportPageView.h"
#include "ReportPrinting.h"
#include "ReportPreview.h"
#include "Screenshots.h"
#include "frmRaumWindow.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QSpinBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QPrinter>
#include <QPushButton>

#include <algorithm>
#include <cstdio>

namespace qi::test {
namespace {

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

/// Thirty room labels on A4 sheets of 3 × 8: two sheets.
LabelSheets twoSheets()
{
    LabelLayout layout;
    layout.name = "A4, 3 × 8 Etiketten, 70 × 37 mm";
    layout.columns = 3;
    layout.rows = 8;
    std::vector<Label> labels;
    for (int i = 1; i <= 30; ++i) {
        const std::string nr = "1.01." + std::to_string(100 + i);
        labels.push_back({nr, Symbology::Code128, {nr, "Büro", "Gebäude A, 1. OG"}});
    }
    return LabelSheets(layout, std::move(labels));
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

TEST_F(LabelWindowsTest, ThePreviewShowsEverySheetAsAPageOfTheReportEngine)
{
    auto* preview = new LabelPreview(twoSheets(), "Raumetiketten", ui);
    preview->show();
    EXPECT_EQ(preview->windowTitle(), QStringLiteral("Raumetiketten"));
    EXPECT_EQ(preview->sheets().documentTitle(), "Raumetiketten");
    ASSERT_EQ(preview->pageViews().size(), 2u);
    for (int page = 0; page < 2; ++page) {
        const ReportPageView* view = preview->pageViews()[std::size_t(page)];
        EXPECT_EQ(view->page(), page);
        // 1.25 screen pixels per point: an A4 sheet 744 × 1052 pixels.
        EXPECT_EQ(view->pageSize(), QSize(744, 1052));
        // The whole page is shown, with the desk around it.
        EXPECT_EQ(view->height(), 1052 + 2 * ReportPageView::kMargin);
    }
    QStringList buttons;
    for (QAbstractButton* b : preview->findChild<QDialogButtonBox*>()->buttons())
        buttons << b->text();
    buttons.sort();
    EXPECT_EQ(buttons, (QStringList{"&Drucken …", "&Schließen"}));
    const QImage shot = screenshot(*preview, QStringLiteral("label-preview"));
    // The sheet is white on the grey desk and carries the black bars of the barcodes.
    const QImage page = shot.copy(QRect(preview->pageViews()[0]->mapTo(preview, QPoint(0, 0)),
                                        preview->pageViews()[0]->size()));
    int black = 0, white = 0;
    for (int y = 0; y < page.height(); y += 2)
        for (int x = 0; x < page.width(); x += 2) {
            const int gray = qGray(page.pixel(x, y));
            black += gray < 60;
            white += gray > 245;
        }
    EXPECT_GT(black, 200);
    EXPECT_GT(white, black);
    preview->close();
}

TEST_F(LabelWindowsTest, SheetsArePrintedAsTheReportsWithTheirPagesShownInProgress)
{
    const LabelSheets sheets = twoSheets();
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(sheets, printer);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(root.file("druck.pdf")));
    ASSERT_TRUE(printSheetsOn(sheets, printer, ui));
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(ui.progressTitles, std::vector<std::string>{"Drucken"});
    ASSERT_EQ(ui.steps.size(), 2u);
    EXPECT_EQ(ui.steps[1].step, "Seite");
    EXPECT_EQ(ui.steps[1].done, 2);
    EXPECT_EQ(ui.steps[1].total, 2);
    EXPECT_EQ(ui.progressDepth, 0);
    EXPECT_FALSE(ui.busy);
    const std::string info = commandOutput("pdfinfo '" + root.file("druck.pdf") + "'");
    EXPECT_NE(info.find("Pages:           2\n"), std::string::npos) << info;
    EXPECT_NE(info.find("Page size:       595 x 842 pts (A4)"), std::string::npos) << info;
    EXPECT_NE(info.find("Title:           Etiketten\n"), std::string::npos) << info;
}

TEST_F(LabelWindowsTest, AFailedPrintSaysTheLabelsCannotBePrinted)
{
    const LabelSheets sheets = twoSheets();
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(sheets, printer);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString());
    EXPECT_FALSE(printSheetsOn(sheets, printer, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmEtiketten.Print\r\nDie Etiketten können nicht gedruckt werden.");
    EXPECT_EQ(ui.progressDepth, 0);
    EXPECT_FALSE(ui.busy);
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
