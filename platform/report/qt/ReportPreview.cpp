#include "ReportPreview.h"

#include "FileSystem.h"
#include "ReportExport.h"
#include "ReportPageView.h"
#include "ReportPrinting.h"
#include "UserInteraction.h"
#include "WindowState.h"

#include <QApplication>
#include <QCloseEvent>
#include <QResizeEvent>
#include <QComboBox>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLocale>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QSpinBox>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>
#include <QWheelEvent>

#include <cmath>
#include <exception>
#include <thread>

namespace qi {

namespace {

constexpr int kFitWidthItem = -1;
constexpr int kFitPageItem = -2;

QString percent(double zoom) { return QString::number(int(std::lround(zoom * 100))) + QStringLiteral(" %"); }

QToolButton* navigationButton(QStyle::StandardPixmap icon, const QString& name, QWidget* parent)
{
    auto* b = new QToolButton(parent);
    b->setIcon(parent->style()->standardIcon(icon));
    b->setToolTip(name);
    b->setAccessibleName(name);
    b->setAutoRaise(true);
    return b;
}

} // namespace

ReportPreview::ReportPreview(std::unique_ptr<Report> report, UserInteraction& ui, QWidget* parent)
    : QMainWindow(parent), report_(std::move(report)), ui_(ui), state_(report_->pageCount())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::Window);
    setWindowTitle(QString::fromStdString(report_->windowTitle()));
    buildControls();
    if (!restoreWindowState(*this, stateKey())) {
        // Wide enough for the page at its printed size and for the bars in one row, as far as the screen allows.
        const QRect screen = this->screen() ? this->screen()->availableGeometry() : QRect(0, 0, 1280, 960);
        const double pageWidthPx = report_->layout().pageWidth() / 72.0 * logicalDpiX();
        const int bars = navigationBar_->sizeHint().width() + commandBar_->sizeHint().width() + 16;
        resize(std::max(minimumWidth(), std::min(screen.width() * 9 / 10, std::max(int(pageWidthPx) + 60, bars))),
               screen.height() * 9 / 10);
    }
    refresh();
    scroll->setFocus();
}

ReportPreview::~ReportPreview() = default;

