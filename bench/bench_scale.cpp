// How the cost of each step grows with the work: installations of 100,000 (S) and 300,000 (M)
// INVENTAR objects, and 1,000,000 (L) when asked for ("bench_scale S M L" or QI_BENCH_L=1),
// with an order of 800 / 2,500 / 8,000 of their rooms and 10 scanner files over them. Each
// step runs as qinventur-cli would for a user (making the local copy of Quarn's data runs the
// program's own mirror in a child), in a process of its own, so that its peak memory is its
// own: the rooms set from a file, each file added, the evaluation, the difference list as PDF
// and the archive. It prints each step's time, processor time (user and system) and peak
// memory per size, and per step the factors by which its time and its processor time grew
// next to the factor by which the work (the scan lines) grew. Per size the sqlite3-shell
// floor (ShellFloor.h) loads and classifies the same lines; the import and the evaluation
// are set against it, as bench_evaluation does, and its own growth is printed beside theirs.

#include "HostMirror.h"
#include "LargeOrder.h"
#include "ShellFloor.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qi::bench::Clock;
using qi::bench::seconds;

namespace {

struct Size {
    std::string name;
    int objects;
    int roomsPerFloor; ///< of 2 sites x 3 buildings x 4 floors
    int orderRooms;
};

const Size kSizes[] = {{"S", 100000, 40, 800}, {"M", 300000, 125, 2500}, {"L", 1000000, 400, 8000}};

/// Time and peak memory of one step.
struct Measure {
    double seconds = 0;
    double cpu = 0; ///< user and system
    long peakKb = 0;
    bool ok = true;
};

/// Waits for the child and takes its peak resident memory.
Measure waitFor(pid_t child, Clock::time_point start)
{
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    Measure m;
    m.seconds = seconds(start, Clock::now());
    m.peakKb = usage.ru_maxrss;
    m.cpu = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
            double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    m.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return m;
}

/// Runs qinventur-cli with these arguments on the project; its output goes to `log`.
Measure runCli(const fs::path& project, const std::vector<std::string>& args, const fs::path& log)
{
    std::vector<std::string> all = {QI_CLI, "--projekt", project.string()};
    all.insert(all.end(), args.begin(), args.end());
    const auto start = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        const int fd = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        if (fd >= 0) {
            dup2(fd, 1);
            dup2(fd, 2);
        }
        std::vector<char*> argv;
        for (std::string& a : all)
            argv.push_back(a.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        std::_Exit(127);
    }
    Measure m = waitFor(child, start);
    if (!m.ok) {
        std::printf("  qinventur-cli");
        for (const std::string& a : args)
            std::printf(" %s", a.c_str());
        std::printf(" FAILED, see %s\n", log.c_str());
    }
    return m;
}

/// Makes the local copies of Quarn's databases as the program does on first use.
Measure runMirror(const fs::path& project)
{
    const auto start = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        try {
            qi::HostMirror mirror(qi::HostMirror::defaultCacheFolder(), fs::path(QI_CLI).parent_path().string());
            for (const char* file : {"QGebaeude.mdb", "QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb",
                                     "QStammdaten.mdb"})
                if (fs::exists(project / file))
                    mirror.mirrorFor(qi::HostSource::file((project / file).string()));
        } catch (const std::exception& e) {
            std::fprintf(stderr, "mirror: %s\n", e.what());
            std::_Exit(1);
        }
        std::_Exit(0);
    }
    return waitFor(child, start);
}

struct Result {
    std::size_t lines = 0;
    std::size_t objects = 0;
    std::map<std::string, Measure> steps;
    std::vector<Measure> files;
    qi::bench::Floor floor;
};

const char* const kSteps[] = {"mirror",     "raeume --setzen --datei", "hinzufuegen (sum)", "auswerten",
                              "difference list PDF", "archiv"};

