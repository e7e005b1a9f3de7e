// The project overview of a large stocktake: a Quarn installation of 2,000 rooms and
// 200,000 INVENTAR objects, and 5, 10 and 20 orders of 100 rooms each, every order with
// three scanner files of about 10,000 lines in all (most objects found in place, some
// scanned by the next order in its room, some missing, unknown numbers that two orders
// both scanned). Every order is evaluated; a quarter of them get their third file after
// that, so that their lists no longer fit their data. For each size it times the project
// result (with and without the fresh evaluation of those orders) and the report
// "Gesamtauswertung" as PDF, and prints the peak memory of doing so; then a sqlite3-shell
// floor that copies every order's scans and difference list into one database and counts
// the numbers scanned in several orders.
//
// Each size is made in a child process and measured in another, so that the memory of
// making the orders is not counted. Arguments: the numbers of orders (default 5 10 20).
// QI_BENCH_FOLDER=dir keeps the installation and the orders in dir and takes them from there
// on the next run (for measuring a change again, or under a profiler, without making them anew).

#include "CInventurDb.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "LargeOrder.h"
#include "OrderSchema.h"
#include "Orders.h"
#include "ProjectOverview.h"
#include "ProjectReports.h"
#include "ProjectResultSchema.h"
#include "ReportLinks.h"
#include "ScriptedUserInteraction.h"
#include "frmWork.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <fstream>
#include <map>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qi::bench::Clock;
using qi::bench::seconds;

