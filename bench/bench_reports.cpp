// The difference list of the large order (LargeOrder.h, about 115,000 rows) as the
// report "invdiff.rpt" shows it: read from the report database, laid out on pages,
// written as PDF, Excel sheet and CSV, and its first page on screen in the preview
// window; then the same with the list cut to 50,000 and 10,000 rows, to show how the
// time grows. Every measurement runs in a fresh process of its own (this program
// started again with "--measure"), so that its peak memory is its own.

#include "LargeOrder.h"
#include "LinkedDatabase.h"
#include "Report.h"
#include "ReportPageView.h"
#include "ReportPreview.h"
#include "ScriptedUserInteraction.h"
#include "frmWork.h"

#include <QApplication>
#include <QPixmap>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qi::bench::Clock;
using qi::bench::seconds;

namespace {

const char* const kReportFile = "Report\\invdiff.rpt";

/// One measurement: what was made, in seconds, and the peak memory of its process.
struct Figures {
    double open = 0;   ///< definition read, rows read from the report database
    double layout = 0; ///< pages laid out
    double output = 0; ///< the file written or the page shown
    double total = 0;
    long pages = 0;
    long rows = 0;
    double peakMb = 0;
    bool ok = false;
};

enum class Task { Pdf, Xlsx, Csv, Preview };

const char* taskName(Task t)
{
    switch (t) {
    case Task::Pdf:
        return "PDF";
    case Task::Xlsx:
        return "XLSX";
    case Task::Csv:
        return "CSV";
    case Task::Preview:
        return "preview, first page";
    }
    return "";
}

/// Runs one task in this process and writes its figures to `out`.
void runTask(Task task, const std::string& reportFile, const std::string& dataFile, const fs::path& folder,
             const fs::path& out)
{
    Figures f;
    static int argc = 3;
    static char name[] = "bench_reports", option[] = "-platform", platform[] = "offscreen";
    static char* argv[] = {name, option, platform, nullptr};
    QApplication app(argc, argv);
    const auto t0 = Clock::now();
    try {
        auto report = qi::Report::open(reportFile, dataFile, "Differenzliste");
        const auto t1 = Clock::now();
        f.rows = long(report->model().rowCount());
        if (task == Task::Preview) {
            qi::ScriptedUserInteraction ui;
            qi::ReportPreview window(std::move(report), ui);
            const auto t2 = Clock::now();
            window.show();
            const QPixmap page = window.pageView->grab();
            const auto t3 = Clock::now();
            f.pages = window.state().pageCount();
            f.layout = seconds(t1, t2);
            f.output = seconds(t2, t3);
            f.ok = !page.isNull();
        } else {
            f.pages = report->pageCount();
            const auto t2 = Clock::now();
            const qi::ReportFormat format = task == Task::Pdf    ? qi::ReportFormat::Pdf
                                            : task == Task::Xlsx ? qi::ReportFormat::Xlsx
                                                                 : qi::ReportFormat::Csv;
            const fs::path file = folder / (std::string("Differenzliste.") + qi::reportFormatExtension(format));
            report->write(format, file.string());
            const auto t3 = Clock::now();
            f.layout = task == Task::Pdf ? seconds(t1, t2) : 0;
            f.output = seconds(t2, t3);
            f.ok = fs::file_size(file) > 0;
        }
        f.open = seconds(t0, t1);
    } catch (const std::exception& e) {
        std::printf("%s: %s\n", taskName(task), e.what());
    }
    f.total = seconds(t0, Clock::now());
    f.peakMb = double(qi::bench::peakKilobytes()) / 1024.0;
    std::ofstream o(out);
    o << f.open << " " << f.layout << " " << f.output << " " << f.total << " " << f.pages << " " << f.rows << " "
      << f.peakMb << " " << f.ok << "\n";
}

/// Runs a task in a fresh process of this program and reads its figures.
Figures measure(Task task, const qi::Settings& settings, const fs::path& folder)
{
    const fs::path out = folder / "figures.txt";
    fs::remove(out);
    std::fflush(stdout);
    const std::string taskArg = std::to_string(int(task));
    const std::string reportFile = settings.gstProjektPfad + kReportFile;
    const std::string dataFile = settings.gstAppPfad + "\\QInventurRpt.mdb";
    const std::string folderArg = folder.string(), outArg = out.string();
    const pid_t child = fork();
    if (child == 0) {
        const char* args[] = {"bench_reports", "--measure", taskArg.c_str(), reportFile.c_str(), dataFile.c_str(),
                              folderArg.c_str(), outArg.c_str(), nullptr};
        execv("/proc/self/exe", const_cast<char* const*>(args));
        std::_Exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    Figures f;
    std::ifstream in(out);
    in >> f.open >> f.layout >> f.output >> f.total >> f.pages >> f.rows >> f.peakMb >> f.ok;
    return f;
}

/// Keys of the difference list's rows that the report shows, in key order.
std::vector<std::int64_t> shownRows(const std::string& reportDb)
{
    auto db = qi::LinkedDatabase::open(reportDb)->openForStatements();
    qi::Statement& st = db->prepare("SELECT * FROM Q_DiffListe");
    std::vector<std::int64_t> keys;
    while (st.step())
        keys.push_back(st.columnInt(0));
    std::sort(keys.begin(), keys.end());
    return keys;
}

/// Cuts the difference list to its first `rows` rows that the report shows.
void cutTo(const std::string& orderPath, const std::vector<std::int64_t>& keys, std::size_t rows)
{
    qi::Database::open(orderPath)->execute("DELETE FROM T_Differenzliste WHERE lID > ?1",
                                           {qi::Value(keys[rows - 1])});
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 7 && std::string(argv[1]) == "--measure") {
        runTask(Task(std::atoi(argv[2])), argv[3], argv[4], argv[5], argv[6]);
        return 0;
    }
    const fs::path folder = fs::temp_directory_path() / ("qi-bench-reports-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    const fs::path project = folder / "Projekt";
    const fs::path program = folder / "Programm";
    fs::create_directories(project / "Inventur");
    fs::create_directories(project / "Report");
    fs::create_directories(program);
    fs::copy_file(fs::path(QI_REPORT_SOURCE) / "invdiff.rpt", project / "Report" / "invdiff.rpt");

    const qi::bench::Installation installation = qi::bench::makeInstallation(folder, project);
    if (installation.rooms.empty()) {
        std::printf("the installation could not be made\n");
        return 1;
    }
    qi::ScriptedUserInteraction ui;
    qi::Settings settings;
    std::string orderPath;
    {
        qi::bench::LargeOrder large(project, program, installation, ui);
        settings = large.settings;
        orderPath = large.orderPath;
        qi::frmWork work(*large.order, settings, ui);
        const auto t0 = Clock::now();
        for (const std::string& f : installation.files) {
            ui.fileChoices.push_back(f);
            work.pbAdd_Click();
        }
        const bool evaluated = work.ReportDifferenzListe();
        std::printf("order made: %zu lines imported and evaluated in %.1f s%s\n", installation.lines,
                    seconds(t0, Clock::now()), evaluated ? "" : " (evaluation FAILED)");
        large.order->CloseDb();
    }

    const std::string reportDb = (program / "QInventurRpt.mdb").string();
    const std::vector<std::int64_t> keys = shownRows(reportDb);
    std::vector<std::size_t> sizes{keys.size()};
    for (std::size_t n : {std::size_t(50000), std::size_t(10000)})
        if (n / std::size_t(qi::bench::scale()) < keys.size())
            sizes.push_back(n / std::size_t(qi::bench::scale()));

    const Task tasks[] = {Task::Pdf, Task::Xlsx, Task::Csv, Task::Preview};
    std::map<std::size_t, std::map<Task, Figures>> results;
    for (std::size_t n : sizes) {
        if (n < keys.size())
            cutTo(orderPath, keys, n);
        for (Task t : tasks)
            results[n][t] = measure(t, settings, folder);
    }

    std::printf("\nreport invdiff.rpt (the difference list, landscape, grouped by room and category)\n");
    std::printf("%8s %6s  %-20s %8s %8s %8s %8s %9s\n", "rows", "pages", "output", "read s", "layout s", "write s",
                "total s", "peak MB");
    bool ok = true;
    for (auto it = results.rbegin(); it != results.rend(); ++it)
        for (Task t : tasks) {
            const Figures& f = it->second[t];
            ok = ok && f.ok;
            std::printf("%8ld %6ld  %-20s %8.2f %8.2f %8.2f %8.2f %9.1f%s\n", f.rows, f.pages, taskName(t), f.open,
                        f.layout, f.output, f.total, f.peakMb, f.ok ? "" : "  FAILED");
        }

    std::printf("\ngrowth: seconds per 1,000 rows, and the factor per doubling of rows between sizes\n");
    for (Task t : tasks) {
        std::printf("  %-20s", taskName(t));
        const Figures* previous = nullptr;
        for (auto it = results.begin(); it != results.end(); ++it) {
            const Figures& f = it->second[t];
            std::printf("  %6.3f s @ %ld", f.total / double(std::max(1L, f.rows)) * 1000.0, f.rows);
            if (previous && previous->rows > 0 && f.rows > previous->rows && previous->total > 0) {
                const double perRow = (f.total / double(f.rows)) / (previous->total / double(previous->rows));
                const double doublings = std::log2(double(f.rows) / double(previous->rows));
                std::printf(" (x%.2f per doubling)", std::pow(perRow, 1.0 / doublings));
            }
            previous = &f;
        }
        std::printf("\n");
    }
    const Figures& full = results[sizes.front()][Task::Pdf];
    const Figures& preview = results[sizes.front()][Task::Preview];
    double peak = 0;
    for (Task t : tasks)
        peak = std::max(peak, results[sizes.front()][t].peakMb);
    std::printf("\ntargets: PDF of %ld rows %.1f s (under 15 s), first preview page %.2f s (under 2 s), "
                "peak memory %.0f MB (under 300 MB)\n",
                full.rows, full.total, preview.total, peak);

    fs::remove_all(folder);
    return ok ? 0 : 1;
}