Result measure(const Size& size, const fs::path& base)
{
    Result result;
    const fs::path folder = base / size.name;
    const fs::path project = folder / "Projekt";
    fs::create_directories(project / "Inventur");
    // The mirrors of this run stay in its own folder.
    setenv("XDG_CACHE_HOME", (folder / "cache").c_str(), 1);

    // The installation, its scanner files and the order's room file, in a child process.
    const pid_t maker = fork();
    if (maker == 0) {
        qi::demo::Sizes sizes;
        sizes.sites = 2;
        sizes.buildingsPerSite = 3;
        sizes.floorsPerBuilding = 4;
        sizes.roomsPerFloor = size.roomsPerFloor;
        sizes.inventarArticles = 200;
        sizes.inventarObjects = size.objects;
        sizes.technikObjects = 100;
        sizes.brandschutzObjects = 100;
        const qi::demo::Installation inst = qi::demo::buildInstallation(sizes);
        qi::demo::writeHostDatabases(inst, project.string());
        std::size_t lines = 0;
        qi::bench::writeLargeOrderFiles(inst, folder, size.orderRooms, lines);
        qi::bench::writeFloorObjects(inst, folder);
        {
            std::ofstream rooms(folder / "raeume.txt");
            for (int r = 0; r < size.orderRooms && std::size_t(r) < inst.rooms.size(); ++r)
                rooms << inst.rooms[std::size_t(r)].nr
                      << (r >= size.orderRooms - 20 && r < size.orderRooms - 10 ? ":L" : "") << "\n";
        }
        std::ofstream(folder / "noted.txt") << inst.modules[0].objects.size() << " " << lines << "\n";
        std::_Exit(0);
    }
    int status = 0;
    waitpid(maker, &status, 0);
    std::ifstream(folder / "noted.txt") >> result.objects >> result.lines;
    std::printf("%s: %zu INVENTAR objects, %d rooms, order of %d rooms, %zu scan lines\n", size.name.c_str(),
                result.objects, 24 * size.roomsPerFloor, size.orderRooms, result.lines);
    std::fflush(stdout);

    const fs::path log = folder / "cli.log";
    result.steps["mirror"] = runMirror(project);
    runCli(project, {"anlegen", "A1"}, log);
    result.steps["raeume --setzen --datei"] = runCli(project, {"raeume", "A1", "--setzen", "--datei", (folder / "raeume.txt").string()}, log);
    Measure sum;
    for (int f = 1; f <= qi::bench::kFiles; ++f) {
        const Measure m = runCli(
            project, {"hinzufuegen", "A1", (folder / ("Scan" + std::to_string(f) + ".dat")).string(), "--konflikt", "behalten"},
            log);
        result.files.push_back(m);
        sum.seconds += m.seconds;
        sum.cpu += m.cpu;
        sum.peakKb = std::max(sum.peakKb, m.peakKb);
        sum.ok = sum.ok && m.ok;
    }
    result.steps["hinzufuegen (sum)"] = sum;
    result.steps["auswerten"] = runCli(project, {"auswerten", "A1"}, log);
    result.steps["difference list PDF"] =
        runCli(project, {"bericht", "A1", "differenz", "--ausgabe", (folder / "differenz.pdf").string()}, log);
    result.steps["archiv"] = runCli(project, {"archiv", "A1"}, log);

    // The floor, on the rooms the order has now.
    try {
        const auto order = qi::Database::open((project / "Inventur" / "A1.mdb").string(), true);
        qi::bench::writeFloorRooms(*order, folder);
        std::vector<std::string> files;
        for (int f = 1; f <= qi::bench::kFiles; ++f)
            files.push_back((folder / ("Scan" + std::to_string(f) + ".dat")).string());
        result.floor = qi::bench::runFloor(folder, files);
    } catch (const std::exception& e) {
        std::printf("  floor: %s\n", e.what());
        result.floor.ok = false;
    }

    for (const char* step : kSteps) {
        const Measure& m = result.steps[step];
        std::printf("  %-22s %8.3f s %8.3f s cpu %8.1f MB%s\n", step, m.seconds, m.cpu, double(m.peakKb) / 1024.0,
                    m.ok ? "" : " FAILED");
    }
    const Measure& add = result.steps["hinzufuegen (sum)"];
    const Measure& eval = result.steps["auswerten"];
    std::printf("  %-22s %8.3f s %8.3f s cpu%s\n", "sqlite3 shell floor", result.floor.seconds, result.floor.cpu,
                result.floor.ok ? "" : " FAILED");
    if (result.floor.seconds > 0 && result.floor.cpu > 0)
        std::printf("  ratio (hinzufuegen + auswerten) / floor: %.2f wall clock, %.2f processor time\n",
                    (add.seconds + eval.seconds) / result.floor.seconds, (add.cpu + eval.cpu) / result.floor.cpu);
    if (!result.files.empty())
        std::printf("  first file %.3f s, last file %.3f s\n", result.files.front().seconds, result.files.back().seconds);
    std::fflush(stdout);
    if (!std::getenv("QI_BENCH_KEEP"))
        fs::remove_all(folder);
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<const Size*> chosen;
    for (int i = 1; i < argc; ++i)
        for (const Size& s : kSizes)
            if (s.name == argv[i])
                chosen.push_back(&s);
    if (chosen.empty()) {
        chosen = {&kSizes[0], &kSizes[1]};
        if (const char* l = std::getenv("QI_BENCH_L"); l && std::strcmp(l, "1") == 0)
            chosen.push_back(&kSizes[2]);
    }
    const fs::path base = fs::temp_directory_path() / ("qi-bench-scale-" + std::to_string(::getpid()));
    fs::remove_all(base);
    std::vector<std::pair<std::string, Result>> results;
    for (const Size* s : chosen)
        results.emplace_back(s->name, measure(*s, base));
    if (!std::getenv("QI_BENCH_KEEP"))
        fs::remove_all(base);

    bool ok = true;
    std::printf("\n%-22s", "step");
    for (const auto& [name, r] : results)
        std::printf(" %9s s %7s MB", name.c_str(), name.c_str());
    for (std::size_t i = 1; i < results.size(); ++i)
        std::printf("  %s/%s", results[i].first.c_str(), results[i - 1].first.c_str());
    std::printf("\n");
    for (const char* step : kSteps) {
        std::printf("%-22s", step);
        for (const auto& [name, r] : results) {
            const Measure& m = r.steps.at(step);
            ok = ok && m.ok;
            std::printf(" %11.3f %10.1f", m.seconds, double(m.peakKb) / 1024.0);
        }
        for (std::size_t i = 1; i < results.size(); ++i) {
            const Measure& before = results[i - 1].second.steps.at(step);
            const Measure& now = results[i].second.steps.at(step);
            const double work = double(results[i].second.lines) / double(results[i - 1].second.lines);
            const double grew = before.seconds > 0 ? now.seconds / before.seconds : 0;
            const double cpuGrew = before.cpu > 0 ? now.cpu / before.cpu : 0;
            std::printf("  x%.2f (cpu x%.2f)%s", grew, cpuGrew, grew > 1.15 * work ? " (faster than the work)" : "");
        }
        std::printf("\n");
    }
    // The engine's own floor for the import and the evaluation, which grows as its lookups do.
    std::printf("%-22s", "sqlite3 shell floor");
    for (const auto& [name, r] : results) {
        ok = ok && r.floor.ok;
        std::printf(" %11.3f %10s", r.floor.seconds, "");
    }
    for (std::size_t i = 1; i < results.size(); ++i) {
        const qi::bench::Floor& before = results[i - 1].second.floor;
        const qi::bench::Floor& now = results[i].second.floor;
        std::printf("  x%.2f (cpu x%.2f)", before.seconds > 0 ? now.seconds / before.seconds : 0,
                    before.cpu > 0 ? now.cpu / before.cpu : 0);
    }
    std::printf("\n");
    std::printf("%-22s", "work (scan lines)");
    for (const auto& [name, r] : results)
        std::printf(" %11zu %10s", r.lines, "");
    for (std::size_t i = 1; i < results.size(); ++i)
        std::printf("  x%.2f", double(results[i].second.lines) / double(results[i - 1].second.lines));
    std::printf("\n");
    return ok ? 0 : 1;
}