namespace {

/// CPU time (user and system) of this process (or of the calling thread) so far, in seconds.
double cpuSeconds(int who = RUSAGE_SELF)
{
    rusage usage{};
    getrusage(who, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

constexpr int kRoomsPerOrder = 100;
constexpr int kFilesPerOrder = 3;
/// The first room of each file within an order's rooms (the last entry ends the last file).
constexpr int kFileStart[kFilesPerOrder + 1] = {0, 60, 90, 100};

/// A number from 0 to 99 for the k-th object, always the same.
int percent(std::uint32_t k)
{
    k = k * 2654435761u;
    return int((k >> 16) % 100);
}

/// Scanned by the order that owns its room, in its room.
bool foundInPlace(const qi::demo::Object& o)
{
    const int pc = percent(std::uint32_t(o.id));
    return pc < 90 || pc == 94;
}
/// Scanned by the next order, in its room at the same place (so also twice for 94).
bool scannedByNext(const qi::demo::Object& o)
{
    const int pc = percent(std::uint32_t(o.id));
    return pc >= 90 && pc < 95;
}

bool stale(int order) { return order % 4 == 3; }

std::string orderName(int order)
{
    char name[32];
    std::snprintf(name, sizeof name, "Auftrag %02d", order + 1);
    return name;
}

std::string scanFile(const fs::path& folder, int orders, int order, int file)
{
    return (folder / ("scans-" + std::to_string(orders)) /
            ("A" + std::to_string(order + 1) + "_" + std::to_string(file + 1) + ".dat"))
        .string();
}

/// Writes the scanner files of every order for each number of orders.
void writeScanFiles(const qi::demo::Installation& inst, const fs::path& folder, const std::vector<int>& sizes)
{
    for (int orders : sizes) {
        fs::create_directories(folder / ("scans-" + std::to_string(orders)));
        for (int i = 0; i < orders; ++i) {
            const int previous = (i + orders - 1) % orders;
            for (int f = 0; f < kFilesPerOrder; ++f) {
                std::ofstream out(scanFile(folder, orders, i, f), std::ios::binary);
                char date[40];
                std::snprintf(date, sizeof date, "%02d.%02d.2025", 1 + i % 28, 3 + f);
                int line = 0;
                const auto scan = [&](const std::string& room, const std::string& inv, const std::string& art) {
                    char time[40];
                    std::snprintf(time, sizeof time, "%02d:%02d:%02d", 7 + line / 3600 % 10, line / 60 % 60, line % 60);
                    ++line;
                    out << "17,4711," << date << "," << time << "," << room << "," << inv << "," << art << ",I\r\n";
                };
                for (int p = kFileStart[f]; p < kFileStart[f + 1]; ++p) {
                    const qi::demo::Room& room = inst.rooms[std::size_t(i * kRoomsPerOrder + p)];
                    const qi::demo::Room& before = inst.rooms[std::size_t(previous * kRoomsPerOrder + p)];
                    for (const qi::demo::Object* o : inst.objectsOfRoom(0, room.id))
                        if (foundInPlace(*o))
                            scan(room.nr, o->name, "SCAN");
                    for (const qi::demo::Object* o : inst.objectsOfRoom(0, before.id))
                        if (scannedByNext(*o))
                            scan(room.nr, o->name, "SCAN");
                    scan(room.nr, "UNB-" + std::to_string(i) + "-" + std::to_string(p), "ART-X");
                    scan(room.nr, "UNB-" + std::to_string(previous) + "-" + std::to_string(p), "ART-X");
                }
            }
        }
    }
}

/// Runs `work` in a child process; false when it did not end with 0.
bool inChild(const std::function<int()>& work)
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        int code = 1;
        try {
            code = work();
        } catch (const std::exception& e) {
            std::printf("failed: %s\n", e.what());
        }
        std::fflush(stdout);
        std::_Exit(code);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

qi::Settings settingsOf(const fs::path& project, const fs::path& program)
{
    qi::Settings s;
    s.gstProjektPfad = project.string() + "/";
    s.gstProjekttyp = "ptJet";
    s.gstAppPfad = program.string();
    s.giModul = 0;
    return s;
}

/// The register, the orders and their evaluations for `orders` orders (in a child).
int makeOrders(const fs::path& folder, const fs::path& project, const fs::path& program, int orders)
{
    fs::remove_all(project / "Inventur");
    fs::remove(project / "QInventur.mdb");
    fs::remove(program / "QInventurRpt.mdb");
    {
        auto reg = qi::Database::create((project / "QInventur.mdb").string());
        qi::createRegisterSchema(*reg);
        auto empty = qi::Database::create((project / "QAuftrag.mdb").string());
        qi::createOrderSchema(*empty);
    }
    qi::createReportDatabase((program / "QInventurRpt.mdb").string());
    const qi::Settings settings = settingsOf(project, program);
    qi::ScriptedUserInteraction ui;
    qi::CInventurDb reg;
    reg.setDbPath((project / "QInventur.mdb").string());
    if (!reg.OpenDb())
        throw std::runtime_error(reg.LastError());
    const std::vector<std::pair<std::int32_t, std::string>> rooms = [&] {
        std::vector<std::pair<std::int32_t, std::string>> r;
        std::ifstream in(folder / "rooms.txt");
        for (std::int32_t id; in >> id;) {
            std::string nr;
            in >> nr;
            r.emplace_back(id, nr);
        }
        return r;
    }();
    for (int i = 0; i < orders; ++i) {
        qi::CAuftragRec rec;
        rec.stBezeichung = orderName(i);
        rec.stErsteller = "Meier";
        if (qi::CreateOrder(reg, settings, ui, rec) != qi::OrderResult::Done)
            throw std::runtime_error("order " + rec.stBezeichung + " not created");
        const std::string path = (project / "Inventur" / (rec.stBezeichung + ".mdb")).string();
        qi::CAuftragDb db(ui);
        db.setDbPath(path);
        if (!db.OpenDb())
            throw std::runtime_error(db.LastError());
        for (int p = 0; p < kRoomsPerOrder; ++p) {
            qi::CRaumRec room;
            room.lIdRB = rooms.at(std::size_t(i * kRoomsPerOrder + p)).first;
            room.stRaumNr = rooms.at(std::size_t(i * kRoomsPerOrder + p)).second;
            room.ststatus = "N";
            room.stAuftrag = rec.stBezeichung;
            db.AddNewRaumRec(&room);
        }
        if (!qi::CheckReportMdbLink(settings, path, ui))
            throw std::runtime_error("the report database could not be linked");
        qi::frmWork work(db, settings, ui);
        work.Init();
        const auto add = [&](int f) {
            ui.fileChoices.push_back(scanFile(folder, orders, i, f));
            if (work.pbAdd_Click() != qi::FileListResult::Done)
                throw std::runtime_error("file " + scanFile(folder, orders, i, f) + " not added");
        };
        add(0);
        add(1);
        if (!stale(i))
            add(2);
        if (!work.ReportDifferenzListe())
            throw std::runtime_error("order " + rec.stBezeichung + " not evaluated");
        if (stale(i))
            add(2);
        db.CloseDb();
    }
    return 0;
}

long rowsOf(qi::Database& db, const std::string& table)
{
    return long(qi::toLong(db.scalar("SELECT count(*) FROM " + table)));
}

/// The project result and the Gesamtauswertung as PDF (in a child).
int measure(const fs::path& folder, const fs::path& project, const fs::path& program, int orders)
{
    const qi::Settings settings = settingsOf(project, program);
    // Without fresh evaluations first: it also makes sure Quarn's mirror is current, as it is
    // in a team's installation after its first file.
    qi::OverviewOptions quick;
    quick.freshEvaluation = false;
    const auto q0 = Clock::now();
    const std::unique_ptr<qi::Database> stored = qi::computeProjectResult(settings, quick);
    const auto q1 = Clock::now();

    // The steps as the overview reports them, with the time until the next one.
    std::vector<std::pair<std::string, Clock::time_point>> steps;
    qi::OverviewOptions fresh;
    fresh.progress = [&](int, int, const std::string& step) {
        steps.emplace_back(step, Clock::now());
        return true;
    };
    const double c0 = cpuSeconds(), m0 = cpuSeconds(RUSAGE_THREAD);
    const auto t0 = Clock::now();
    const std::unique_ptr<qi::Database> result = qi::computeProjectResult(settings, fresh);
    const auto t1 = Clock::now();
    const double c1 = cpuSeconds(), m1 = cpuSeconds(RUSAGE_THREAD);
    const long overviewPeak = qi::bench::peakKilobytes();

    const qi::ProjectReport* gesamt = qi::findProjectReport("gesamtauswertung");
    if (!gesamt)
        throw std::runtime_error("no report \"gesamtauswertung\"");
    const std::string pdf = (folder / ("Gesamtauswertung-" + std::to_string(orders) + ".pdf")).string();
    qi::writeProjectReport(settings, *result, *gesamt, qi::ReportFormat::Pdf, pdf);
    const auto t2 = Clock::now();
    const long peak = qi::bench::peakKilobytes();

    const long stales = long(qi::toLong(
        result->scalar("SELECT count(*) FROM P_Auftrag WHERE stStand = ?1", {std::string(qi::kStandNeu)})));
    const long unreadable = long(qi::toLong(
        result->scalar("SELECT count(*) FROM P_Auftrag WHERE stStand = ?1", {std::string(qi::kStandFehler)})));
    std::printf("%d orders: %ld rooms, %ld scans, %ld difference rows; %ld evaluated afresh%s\n", orders,
                rowsOf(*result, "P_Raum"), rowsOf(*result, "P_Scan"), rowsOf(*result, "P_Diff"), stales,
                unreadable ? (", " + std::to_string(unreadable) + " NOT READABLE").c_str() : "");
    std::printf("  lists: %ld moved, %ld in several orders, %ld surplus, %ld unknown, %ld missing, %ld rooms in no "
                "order, %ld in several, %ld hints\n",
                rowsOf(*result, "L_Verschoben"), rowsOf(*result, "L_Doppelt"), rowsOf(*result, "L_Zuviel"),
                rowsOf(*result, "L_Unbekannt"), rowsOf(*result, "L_Fehlend"), rowsOf(*result, "L_Ungeprueft"),
                rowsOf(*result, "L_Ueberschneidung"), rowsOf(*result, "L_Hinweis"));
    std::printf("  overview without fresh evaluation: %7.3f s\n", seconds(q0, q1));
    std::printf("  overview:                          %7.3f s   (target 3 s; CPU time %.3f s, of it %.3f s in the "
                "calling thread)\n",
                seconds(t0, t1), c1 - c0, m1 - m0);
    // The slowest steps: the same text (an order's name left out) added up.
    std::map<std::string, double> stepTimes;
    double currentOrders = 0, staleOrders = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        std::string step = steps[i].first;
        const double time = seconds(steps[i].second, i + 1 < steps.size() ? steps[i + 1].second : t1);
        for (int o = 0; o < orders; ++o)
            for (std::size_t at; (at = step.find(orderName(o))) != std::string::npos;) {
                step.replace(at, orderName(o).size(), "…");
                (stale(o) ? staleOrders : currentOrders) += time;
            }
        stepTimes[step] += time;
    }
    std::printf("    an order whose list fits its data: %.3f s, one evaluated afresh: %.3f s (on average)\n",
                currentOrders / double(orders - orders / 4), staleOrders / double(std::max(1, orders / 4)));
    std::vector<std::pair<double, std::string>> slowest;
    for (const auto& [step, time] : stepTimes)
        slowest.emplace_back(time, step);
    std::sort(slowest.rbegin(), slowest.rend());
    for (std::size_t i = 0; i < slowest.size() && i < 6; ++i)
        std::printf("    %-50s %7.3f s\n", slowest[i].second.c_str(), slowest[i].first);
    std::printf("  Gesamtauswertung PDF:              %7.3f s   (target 15 s; %.1f MB)\n", seconds(t1, t2),
                double(fs::file_size(pdf)) / 1e6);
    std::printf("  peak memory:                       %7.1f MB  (target 300 MB; %.1f MB after the overview)\n",
                double(peak) / 1024.0, double(overviewPeak) / 1024.0);
    return 0;
}

/// The sqlite3 shell copying every order's scans and difference list into one database and
/// counting the numbers scanned in several orders: seconds, or -1.
double floorSeconds(const fs::path& folder, const fs::path& project, int orders, long& several)
{
    const fs::path db = folder / ("floor-" + std::to_string(orders) + ".db");
    fs::remove(db);
    const fs::path script = folder / "floor.sql";
    {
        std::ofstream s(script);
        if (fs::exists(QI_JET_EXTENSION))
            s << ".load '" << QI_JET_EXTENSION << "'\n";
        s << "CREATE TABLE s (stAuftrag TEXT, stInvNr TEXT COLLATE NOCASE, stRaum TEXT, stArtNr TEXT, Datum TEXT,"
             " Uhrzeit TEXT, lDatID INTEGER);\n"
             "CREATE TABLE d (stAuftrag TEXT, lRaumID INTEGER, stSollInvNR TEXT COLLATE NOCASE,"
             " stIstInvNR TEXT COLLATE NOCASE, stTyp TEXT, stZiel TEXT, stQuelle TEXT, stQuarn TEXT);\n";
        for (int i = 0; i < orders; ++i) {
            s << "ATTACH '" << (project / "Inventur" / (orderName(i) + ".mdb")).string() << "' AS o;\nBEGIN;\n"
              << "INSERT INTO s SELECT '" << orderName(i)
              << "', stInvNr, stRaum, stArtNr, Datum, Uhrzeit, lDatID FROM o.T_DatInventur;\n"
              << "INSERT INTO d SELECT '" << orderName(i)
              << "', lRaumID, stSollInvNR, stIstInvNR, stTyp, stZiel, stQuelle, stQuarn FROM o.T_Differenzliste;\n"
              << "COMMIT;\nDETACH o;\n";
        }
        s << "CREATE INDEX s_inv ON s (stInvNr);\n"
             "SELECT count(*) FROM (SELECT stInvNr FROM s GROUP BY stInvNr HAVING count(DISTINCT stAuftrag) > 1);\n";
    }
    const std::string cmd = "/usr/bin/sqlite3 '" + db.string() + "' < '" + script.string() + "' > '" +
                            (folder / "floor.out").string() + "'";
    const auto t0 = Clock::now();
    const int rc = std::system(cmd.c_str());
    const auto t1 = Clock::now();
    std::ifstream out(folder / "floor.out");
    several = -1;
    out >> several;
    return rc == 0 ? seconds(t0, t1) : -1;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i)
        sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty())
        sizes = {5, 10, 20};
    for (int n : sizes)
        if (n < 2 || n > 20) {
            std::printf("the number of orders is 2 to 20\n");
            return 2;
        }

