// The preview window: pages one at a time with their navigation, zoom, saving as PDF,
// Excel and CSV through the save dialog, printing, and its place behind the user
// interaction's showReport. Screenshots of the difference list and an error list.

#include "DemoOrder.h"
#include "ReportFixture.h"

#include "FileSystem.h"
#include "QtUserInteraction.h"
#include "ReportMenus.h"
#include "ReportError.h"
#include "ReportExport.h"
#include "ReportPageView.h"
#include "ReportPreview.h"
#include "ReportPreviewState.h"
#include "ReportPrinting.h"
#include "ReportViewer.h"
#include "Screenshots.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolButton>

namespace qi::test {
namespace {

TEST(ReportPreviewState, NavigatesWithinThePages)
{
    ReportPreviewState s(3);
    EXPECT_TRUE(s.atFirst());
    EXPECT_FALSE(s.previous());
    EXPECT_TRUE(s.next());
    EXPECT_EQ(s.page(), 1);
    EXPECT_TRUE(s.last());
    EXPECT_TRUE(s.atLast());
    EXPECT_FALSE(s.next());
    EXPECT_TRUE(s.goTo(-5));
    EXPECT_EQ(s.page(), 0);
    EXPECT_TRUE(s.goTo(99));
    EXPECT_EQ(s.page(), 2);
    EXPECT_EQ(ReportPreviewState(0).pageCount(), 1);
}

TEST(ReportPreviewState, ZoomsInStepsWithinItsLimits)
{
    ReportPreviewState s(1);
    s.zoomIn();
    EXPECT_DOUBLE_EQ(s.zoom(), 1.25);
    s.setZoom(1.1);
    s.zoomOut();
    EXPECT_DOUBLE_EQ(s.zoom(), 1.0);
    s.setZoom(100);
    EXPECT_DOUBLE_EQ(s.zoom(), ReportPreviewState::kMaxZoom);
    s.zoomIn();
    EXPECT_DOUBLE_EQ(s.zoom(), ReportPreviewState::kMaxZoom);
    s.setZoom(0);
    EXPECT_DOUBLE_EQ(s.zoom(), ReportPreviewState::kMinZoom);
    // A4 portrait (595 pt) in 1000 pixels at 96 dpi, 16 pixels either side.
    EXPECT_NEAR(ReportPreviewState::fitZoom(1000, 595.0, 96, 16), 968.0 / (595.0 / 72.0 * 96), 1e-9);
}

class ReportPreviewTest : public ReportFixture {
protected:
    void SetUp() override
    {
        ReportFixture::SetUp();
        std::string script = "CREATE TABLE T_Daten (stRaum TEXT, iNr INTEGER); BEGIN;";
        for (int i = 0; i < 150; ++i)
            script += "INSERT INTO T_Daten VALUES ('R" + std::to_string(i / 50) + "', " + std::to_string(i) + ");";
        sql(script + "COMMIT;");
        file = definition("liste.rpt", "[Bericht]\nTitel = Liste\nQuelle = T_Daten\nSortierung = iNr\n[Gruppe]\n"
                                       "Feld = stRaum\nKopf = Raum {stRaum}\n[Spalte]\nFeld = iNr\nÜberschrift = Nummer\n");
        window = new ReportPreview(open(file, "Fenstertitel"), ui);
        window->show();
    }
    void TearDown() override { delete window; }

