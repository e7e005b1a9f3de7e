// Label sheets written as PDF: room labels for 2,000 rooms (Code 128 on A4, 3 × 8) and
// object labels for 10,000 inventory numbers (Code 128 on A4, 4 × 10), each in a process of
// its own so that its peak memory is its own. Prints wall and CPU time (user + system, the
// fairer figure on a busy machine), pages, the file's size and peak memory against the
// targets: under 5 s and under 200 MB each.
//
// Usage: bench_labels [FOLDER]   (the PDFs are written there; default: a temporary folder)

#include "LabelSheets.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

constexpr double kTargetSeconds = 5.0;
constexpr double kTargetMb = 200.0;

std::vector<qi::Label> roomLabels(int count)
{
    static const char* const names[] = {"Büro", "Besprechungsraum der Geschäftsführung", "Lager", "Teeküche",
                                        "Serverraum", "Archiv", "Werkstatt"};
    std::vector<qi::Label> labels;
    for (int i = 0; i < count; ++i) {
        const int building = i / 400 + 1, floor = i / 100 % 4, room = i % 100 + 1;
        char nr[32], where[64];
        std::snprintf(nr, sizeof nr, "%d.%02d.%03d", building, floor, room);
        std::snprintf(where, sizeof where, "Gebäude %c, %d. OG", 'A' + building - 1, floor);
        labels.push_back({nr, qi::Symbology::Code128, {nr, names[i % 7], where}});
    }
    return labels;
}

std::vector<qi::Label> objectLabels(int count)
{
    std::vector<qi::Label> labels;
    for (int i = 0; i < count; ++i) {
        char nr[32];
        std::snprintf(nr, sizeof nr, "I%07d", 100000 + i);
        labels.push_back({nr, qi::Symbology::Code128, {nr}});
    }
    return labels;
}

/// Runs in the child: lays the labels out and writes the PDF; prints the pages.
int measure(const std::string& task, const std::string& templateDir, const std::string& pdf)
{
    try {
        const bool rooms = task == "rooms";
        qi::LabelSheets sheets(qi::findLabelLayout(templateDir, rooms ? "A4-3x8" : "A4-4x10"),
                               rooms ? roomLabels(2000) : objectLabels(10000));
        sheets.writePdf(pdf);
        std::printf("%d\n", sheets.pageCount());
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string templateDir = QI_TEMPLATE_DIR;
    std::string folder = argc > 1 ? argv[1] : "";
    if (folder.empty()) {
        char pattern[] = "/tmp/bench_labels.XXXXXX";
        folder = ::mkdtemp(pattern) ? pattern : "/tmp";
    }
    std::printf("%-34s %8s %8s %6s %9s %9s  %s\n", "task", "wall s", "cpu s", "pages", "PDF MB", "peak MB",
                "target");
    bool ok = true;
    for (const std::string task : {"rooms", "objects"}) {
        const std::string pdf = folder + "/" + task + ".pdf";
        int pipeFd[2];
        if (::pipe(pipeFd) != 0)
            return 2;
        const auto start = Clock::now();
        const pid_t child = ::fork();
        if (child == 0) {
            ::dup2(pipeFd[1], 1);
            ::close(pipeFd[0]);
            const int code = measure(task, templateDir, pdf);
            std::fflush(stdout);
            std::_Exit(code);
        }
        ::close(pipeFd[1]);
        std::string told;
        char buffer[256];
        for (ssize_t got; (got = ::read(pipeFd[0], buffer, sizeof buffer)) > 0;)
            told.append(buffer, std::size_t(got));
        ::close(pipeFd[0]);
        // The child's last line: its pages.
        while (!told.empty() && told.back() == '\n')
            told.pop_back();
        const int pages = std::atoi(told.substr(told.find_last_of('\n') + 1).c_str());
        int status = 0;
        rusage usage{};
        ::wait4(child, &status, 0, &usage);
        const double wall = std::chrono::duration<double>(Clock::now() - start).count();
        const double cpu = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        const double peakMb = double(usage.ru_maxrss) / 1024.0;
        struct stat st {};
        const double pdfMb = ::stat(pdf.c_str(), &st) == 0 ? double(st.st_size) / 1e6 : 0.0;
        const bool passed = WIFEXITED(status) && WEXITSTATUS(status) == 0 && pages > 0;
        const bool met = passed && cpu < kTargetSeconds && peakMb < kTargetMb;
        ok = ok && met;
        std::printf("%-34s %8.2f %8.2f %6d %9.2f %9.0f  %s\n",
                    task == "rooms" ? "room labels, 2,000 rooms (3 x 8)" : "object labels, 10,000 (4 x 10)", wall,
                    cpu, pages, pdfMb, peakMb,
                    !passed ? "FAILED" : met ? "met (< 5 s, < 200 MB)" : "MISSED (< 5 s, < 200 MB)");
    }
    std::printf("PDFs in %s\n", folder.c_str());
    return ok ? 0 : 1;
}