    const char* kept = std::getenv("QI_BENCH_FOLDER");
    const fs::path folder =
        kept && *kept ? fs::path(kept) : fs::temp_directory_path() / ("qi-bench-project-" + std::to_string(::getpid()));
    const bool reuse = kept && *kept && fs::exists(folder / "rooms.txt");
    if (!reuse)
        fs::remove_all(folder);
    const fs::path project = folder / "Projekt";
    const fs::path program = folder / "Programm";
    fs::create_directories(project / "Report");
    fs::create_directories(program);
    // Quarn's mirrors in the benchmark's own folder, not in the user's cache.
    setenv("XDG_CACHE_HOME", (folder / "cache").c_str(), 1);
    if (!std::getenv("XDG_RUNTIME_DIR")) {
        fs::create_directories(folder / "run");
        fs::permissions(folder / "run", fs::perms::owner_all);
        setenv("XDG_RUNTIME_DIR", (folder / "run").c_str(), 1);
    }
    for (const auto& entry : fs::directory_iterator(QI_REPORT_SOURCE))
        fs::copy_file(entry.path(), project / "Report" / entry.path().filename(),
                      fs::copy_options::overwrite_existing);

    const auto m0 = Clock::now();
    const bool made = reuse || inChild([&] {
        qi::demo::Sizes s;
        s.sites = 2;
        s.buildingsPerSite = 5;
        s.floorsPerBuilding = 4;
        s.roomsPerFloor = 50;
        s.inventarArticles = 200;
        s.inventarObjects = 200000;
        s.technikObjects = 100;
        s.brandschutzObjects = 100;
        const qi::demo::Installation inst = qi::demo::buildInstallation(s);
        qi::demo::writeHostDatabases(inst, project.string());
        writeScanFiles(inst, folder, sizes);
        std::ofstream rooms(folder / "rooms.txt");
        for (const qi::demo::Room& r : inst.rooms)
            rooms << r.id << " " << r.nr << "\n";
        std::printf("installation: %zu rooms, %zu INVENTAR objects\n", inst.rooms.size(),
                    inst.modules[0].objects.size());
        return 0;
    });
    if (!made) {
        std::printf("the installation could not be made\n");
        return 1;
    }
    std::printf("  made in %.1f s\n", seconds(m0, Clock::now()));