    ScriptedUserInteraction ui;
    std::string file;
    ReportPreview* window = nullptr;
};

TEST_F(ReportPreviewTest, ShowsTheFirstPageWithItsNavigation)
{
    const int pages = window->report().pageCount();
    ASSERT_GT(pages, 2);
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Fenstertitel"));
    EXPECT_EQ(window->txPage->value(), 1);
    EXPECT_EQ(window->lbPages->text(), QStringLiteral(" von ") + QString::number(pages) + QStringLiteral(" "));
    EXPECT_FALSE(window->pbFirst->isEnabled());
    EXPECT_FALSE(window->pbPrevious->isEnabled());
    EXPECT_TRUE(window->pbNext->isEnabled());
    window->pbNext->click();
    EXPECT_EQ(window->state().page(), 1);
    EXPECT_EQ(window->pageView->page(), 1);
    EXPECT_EQ(window->txPage->value(), 2);
    window->pbLast->click();
    EXPECT_EQ(window->state().page(), pages - 1);
    EXPECT_FALSE(window->pbNext->isEnabled());
    window->txPage->setValue(2);
    EXPECT_EQ(window->pageView->page(), 1);
    window->pbFirst->click();
    EXPECT_EQ(window->pageView->page(), 0);
}

TEST_F(ReportPreviewTest, ZoomChangesThePagesSizeOnScreen)
{
    window->setZoom(1.0);
    const QSize normal = window->pageView->pageSize();
    window->setZoom(2.0);
    EXPECT_NEAR(window->pageView->pageSize().width(), 2 * normal.width(), 2);
    EXPECT_EQ(window->cbZoom->currentText(), QStringLiteral("200 %"));
    window->cbZoom->setCurrentIndex(window->cbZoom->findText(QStringLiteral("Ganze Seite")));
    emit window->cbZoom->activated(window->cbZoom->currentIndex());
    EXPECT_LE(window->pageView->sizeHint().height(), window->scroll->viewport()->height() + 1);
    window->fitWidth();
    EXPECT_LE(window->pageView->sizeHint().width(), window->scroll->viewport()->width() + 1);
    EXPECT_EQ(window->cbZoom->currentText(), QStringLiteral("Seitenbreite"));
}

TEST_F(ReportPreviewTest, AFirstShownWindowFitsThePageToItsWidthAndFollowsItsSize)
{
    ReportPreview fresh(open(file, "Neu"), ui);
    fresh.resize(1100, 800);
    fresh.show();
    QApplication::processEvents();
    const auto fills = [&] {
        const int view = fresh.scroll->viewport()->width();
        const int page = fresh.pageView->pageSize().width();
        EXPECT_GT(page, view - 2 * ReportPageView::kMargin - 40) << page << " of " << view;
        EXPECT_LE(page, view) << page << " of " << view;
    };
    EXPECT_EQ(fresh.cbZoom->currentText(), QStringLiteral("Seitenbreite"));
    fills();
    fresh.resize(700, 800);
    QApplication::processEvents();
    fills();
}

TEST_F(ReportPreviewTest, SavesEachFormatWhereTheUserSays)
{
    ui.saveChoices = {dir.file("a.pdf"), dir.file("b"), dir.file("c.csv")};
    window->pbPdf->click();
    window->pbXlsx->click();
    window->pbCsv->click();
    ASSERT_EQ(ui.saveRequests.size(), 3u);
    EXPECT_EQ(ui.saveRequests[0].title, "Als PDF speichern");
    EXPECT_EQ(ui.saveRequests[1].title, "Als Excel-Datei speichern");
    EXPECT_EQ(ui.saveRequests[2].title, "Als CSV speichern");
    EXPECT_EQ(ui.saveRequests[0].fileName, "Fenstertitel - Auftrag 1.pdf");
    EXPECT_EQ(ui.saveRequests[1].filter, "Excel-Arbeitsmappe (*.xlsx)|*.xlsx");
    EXPECT_NE(pdfText(dir.file("a.pdf")).find("Raum R0"), std::string::npos);
    // A name without extension gets the format's.
    EXPECT_NE(zipEntry(dir.file("b.xlsx"), "xl/worksheets/sheet1.xml").find("Nummer"), std::string::npos);
    EXPECT_EQ(readFile(dir.file("c.csv")).substr(0, 18), "\xEF\xBB\xBF" "stRaum;Nummer\r\n");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ReportPreviewTest, ACancelledDialogWritesNothingAndAFailedFileIsReported)
{
    window->pbPdf->click();
    EXPECT_EQ(ui.saveRequests.size(), 1u);
    EXPECT_EQ(countFiles(dir.path()), 2); // the database and the definition
    const std::string bad = dir.file("fehlt/a.pdf");
    ui.saveChoices = {bad};
    window->pbPdf->click();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmReport.SaveAs\r\nDie Datei '" + displayPath(bad) +
                                       "' kann nicht geschrieben werden: Die Datei oder der Ordner existiert nicht.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_FALSE(ui.busy);
}

TEST_F(ReportPreviewTest, PrintsThePagesThePrinterAsksFor)
{
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(window->report(), printer);
    EXPECT_EQ(printer.toPage(), window->report().pageCount());
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(dir.file("druck.pdf")));
    printer.setPrintRange(QPrinter::PageRange);
    printer.setFromTo(2, 2);
    ASSERT_TRUE(window->print(printer));
    const std::string text = pdfText(dir.file("druck.pdf"));
    EXPECT_NE(text.find("Seite 2 von " + std::to_string(window->report().pageCount())), std::string::npos);
    EXPECT_EQ(text.find("Seite 1 von"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\f'), 1);
}

TEST_F(ReportPreviewTest, ClosingTheWindowDeletesIt)
{
    QPointer<ReportPreview> w(window);
    window->pbClose->click();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(w.isNull());
    window = nullptr;
}

/// Top-level preview windows that are shown.
std::vector<ReportPreview*> shownPreviews()
{
    std::vector<ReportPreview*> found;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<ReportPreview*>(w); p && p->isVisible())
            found.push_back(p);
    return found;
}

TEST_F(ReportFixture, TheProgramsShowReportOpensThePreview)
{
    sql("CREATE TABLE T_Daten (a TEXT); INSERT INTO T_Daten VALUES ('x');");
    const std::string f = definition("a.rpt", "[Bericht]\nTitel = A\nQuelle = T_Daten\n[Spalte]\nFeld = a\n");
    QtUserInteraction qt;
    installReportPreview(qt);
    qt.showReport(f, dataFile, "Raumliste");
    const auto previews = shownPreviews();
    ASSERT_EQ(previews.size(), 1u);
    EXPECT_EQ(previews[0]->windowTitle(), QStringLiteral("Raumliste"));
    EXPECT_EQ(previews[0]->report().file(), f);
    delete previews[0];
}

TEST_F(ReportFixture, AReportThatCannotBeOpenedShowsNoWindowAndRaisesItsError)
{
    const std::string f = definition("a.rpt", "[Bericht]\nTitel A\n");
    QtUserInteraction qt;
    installReportPreview(qt);
    try {
        qt.showReport(f, dataFile, "Raumliste");
        ADD_FAILURE() << "no error";
    } catch (const ReportError& e) {
        EXPECT_EQ(std::string(e.what()).rfind("Fehler in der Berichtsdatei '" + f + "', Zeile 2: ", 0), 0u);
    }
    EXPECT_TRUE(shownPreviews().empty());
}

TEST(ReportPreviewInTheProgram, TheWorkWindowsMenusOpenThePreview)
{
    DemoOrder& order = DemoOrder::shared();
    QtUserInteraction qt;
    installReportPreview(qt);
    frmWork work(*order.db, order.settings, qt);
    work.Init();
    work.mnuFehlerFkt_Click(fehlermenu::Neu);
    work.mnuReportFkt_Click(reportmenu::Differenz);
    const auto previews = shownPreviews();
    ASSERT_EQ(previews.size(), 2u);
    QStringList titles;
    for (ReportPreview* p : previews)
        titles << p->windowTitle();
    EXPECT_TRUE(titles.contains(QStringLiteral("Liste Neu im Auftragsbereich")));
    EXPECT_TRUE(titles.contains(QStringLiteral("Differenzliste")));
    for (ReportPreview* p : previews) {
        if (p->windowTitle() == QStringLiteral("Differenzliste")) {
            EXPECT_EQ(fileNamePart(p->report().file()), "invdiff.rpt");
        } else {
            EXPECT_EQ(p->report().model().rowCount(), 3u);
        }
        delete p;
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

/// The preview of a report of the demo order, just made by its menu entry, shown offscreen
/// and kept as a screenshot.
void expectPreviewScreenshot(const RenderedReport* made, const QString& name, const QStringList& texts)
{
    DemoOrder& order = DemoOrder::shared();
    ASSERT_NE(made, nullptr);
    const RenderedReport r = *made;
    ScriptedUserInteraction ui;
    ReportPreview* w = showReportPreview(nullptr, ui, r.reportFile, order.reportDb, r.title);
    w->resize(1200, 860);
    w->fitWidth();
    QApplication::processEvents();
    const QImage shot = screenshot(*w, name);
    ASSERT_FALSE(shot.isNull());
    EXPECT_GT(colourCount(shot), 20);
    const QStringList shown = visibleTexts(*w);
    for (const QString& t : texts) {
        EXPECT_TRUE(shown.contains(t)) << t.toStdString();
    }
    EXPECT_EQ(w->windowTitle(), QString::fromStdString(r.title));
    EXPECT_EQ(w->cbZoom->currentText(), QStringLiteral("Seitenbreite"));
    delete w;
}

TEST(ReportPreviewScreenshot, DifferenceList)
{
    expectPreviewScreenshot(DemoOrder::shared().runReportMenu(reportmenu::Differenz),
                            QStringLiteral("preview-differenzliste"),
                            {"&Drucken…", "Als PDF speichern", "Als Excel-Datei speichern", "Als CSV speichern",
                             "&Schließen", " Seite ", " Zoom "});
}

TEST(ReportPreviewScreenshot, ErrorListNewInventory)
{
    expectPreviewScreenshot(DemoOrder::shared().runErrorMenu(fehlermenu::Neu), QStringLiteral("preview-neu"),
                            {"&Drucken…", "Als PDF speichern", "Als Excel-Datei speichern", "Als CSV speichern"});
}

} // namespace
} // namespace qi::test
