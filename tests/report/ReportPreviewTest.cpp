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
#include <QPaintEngine>
#include <QPainter>
#include <QScrollArea>
#include <QSettings>
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

TEST_F(ReportPreviewTest, SavingAPdfShowsItsPagesAndKeepsTheWindowUntilItIsDone)
{
    const int pages = window->report().pageCount();
    ASSERT_GT(pages, 2);
    QPointer<ReportPreview> alive(window);
    int closeTries = 0;
    // A page written: the progress says which, and the window refuses to close meanwhile.
    struct ClosingUser : ScriptedUserInteraction {
        std::function<void()> onStep;
        void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override
        {
            ScriptedUserInteraction::reportStep(step, done, total);
            if (onStep)
                onStep();
        }
    } user;
    ReportPreview* w = new ReportPreview(open(file, "Fenstertitel"), user);
    w->show();
    QPointer<ReportPreview> kept(w);
    user.onStep = [&] {
        ++closeTries;
        EXPECT_FALSE(w->close());
        EXPECT_FALSE(w->pbPdf->isEnabled());
    };
    user.saveChoices = {dir.file("seiten.pdf")};
    w->pbPdf->click();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_FALSE(kept.isNull());
    EXPECT_EQ(user.progressTitles, std::vector<std::string>{"Als PDF speichern"});
    EXPECT_EQ(user.progressDepth, 0);
    ASSERT_EQ(user.steps.size(), std::size_t(pages));
    for (int p = 0; p < pages; ++p) {
        EXPECT_EQ(user.steps[std::size_t(p)].step, "Seite");
        EXPECT_EQ(user.steps[std::size_t(p)].done, p + 1);
        EXPECT_EQ(user.steps[std::size_t(p)].total, pages);
    }
    EXPECT_EQ(closeTries, pages);
    EXPECT_TRUE(w->pbPdf->isEnabled());
    EXPECT_NE(pdfText(dir.file("seiten.pdf")).find("Seite " + std::to_string(pages) + " von"), std::string::npos);
    // A workbook has no pages: its rows are written aside while the window waits, and the
    // progress window says so.
    user.onStep = {};
    user.steps.clear();
    user.saveChoices = {dir.file("zeilen.xlsx"), dir.file("fehlt/zeilen.xlsx")};
    w->pbXlsx->click();
    EXPECT_EQ(user.progressTitles,
              (std::vector<std::string>{"Als PDF speichern", "Als Excel-Datei speichern"}));
    ASSERT_EQ(user.steps.size(), 1u);
    EXPECT_EQ(user.steps[0].step, "Die Zeilen des Berichts werden geschrieben …");
    EXPECT_EQ(user.steps[0].step, ReportPreview::kWritingRows);
    EXPECT_EQ(user.progressDepth, 0);
    EXPECT_GT(xlsxRowCount(dir.file("zeilen.xlsx")), 150);
    EXPECT_TRUE(user.messages.empty());
    // A file that can't be written is reported as before, after the writing thread has ended.
    w->pbXlsx->click();
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_EQ(user.messages[0].text.rfind("frmReport.SaveAs\r\nDie Datei '", 0), 0u) << user.messages[0].text;
    EXPECT_EQ(user.progressDepth, 0);
    EXPECT_FALSE(user.busy);
    EXPECT_TRUE(w->close());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(kept.isNull());
    EXPECT_FALSE(alive.isNull());
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
    // The one page printed showed in a progress window titled as the print dialog.
    EXPECT_EQ(ui.progressTitles, std::vector<std::string>{"Drucken"});
    ASSERT_EQ(ui.steps.size(), 1u);
    EXPECT_EQ(ui.steps[0].step, "Seite");
    EXPECT_EQ(ui.steps[0].done, 1);
    EXPECT_EQ(ui.steps[0].total, 1);
    EXPECT_EQ(ui.progressDepth, 0);
    EXPECT_TRUE(window->pbPrint->isEnabled());
}

TEST_F(ReportPreviewTest, AFailedPrintSaysTheReportCannotBePrinted)
{
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(window->report(), printer);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString());
    EXPECT_FALSE(window->print(printer));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmReport.Print\r\nDer Bericht kann nicht gedruckt werden.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(window->report().cannotPrintText("Büro"), "Der Bericht kann auf dem Drucker 'Büro' nicht gedruckt werden.");
    EXPECT_EQ(ui.progressDepth, 0);
    EXPECT_FALSE(ui.busy);
    EXPECT_TRUE(window->pbPrint->isEnabled());
}

TEST_F(ReportPreviewTest, ClosingTheWindowDeletesIt)
{
    QPointer<ReportPreview> w(window);
    window->pbClose->click();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(w.isNull());
    window = nullptr;
}

/// A preview of `report` at the size it takes when no size was kept, shown offscreen.
std::unique_ptr<ReportPreview> atDefaultSize(std::unique_ptr<Report> report, UserInteraction& ui)
{
    QSettings settings;
    for (const QString& orientation : {QString(), QStringLiteral("Quer")})
        settings.remove(QStringLiteral("Fenster/") + QString::fromLatin1(ReportPreview::kStateKey) + orientation);
    auto w = std::make_unique<ReportPreview>(std::move(report), ui);
    w->show();
    QApplication::processEvents();
    return w;
}