    bool ok = true;
    for (int orders : sizes) {
        const auto o0 = Clock::now();
        const fs::path marker = folder / ("orders-" + std::to_string(orders));
        if (reuse && fs::exists(marker)) {
            // The orders of the last run stand; the project's folder holds the last size made.
            fs::remove_all(project / "Inventur");
            fs::copy(marker / "Inventur", project / "Inventur", fs::copy_options::recursive);
            fs::copy_file(marker / "QInventur.mdb", project / "QInventur.mdb", fs::copy_options::overwrite_existing);
            fs::copy_file(marker / "QInventurRpt.mdb", program / "QInventurRpt.mdb",
                          fs::copy_options::overwrite_existing);
        } else if (!inChild([&] { return makeOrders(folder, project, program, orders); })) {
            std::printf("%d orders could not be made\n", orders);
            ok = false;
            continue;
        }
        std::printf("%d orders made and evaluated (%d of them stale) in %.1f s\n", orders, orders / 4,
                    seconds(o0, Clock::now()));
        if (kept && *kept && !fs::exists(marker)) {
            fs::create_directories(marker);
            fs::copy(project / "Inventur", marker / "Inventur", fs::copy_options::recursive);
            fs::copy_file(project / "QInventur.mdb", marker / "QInventur.mdb");
            fs::copy_file(program / "QInventurRpt.mdb", marker / "QInventurRpt.mdb");
        }
        ok = inChild([&] { return measure(folder, project, program, orders); }) && ok;
        long several = 0;
        const double floor = floorSeconds(folder, project, orders, several);
        std::printf("  sqlite3 shell floor:               %7.3f s   (scans and difference lists of %d orders copied "
                    "into one database; %ld numbers in several orders)\n",
                    floor, orders, several);
    }
    if (!kept || !*kept)
        fs::remove_all(folder);
    return ok ? 0 : 1;
}
