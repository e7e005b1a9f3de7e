#include "ReportViewer.h"

#include "QtUserInteraction.h"
#include "ReportPreview.h"

#include <QEventLoop>

#include <exception>
#include <thread>

namespace qi {

namespace {

/// The busy pointer for as long as the report is read and laid out, on every path.
class BusyWhile {
public:
    explicit BusyWhile(UserInteraction& ui) : ui_(ui) { ui_.setBusy(true); }
    ~BusyWhile() { ui_.setBusy(false); }
    BusyWhile(const BusyWhile&) = delete;
    BusyWhile& operator=(const BusyWhile&) = delete;

private:
    UserInteraction& ui_;
};

/// The report read and set into pages on a thread of its own (its rows come through a
/// connection of its own), while the windows go on painting; they take no input meanwhile.
std::unique_ptr<Report> openAside(const std::string& reportFile, const std::string& dataFile,
                                  const std::string& title)
{
    std::unique_ptr<Report> report;
    std::exception_ptr error;
    QEventLoop loop;
    std::thread reader([&] {
        try {
            report = Report::open(reportFile, dataFile, title);
            report->pageCount();
        } catch (...) {
            error = std::current_exception();
        }
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    reader.join();
    if (error)
        std::rethrow_exception(error);
    return report;
}

} // namespace

ReportPreview* showReportPreview(QWidget* parent, UserInteraction& ui, const std::string& reportFile,
                                 const std::string& dataFile, const std::string& title)
{
    ReportPreview* window = nullptr;
    {
        const BusyWhile busy(ui);
        window = new ReportPreview(openAside(reportFile, dataFile, title), ui, parent);
    }
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

void installReportPreview(QtUserInteraction& ui)
{
    ui.setReportViewer([&ui](QWidget* parent, const std::string& reportFile, const std::string& dataFile,
                             const std::string& title) { showReportPreview(parent, ui, reportFile, dataFile, title); });
}

} // namespace qi