/// The commands of the preview's bar that a person can see and reach in the window.
void expectEveryCommandInView(ReportPreview& w)
{
    const QStringList shown = visibleTexts(w);
    for (const char* command : {"&Drucken…", "Als PDF speichern", "Als Excel-Datei speichern", "Als CSV speichern",
                                "&Schließen", " Seite ", " Zoom "})
        EXPECT_TRUE(shown.contains(QString::fromUtf8(command))) << command;
    for (QWidget* c : std::initializer_list<QWidget*>{w.pbFirst, w.pbPrevious, w.txPage, w.pbNext, w.pbLast, w.cbZoom,
                                                      w.pbPrint, w.pbPdf, w.pbXlsx, w.pbCsv, w.pbClose}) {
        EXPECT_TRUE(c->isVisible()) << c->accessibleName().toStdString() << c->property("text").toString().toStdString();
        const QRect at(c->mapTo(&w, QPoint(0, 0)), c->size());
        EXPECT_TRUE(w.rect().contains(at)) << c->property("text").toString().toStdString();
    }
}

TEST_F(ReportPreviewTest, AtItsDefaultSizeEveryCommandIsInView)
{
    auto w = atDefaultSize(open(file, "Liste"), ui);
    expectEveryCommandInView(*w);
    screenshot(*w, QStringLiteral("preview-standardgroesse"));
    EXPECT_EQ(w->cbZoom->currentText(), QStringLiteral("Seitenbreite"));
}

/// The difference list of the demo order (landscape) in a preview of its default size.
std::unique_ptr<ReportPreview> differenceListAtDefaultSize(UserInteraction& ui)
{
    DemoOrder& order = DemoOrder::shared();
    const RenderedReport* made = order.runReportMenu(reportmenu::Differenz);
    EXPECT_NE(made, nullptr);
    if (!made)
        return nullptr;
    auto w = atDefaultSize(Report::open(made->reportFile, order.reportDb, made->title), ui);
    return w;
}

TEST(ReportPreviewLandscape, AtPageWidthTheTextIsReadable)
{
    ScriptedUserInteraction ui;
    auto w = differenceListAtDefaultSize(ui);
    ASSERT_NE(w, nullptr);
    ASSERT_TRUE(w->report().layout().pageWidth() > w->report().layout().pageHeight());
    expectEveryCommandInView(*w);
    EXPECT_EQ(w->cbZoom->currentText(), QStringLiteral("Seitenbreite"));
    screenshot(*w, QStringLiteral("preview-querformat-seitenbreite"));
    // The body's type at least 9.5 pixels from line to line (three quarters of its printed
    // size), even where the screen is too narrow for the whole width of the page.
    const auto bodyPx = [&] {
        return w->report().layout().typography().lineHeight(FontRole::Body) / 72.0 * w->pageView->logicalDpiY() *
               w->state().zoom();
    };
    EXPECT_GE(bodyPx(), 9.5) << "zoom " << w->state().zoom();
    // A window wide enough shows the whole width of the page.
    w->resize(1300, 800);
    QApplication::processEvents();
    EXPECT_EQ(w->cbZoom->currentText(), QStringLiteral("Seitenbreite"));
    EXPECT_LE(w->pageView->pageSize().width(), w->scroll->viewport()->width());
    EXPECT_GE(bodyPx(), 9.5);
}

TEST_F(ReportPreviewTest, APortraitWindowsSizeIsNotALandscapeOnes)
{
    // A narrow portrait preview, closed: its size is kept for portrait reports only.
    auto portrait = atDefaultSize(open(file, "Hoch"), ui);
    portrait->resize(portrait->minimumWidth(), 500);
    portrait->close();
    std::string landscape = readFile(file);
    landscape.insert(landscape.find("[Gruppe]"), "Seite = Querformat\n");
    const std::string quer = definition("quer.rpt", landscape);
    ReportPreview w(open(quer, "Quer"), ui);
    EXPECT_GT(w.width(), portrait->minimumWidth());
    ReportPreview again(open(file, "Hoch"), ui);
    EXPECT_EQ(again.width(), portrait->minimumWidth());
}

/// A device of a screen's resolution that keeps the texts painted on it.
class TextRecorder : public QPaintDevice {
public:
    explicit TextRecorder(int dpi) : dpi_(dpi) {}
    QPaintEngine* paintEngine() const override { return &engine_; }
    const QStringList& texts() const { return engine_.texts; }

protected:
    int metric(PaintDeviceMetric m) const override
    {
        switch (m) {
        case PdmWidth:
        case PdmHeight:
            return 4000;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return dpi_;
        case PdmDepth:
            return 32;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(QPaintDevice::devicePixelRatioFScale());
        default:
            return QPaintDevice::metric(m);
        }
    }

private:
    class Engine : public QPaintEngine {
    public:
        Engine() : QPaintEngine(QPaintEngine::AllFeatures) {}
        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState&) override {}
        void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
        void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
        void drawPath(const QPainterPath&) override {}
        void drawTextItem(const QPointF&, const QTextItem& item) override { texts << item.text(); }
        Type type() const override { return QPaintEngine::User; }
        QStringList texts;
    };
    mutable Engine engine_;
    int dpi_;
};

TEST(ReportPreviewLandscape, ColumnHeadingsAreWholeAtEveryZoom)
{
    ScriptedUserInteraction ui;
    auto w = differenceListAtDefaultSize(ui);
    ASSERT_NE(w, nullptr);
    const ReportLayout& l = w->report().layout();
    const int dpi = w->pageView->logicalDpiY();
    for (double zoom : ReportPreviewState::zoomSteps()) {
        // The first page as the preview paints it at this zoom.
        TextRecorder screen(dpi);
        {
            QPainter p(&screen);
            PagePainter(l, dpi, dpi / 72.0 * zoom, true).paint(p, 0);
        }
        for (std::size_t c = 0; c < l.columns().size(); ++c)
            for (const QString& line : columnHeadingLines(l, l.typography(), c)) {
                EXPECT_TRUE(screen.texts().contains(line)) << "zoom " << zoom << ": " << line.toStdString();
            }
    }
    w->setZoom(0.75);
    QApplication::processEvents();
    screenshot(*w, QStringLiteral("preview-querformat-75"));
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
