#include "ReportViewer.h"

#include "QtUserInteraction.h"
#include "ReportPreview.h"

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

} // namespace

ReportPreview* showReportPreview(QWidget* parent, UserInteraction& ui, const std::string& reportFile,
                                 const std::string& dataFile, const std::string& title)
{
    ReportPreview* window = nullptr;
    {
        const BusyWhile busy(ui);
        window = new ReportPreview(Report::open(reportFile, dataFile, title), ui, parent);
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
