#pragma once
// The preview window of a report: one page at a time on a grey desk, page
// navigation, zoom, printing through the system's print dialog, and saving the
// report as PDF, Excel or CSV file.

#include "Report.h"
#include "ReportPreviewState.h"

#include <QMainWindow>

#include <memory>

class QComboBox;
class QLabel;
class QPrinter;
class QPushButton;
class QScrollArea;
class QSpinBox;
class QToolBar;
class QToolButton;

namespace qi {

class ReportPageView;
class UserInteraction;

class ReportPreview : public QMainWindow {
    Q_OBJECT
public:
    /// The progress window's line while a workbook or CSV file is written.
    static constexpr const char* kWritingRows = "Die Zeilen des Berichts werden geschrieben …";
    /// Key under which the window keeps its size and place.
    static constexpr const char* kStateKey = "frmReport";

    /// The window of `report` (laid out here), titled with its window title; `ui` asks for
    /// file names and shows errors. It deletes itself when closed.
    ReportPreview(std::unique_ptr<Report> report, UserInteraction& ui, QWidget* parent = nullptr);
    ~ReportPreview() override;

    const Report& report() const { return *report_; }
    const ReportPreviewState& state() const { return state_; }

    /// Shows page `page` (0-based, kept within the pages).
    void showPage(int page);
    /// Zoom: a factor (1.0 = printed size), or fitted to the window's width or whole page.
    void setZoom(double zoom);
    void fitWidth();
    void fitPage();
    /// The next larger (direction > 0) or smaller (< 0) zoom step.
    void stepZoom(int direction);

    /// Opens the system's print dialog and prints what it asks for.
    void printWithDialog();
    /// Prints on a printer chosen before (the print dialog's); errors are shown.
    bool print(QPrinter& printer);
    /// Asks for a file and saves the report in `format`; the status bar names the file.
    void saveAs(ReportFormat format);

    QToolButton* pbFirst;
    QToolButton* pbPrevious;
    QSpinBox* txPage;
    QLabel* lbPages;
    QToolButton* pbNext;
    QToolButton* pbLast;
    QComboBox* cbZoom;
    QPushButton* pbPrint;
    QPushButton* pbPdf;
    QPushButton* pbXlsx;
    QPushButton* pbCsv;
    QPushButton* pbClose;
    QScrollArea* scroll;
    ReportPageView* pageView;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Fit { None, Width, Page };
    void buildControls();
    /// The key under which this report's orientation keeps its window's size.
    QString stateKey() const;
    /// The bars in one row when the window is wide enough for both, else in two.
    void arrangeBars();
    void refresh();
    void applyFit();
    void zoomChosen(int index);

    QToolBar* navigationBar_ = nullptr;
    QToolBar* commandBar_ = nullptr;
    std::unique_ptr<Report> report_;
    UserInteraction& ui_;
    ReportPreviewState state_;
    Fit fit_ = Fit::Width;
    bool writing_ = false; ///< a file is being written from the report
};

} // namespace qi
