// How long the work window leaves its event loop unturned: the window of the large order
// (LargeOrder.h), offscreen, driven through its own buttons and menus: the import of the
// scanner files, the entry "&Differenz" (evaluation and the preview of the difference
// list), saving the preview as PDF and as Excel workbook, and the room selection of the
// order's rooms. A zero timer notes each turn of the event loop; for each step the
// benchmark prints its time and the longest gap between two turns. Only the dialogs that
// wait for a person (file dialogs, message boxes, the conflict dialog) are answered by
// script; progress windows, the busy pointer and the preview are the program's own.

#include "LargeOrder.h"
#include "ProgramWindows.h"
#include "QtUserInteraction.h"
#include "ReportMenus.h"
#include "ReportPreview.h"
#include "ReportViewer.h"
#include "frmRaumWindow.h"
#include "frmWorkWindow.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QPushButton>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qi::bench::Clock;
using qi::bench::seconds;

namespace {

/// What the program last reported doing (a progress step, a file read, a message), for
/// telling where the longest gap of a step lay.
std::string phase = "-";

/// The program's own user interaction; only what waits for a person is answered here.
class ScriptedQtUser : public qi::QtUserInteraction {
public:
    void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override
    {
        phase = step;
        qi::QtUserInteraction::reportStep(step, done, total);
    }
    void reportProgress(const std::string& fileName, std::int64_t linesRead) override
    {
        phase = fileName + " (" + std::to_string(linesRead) + " Zeilen)";
        qi::QtUserInteraction::reportProgress(fileName, linesRead);
    }
    void keepPainting() override
    {
        ++kept;
        qi::QtUserInteraction::keepPainting();
    }
    int kept = 0;
    void endProgress() override
    {
        phase = "Fortschritt beendet";
        qi::QtUserInteraction::endProgress();
    }
    void showReport(const std::string& reportFile, const std::string& dataFile, const std::string& title) override
    {
        phase = "Vorschau";
        qi::QtUserInteraction::showReport(reportFile, dataFile, title);
    }
    qi::MsgResult messageBox(const std::string&, qi::MsgButtons buttons, qi::MsgIcon, const std::string&) override
    {
        ++messages;
        phase = "Meldung";
        return buttons == qi::MsgButtons::YesNo ? qi::MsgResult::Yes : qi::MsgResult::Ok;
    }
    std::optional<std::string> openFile(const qi::FileDialogRequest&) override { return next(fileChoices); }
    std::optional<std::string> saveFile(const qi::FileDialogRequest&) override { return next(saveChoices); }
    std::optional<int> askChoice(const std::string&, const std::string&, qi::MsgIcon,
                                 const std::vector<std::string>&) override
    {
        return std::nullopt;
    }
    bool resolveConflict(const qi::ConflictInfo&) override
    {
        ++conflicts;
        phase = "Konflikt";
        return false;
    }
    std::deque<std::string> fileChoices, saveChoices;
    int messages = 0, conflicts = 0;

private:
    static std::optional<std::string> next(std::deque<std::string>& q)
    {
        if (q.empty())
            return std::nullopt;
        std::string s = q.front();
        q.pop_front();
        return s;
    }
};

/// Notes every turn of the event loop through a zero timer and keeps the longest gap.
class LoopProbe {
public:
    LoopProbe()
    {
        timer_.setInterval(0);
        QObject::connect(&timer_, &QTimer::timeout, [this] { turn(); });
    }
    void start()
    {
        longest_ = 0;
        last_ = Clock::now();
        timer_.start();
    }
    double stop()
    {
        turn();
        timer_.stop();
        return longest_;
    }
    /// What the program reported last before the longest gap, and at its end.
    const std::string& gapFrom() const { return gapFrom_; }
    const std::string& gapTo() const { return gapTo_; }

private:
    void turn()
    {
        const auto now = Clock::now();
        if (seconds(last_, now) > longest_) {
            longest_ = seconds(last_, now);
            gapFrom_ = phaseAtLast_;
            gapTo_ = phase;
        }
        last_ = now;
        phaseAtLast_ = phase;
    }
    QTimer timer_;
    Clock::time_point last_;
    double longest_ = 0;
    std::string phaseAtLast_, gapFrom_, gapTo_;
};

struct StepResult {
    std::string name;
    double time = 0, longestGap = 0;
    std::string gapFrom, gapTo;
};

/// Runs `action` from the event loop (as a click would) and turns the loop until it has
/// returned and the posted work is done.
StepResult runStep(const std::string& name, LoopProbe& probe, const std::function<void()>& action)
{
    QEventLoop loop;
    probe.start();
    const auto t0 = Clock::now();
    QTimer::singleShot(0, [&] {
        action();
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
    });
    loop.exec();
    const auto t1 = Clock::now();
    const double longest = probe.stop();
    return {name, seconds(t0, t1), longest, probe.gapFrom(), probe.gapTo()};
}

/// The shown preview window of the given title, if any.
qi::ReportPreview* shownPreview()
{
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<qi::ReportPreview*>(w); p && p->isVisible())
            return p;
    return nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const fs::path folder = fs::temp_directory_path() / ("qi-bench-ui-latency-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    const fs::path project = folder / "Projekt";
    const fs::path program = folder / "Programm";
    fs::create_directories(project / "Inventur");
    fs::create_directories(program);
    fs::create_directories(project / "Report");
    fs::copy_file(fs::path(QI_REPORT_SOURCE) / "invdiff.rpt", project / "Report" / "invdiff.rpt");
    const qi::bench::Installation installation = qi::bench::makeInstallation(folder, project);
    if (installation.rooms.empty()) {
        std::printf("the installation could not be made\n");
        return 1;
    }

    QApplication app(argc, argv);
    ScriptedQtUser ui;
    qi::installReportPreview(ui);
    qi::bench::LargeOrder large(project, program, installation, ui);
    qi::frmWorkWindow window(*large.order, large.settings, ui, nullptr);
    window.setRoomWindowFactory(qi::roomWindowFactory());
    ui.setParent(&window);
    window.Init();
    window.show();
    QApplication::processEvents();

    LoopProbe probe;
    std::vector<StepResult> results;
    results.push_back(runStep("Import (" + std::to_string(installation.files.size()) + " Dateien)", probe, [&] {
        for (const std::string& f : installation.files) {
            ui.fileChoices.push_back(f);
            window.pbAdd->click();
        }
    }));
    results.push_back(runStep("&Differenz (Auswertung und Vorschau)", probe,
                              [&] { window.mnuReportFkt.at(qi::reportmenu::Differenz)->trigger(); }));
    qi::ReportPreview* preview = shownPreview();
    if (!preview) {
        std::printf("the difference list was not shown\n");
        return 1;
    }
    const std::size_t rows = preview->report().model().rowCount();
    const int pages = preview->report().pageCount();
    ui.saveChoices.push_back((folder / "Differenzliste.pdf").string());
    results.push_back(runStep("Vorschau: Als PDF speichern", probe, [&] { preview->pbPdf->click(); }));
    ui.saveChoices.push_back((folder / "Differenzliste.xlsx").string());
    results.push_back(runStep("Vorschau: Als Excel-Datei speichern", probe, [&] { preview->pbXlsx->click(); }));
    preview->close();
    // The room selection: the window opens on the order's rooms and is closed with "&Fertig".
    QTimer closer;
    closer.setInterval(20);
    QObject::connect(&closer, &QTimer::timeout, [&] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* r = qobject_cast<qi::frmRaumWindow*>(w); r && r->isVisible()) {
                closer.stop();
                r->pbFertig->click();
            }
    });
    closer.start();
    results.push_back(runStep("Raumauswahl (" + std::to_string(qi::bench::orderRooms()) + " Räume)", probe,
                              [&] { window.pbRooms->click(); }));
    closer.stop();

    std::printf("order: %d rooms, %zu lines in %zu files; difference list %zu rows on %d pages\n",
                qi::bench::orderRooms(), installation.lines, installation.files.size(), rows, pages);
    std::printf("%-42s %9s %16s\n", "step", "time", "longest gap");
    bool within = true;
    for (const StepResult& r : results) {
        std::printf("%-42s %7.3f s %11.0f ms%s\n", r.name.c_str(), r.time, r.longestGap * 1000,
                    r.longestGap > 0.2 ? "  over 200 ms" : "");
        std::printf("    longest gap from \"%s\" to \"%s\"\n", r.gapFrom.c_str(), r.gapTo.c_str());
        within = within && r.longestGap <= 0.2;
    }
    std::printf("messages answered: %d, conflicts answered: %d; painted from inside long statements: %d times\n", ui.messages, ui.conflicts, ui.kept);
    std::printf("%s\n", within ? "no gap over 200 ms" : "gaps over 200 ms");
    window.close();
    large.order->CloseDb();
    fs::remove_all(folder);
    return 0;
}