void ReportPreview::buildControls()
{
    // Two bars: the page's navigation and zoom, and the commands. They share a row when the
    // window is wide enough and take a row each when it is not, so that none of their
    // controls ever hides behind an overflow button.
    auto makeBar = [this](const QString& name) {
        auto* b = new QToolBar(name, this);
        b->setMovable(false);
        b->setFloatable(false);
        addToolBar(Qt::TopToolBarArea, b);
        return b;
    };
    auto* bar = makeBar(QStringLiteral("Seite"));
    navigationBar_ = bar;

    pbFirst = navigationButton(QStyle::SP_MediaSkipBackward, QStringLiteral("Erste Seite"), this);
    pbPrevious = navigationButton(QStyle::SP_MediaSeekBackward, QStringLiteral("Vorige Seite"), this);
    pbNext = navigationButton(QStyle::SP_MediaSeekForward, QStringLiteral("Nächste Seite"), this);
    pbLast = navigationButton(QStyle::SP_MediaSkipForward, QStringLiteral("Letzte Seite"), this);
    txPage = new QSpinBox(this);
    txPage->setRange(1, state_.pageCount());
    txPage->setAccessibleName(QStringLiteral("Seite"));
    txPage->setKeyboardTracking(false);
    lbPages = new QLabel(this);

    cbZoom = new QComboBox(this);
    cbZoom->setAccessibleName(QStringLiteral("Zoom"));
    for (double z : ReportPreviewState::zoomSteps())
        cbZoom->addItem(percent(z), z);
    cbZoom->addItem(QStringLiteral("Seitenbreite"), kFitWidthItem);
    cbZoom->addItem(QStringLiteral("Ganze Seite"), kFitPageItem);

    pbPrint = new QPushButton(QStringLiteral("&Drucken…"), this);
    pbPdf = new QPushButton(QStringLiteral("Als PDF speichern"), this);
    pbXlsx = new QPushButton(QStringLiteral("Als Excel-Datei speichern"), this);
    pbCsv = new QPushButton(QStringLiteral("Als CSV speichern"), this);
    pbClose = new QPushButton(QStringLiteral("&Schließen"), this);

    bar->addWidget(pbFirst);
    bar->addWidget(pbPrevious);
    bar->addWidget(new QLabel(QStringLiteral(" Seite "), this));
    bar->addWidget(txPage);
    bar->addWidget(lbPages);
    bar->addWidget(pbNext);
    bar->addWidget(pbLast);
    bar->addSeparator();
    bar->addWidget(new QLabel(QStringLiteral(" Zoom "), this));
    bar->addWidget(cbZoom);
    bar = makeBar(QStringLiteral("Befehle"));
    commandBar_ = bar;
    bar->addWidget(pbPrint);
    bar->addWidget(pbPdf);
    bar->addWidget(pbXlsx);
    bar->addWidget(pbCsv);
    auto* spacer = new QWidget(this);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(spacer);
    bar->addWidget(pbClose);

    scroll = new QScrollArea(this);
    scroll->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    scroll->setBackgroundRole(QPalette::Dark);
    scroll->setFrameShape(QFrame::NoFrame);
    pageView = new ReportPageView(*report_);
    scroll->setWidget(pageView);
    scroll->viewport()->installEventFilter(this);
    setCentralWidget(scroll);

    const ReportModel& m = report_->model();
    statusBar()->showMessage(QLocale().toString(qlonglong(m.rowCount())) +
                             (m.rowCount() == 1 ? QStringLiteral(" Zeile  ·  ") : QStringLiteral(" Zeilen  ·  ")) +
                             QString::fromStdString(fileNamePart(report_->file())));

    setMinimumWidth(std::max(navigationBar_->sizeHint().width(), commandBar_->sizeHint().width()) + 8);
    arrangeBars();

    connect(pbFirst, &QToolButton::clicked, this, [this] { showPage(0); });
    connect(pbPrevious, &QToolButton::clicked, this, [this] { showPage(state_.page() - 1); });
    connect(pbNext, &QToolButton::clicked, this, [this] { showPage(state_.page() + 1); });
    connect(pbLast, &QToolButton::clicked, this, [this] { showPage(state_.pageCount() - 1); });
    connect(txPage, &QSpinBox::valueChanged, this, [this](int value) { showPage(value - 1); });
    connect(cbZoom, &QComboBox::activated, this, &ReportPreview::zoomChosen);
    connect(pbPrint, &QPushButton::clicked, this, &ReportPreview::printWithDialog);
    connect(pbPdf, &QPushButton::clicked, this, [this] { saveAs(ReportFormat::Pdf); });
    connect(pbXlsx, &QPushButton::clicked, this, [this] { saveAs(ReportFormat::Xlsx); });
    connect(pbCsv, &QPushButton::clicked, this, [this] { saveAs(ReportFormat::Csv); });
    connect(pbClose, &QPushButton::clicked, this, &QWidget::close);

    auto shortcut = [this](const QKeySequence& keys, auto&& action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    shortcut(QKeySequence(Qt::Key_PageDown), [this] { showPage(state_.page() + 1); });
    shortcut(QKeySequence(Qt::Key_PageUp), [this] { showPage(state_.page() - 1); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Home), [this] { showPage(0); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_End), [this] { showPage(state_.pageCount() - 1); });
    shortcut(QKeySequence::ZoomIn, [this] { stepZoom(1); });
    shortcut(QKeySequence::ZoomOut, [this] { stepZoom(-1); });
    shortcut(QKeySequence::Print, [this] { printWithDialog(); });
    shortcut(QKeySequence(Qt::Key_Escape), [this] { close(); });
}

void ReportPreview::showPage(int page)
{
    if (state_.goTo(page)) {
        scroll->verticalScrollBar()->setValue(0);
        refresh();
    }
}

void ReportPreview::setZoom(double zoom)
{
    fit_ = Fit::None;
    state_.setZoom(zoom);
    refresh();
}

void ReportPreview::stepZoom(int direction)
{
    if (direction > 0)
        state_.zoomIn();
    else if (direction < 0)
        state_.zoomOut();
    setZoom(state_.zoom());
}

void ReportPreview::fitWidth()
{
    fit_ = Fit::Width;
    refresh();
}

void ReportPreview::fitPage()
{
    fit_ = Fit::Page;
    refresh();
}

void ReportPreview::applyFit()
{
    const QSize view = scroll->viewport()->size();
    const ReportLayout& l = report_->layout();
    const double dpi = pageView->logicalDpiY();
    const int margin = ReportPageView::kMargin;
    // The vertical scroll bar takes its room when the page is taller than the view.
    const int bar = scroll->verticalScrollBar()->sizeHint().width();
    switch (fit_) {
    case Fit::Width:
        // Never smaller than the type can be read at: a page wider than the view scrolls then.
        state_.setZoom(std::max(ReportPreviewState::kReadableZoom,
                                ReportPreviewState::fitZoom(view.width() - bar, l.pageWidth(), dpi, margin)));
        break;
    case Fit::Page:
        state_.setZoom(std::min(ReportPreviewState::fitZoom(view.width(), l.pageWidth(), dpi, margin),
                                ReportPreviewState::fitZoom(view.height(), l.pageHeight(), dpi, margin)));
        break;
    case Fit::None:
        break;
    }
}

void ReportPreview::refresh()
{
    applyFit();
    pageView->showPage(state_.page(), state_.zoom());
    {
        const QSignalBlocker block(txPage);
        txPage->setValue(state_.page() + 1);
    }
    lbPages->setText(QStringLiteral(" von ") + QString::number(state_.pageCount()) + QStringLiteral(" "));
    pbFirst->setEnabled(!state_.atFirst());
    pbPrevious->setEnabled(!state_.atFirst());
    pbNext->setEnabled(!state_.atLast());
    pbLast->setEnabled(!state_.atLast());
    const QSignalBlocker block(cbZoom);
    switch (fit_) {
    case Fit::Width:
        cbZoom->setCurrentIndex(cbZoom->findData(kFitWidthItem));
        break;
    case Fit::Page:
        cbZoom->setCurrentIndex(cbZoom->findData(kFitPageItem));
        break;
    case Fit::None: {
        const int exact = cbZoom->findText(percent(state_.zoom()));
        if (exact >= 0) {
            cbZoom->setCurrentIndex(exact);
        } else {
            cbZoom->setCurrentIndex(-1);
            cbZoom->setPlaceholderText(percent(state_.zoom()));
        }
        break;
    }
    }
}

void ReportPreview::zoomChosen(int index)
{
    const double value = cbZoom->itemData(index).toDouble();
    if (value == kFitWidthItem)
        fitWidth();
    else if (value == kFitPageItem)
        fitPage();
    else
        setZoom(value);
}

void ReportPreview::printWithDialog()
{
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(*report_, printer);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(QStringLiteral("Drucken"));
    dialog.setMinMax(1, report_->pageCount());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (print(printer))
        statusBar()->showMessage(QStringLiteral("Gedruckt."), 5000);
}

bool ReportPreview::print(QPrinter& printer)
{
    writing_ = true;
    commandBar_->setEnabled(false);
    return printWithProgress(*report_, printer, ui_, "frmReport.Print", [this] {
        writing_ = false;
        commandBar_->setEnabled(true);
    });
}

void ReportPreview::saveAs(ReportFormat format)
{
    // A file of many pages shows how far it is in a progress window ("Seite 12 von 4288"), and
    // the program's windows keep answering while it is written; the preview stays open and its
    // commands rest until the file is done.
    const std::string title = saveRequestFor(*report_, format).title;
    bool progressShown = false;
    report_->setPageProgress([&](int page, int pages) {
        if (!progressShown) {
            ui_.beginProgress(title);
            progressShown = true;
        }
        ui_.reportStep("Seite", page, pages);
    });
    // A workbook or CSV file has no pages to count: its rows are written on a thread of their own
    // while the windows wait in their event loop (the report is only read meanwhile).
    const auto aside = [&](const Report& report, ReportFormat f, const std::string& to) {
        ui_.beginProgress(title);
        progressShown = true;
        ui_.reportStep(kWritingRows, 0, 0);
        std::exception_ptr error;
        QEventLoop loop;
        std::thread worker([&] {
            try {
                report.write(f, to);
            } catch (...) {
                error = std::current_exception();
            }
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        });
        loop.exec();
        worker.join();
        if (error)
            std::rethrow_exception(error);
    };
    writing_ = true;
    commandBar_->setEnabled(false);
    const auto path = format == ReportFormat::Pdf ? saveReportAs(*report_, format, ui_)
                                                  : saveReportAs(*report_, format, ui_, aside);
    commandBar_->setEnabled(true);
    writing_ = false;
    report_->setPageProgress({});
    if (progressShown)
        ui_.endProgress();
    if (path)
        statusBar()->showMessage(QStringLiteral("Gespeichert: ") + QString::fromStdString(displayPath(*path)));
}

QString ReportPreview::stateKey() const
{
    // Portrait and landscape reports keep a size each: a landscape page in a window sized for
    // a portrait one would be fitted to a width too small to read.
    return QString::fromLatin1(kStateKey) +
           (report_->layout().pageWidth() > report_->layout().pageHeight() ? QStringLiteral("Quer") : QString());
}

void ReportPreview::arrangeBars()
{
    const bool oneRow =
        width() >= navigationBar_->sizeHint().width() + commandBar_->sizeHint().width() + 8;
    if (oneRow == !toolBarBreak(commandBar_))
        return;
    if (oneRow)
        removeToolBarBreak(commandBar_);
    else
        insertToolBarBreak(commandBar_);
}

void ReportPreview::resizeEvent(QResizeEvent* event)
{
    arrangeBars();
    QMainWindow::resizeEvent(event);
}

void ReportPreview::closeEvent(QCloseEvent* event)
{
    // The report is being written: the window goes when the file is done.
    if (writing_) {
        event->ignore();
        return;
    }
    saveWindowState(*this, stateKey());
    QMainWindow::closeEvent(event);
}

bool ReportPreview::eventFilter(QObject* watched, QEvent* event)
{
    // A fitted page follows the view's own size: the window's size is known before its
    // view has been laid out (the first showing), the view's is not.
    if (watched == scroll->viewport() && event->type() == QEvent::Resize && fit_ != Fit::None)
        refresh();
    // Ctrl and the wheel zoom; the wheel alone scrolls.
    if (watched == scroll->viewport() && event->type() == QEvent::Wheel) {
        auto* wheel = static_cast<QWheelEvent*>(event);
        if (wheel->modifiers() & Qt::ControlModifier) {
            stepZoom(wheel->angleDelta().y() > 0 ? 1 : wheel->angleDelta().y() < 0 ? -1 : 0);
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace qi
