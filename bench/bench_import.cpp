// Adding 10 scanner data files of 10,000 lines each to a fresh order through the
// work window's "Hinzufügen" (all three checks, host lookup of every line, a few
// objects scanned in two rooms answered by the script), against the sqlite3 shell
// loading the same lines into its own NOCASE copy of the scan table.

#include "CAuftragDb.h"
#include "Database.h"
#include "OrderSchema.h"
#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "frmWork.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kFiles = 10;
constexpr int kLinesPerFile = 10000;
constexpr int kRooms = 1000;
constexpr int kRoomsPerFile = kRooms / kFiles;
constexpr int kHostObjects = 60000;
constexpr int kConflictsPerFile = 5;

double seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

std::string invNr(int i) { return "INV" + std::to_string(1000000 + i); }

/// The room of line `i` of file `f`: each file walks through its own hundred rooms.
int roomOf(int f, int i) { return 100 + f * kRoomsPerFile + i % kRoomsPerFile; }

void makeHost(const std::string& path)
{
    auto db = qi::Database::create(path);
    db->executeScript(
        "CREATE TABLE T_IArtikel (lId INTEGER PRIMARY KEY, stArtNr TEXT COLLATE JET, stName TEXT COLLATE JET);"
        "CREATE TABLE T_IObjekt (lId INTEGER PRIMARY KEY, stName TEXT COLLATE JET UNIQUE, "
        "stBeschreibung TEXT COLLATE JET, lArtikelId INTEGER, stOrt TEXT COLLATE JET, lGebstruId INTEGER, "
        "byGebstruTyp INTEGER, stBemerkung TEXT COLLATE JET, iVariante INTEGER, lKstId INTEGER);"
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 59)"
        " INSERT INTO T_IArtikel SELECT i + 1, 'ART' || i, 'Artikel ' || i FROM n;"
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(kHostObjects - 1) +
        ")"
        " INSERT INTO T_IObjekt SELECT i + 1, 'INV' || (1000000 + i), 'Objekt ' || i, i % 60 + 1, '', 0, 4, '', 0, 0"
        " FROM n;");
}

/// Writes the scanner files; returns their paths.
std::vector<std::string> makeFiles(const fs::path& folder)
{
    std::vector<std::string> paths;
    for (int f = 0; f < kFiles; ++f) {
        const fs::path p = folder / ("scan" + std::to_string(f + 1) + ".dat");
        std::ofstream out(p, std::ios::binary);
        const std::string date = std::to_string(10 + f) + ".03.2015";
        for (int i = 0; i < kLinesPerFile; ++i) {
            int obj = f * kLinesPerFile + i;
            // A few objects of the previous file scanned again in this file's rooms.
            if (f > 0 && i < kConflictsPerFile)
                obj = (f - 1) * kLinesPerFile + i + 7;
            out << "17,4711," << date << ",10:" << (10 + i % 50) << ":00,0" << roomOf(f, i) << "," << invNr(obj)
                << ",SCAN" << (i % 80) << ",I\r\n";
        }
        paths.push_back(p.string());
    }
    return paths;
}

long peakKilobytes()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_maxrss;
}

/// Processor time of this process so far (user and system), less noisy than the wall clock on a busy machine.
double cpuSeconds()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

/// The same lines through the sqlite3 shell: CSV import into a scratch table, then
/// one INSERT with the room and number treatment into a NOCASE copy of the scan table.
double shellSeconds(const fs::path& folder, const std::vector<std::string>& files)
{
    const fs::path db = folder / "shell.db";
    const fs::path script = folder / "shell.sql";
    {
        std::ofstream s(script);
        s << "CREATE TABLE T_DatInventur (lID INTEGER PRIMARY KEY AUTOINCREMENT, lDatID INTEGER,"
             " stMitarbNr TEXT COLLATE NOCASE, stAuftragsNr TEXT COLLATE NOCASE, Datum TEXT COLLATE NOCASE,"
             " Uhrzeit TEXT COLLATE NOCASE, stRaum TEXT COLLATE NOCASE, stInvNr TEXT COLLATE NOCASE,"
             " stArtNr TEXT COLLATE NOCASE, stTaet TEXT COLLATE NOCASE, iReihenfolge INTEGER);\n"
             "CREATE UNIQUE INDEX T_DatInventur_stInvNr ON T_DatInventur (stInvNr);\n"
             "CREATE INDEX T_DatInventur_stRaum ON T_DatInventur (stRaum, iReihenfolge);\n"
               "CREATE INDEX T_DatInventur_Gruppe ON T_DatInventur (stRaum, Datum, lDatID);\n"
             "CREATE INDEX T_DatInventur_stArtNr ON T_DatInventur (stArtNr);\n"
             "CREATE TABLE raw (f1, f2, f3, f4, f5, f6, f7, f8);\n";
        for (std::size_t i = 0; i < files.size(); ++i) {
            s << "DELETE FROM raw;\n.import --csv " << files[i] << " raw\n"
              << "INSERT OR IGNORE INTO T_DatInventur (lDatID, stMitarbNr, stAuftragsNr, Datum, Uhrzeit, stRaum,"
                 " stInvNr, stArtNr, stTaet) SELECT "
              << (i + 1) << ", f1, f2, f3, f4, trim(ltrim(f5, '0'), ' '), trim(f6, ' '), trim(f7, ' '), f8 FROM raw;\n";
        }
    }
    const std::string cmd = "/usr/bin/sqlite3 '" + db.string() + "' < '" + script.string() + "' > /dev/null";
    const auto t0 = Clock::now();
    const int rc = std::system(cmd.c_str());
    const auto t1 = Clock::now();
    if (rc != 0)
        std::printf("sqlite3 shell ended with %d\n", rc);
    return seconds(t0, t1);
}

} // namespace

int main()
{
    const fs::path folder = fs::temp_directory_path() / ("qi-bench-import-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);

    qi::Settings settings;
    settings.gstProjektPfad = folder.string() + "/";
    settings.gstProjekttyp = "ptJet";
    settings.gstAppPfad = folder.string();
    makeHost((folder / "QOvInventar.mdb").string());
    const std::vector<std::string> files = makeFiles(folder);

    const std::string orderPath = (folder / "A1.mdb").string();
    {
        auto db = qi::Database::create(orderPath);
        qi::createOrderSchema(*db);
    }
    qi::ScriptedUserInteraction ui;
    qi::CAuftragDb order(ui);
    order.setDbPath(orderPath);
    if (!order.OpenDb()) {
        std::printf("order database: %s\n", order.LastError().c_str());
        return 1;
    }
    for (int r = 0; r < kRooms; ++r) {
        qi::CRaumRec room;
        room.stRaumNr = std::to_string(100 + r);
        room.ststatus = "N";
        order.AddNewRaumRec(&room);
    }

    qi::frmWork work(order, settings, ui);
    for (int i = 0; i < kFiles * kConflictsPerFile; ++i)
        ui.conflictAnswers.push_back(i % 2 == 0);

    const double c0 = cpuSeconds();
    const auto t0 = Clock::now();
    for (const std::string& f : files) {
        ui.fileChoices.push_back(f);
        work.pbAdd_Click();
    }
    const auto t1 = Clock::now();
    const double ours = seconds(t0, t1);
    const double oursCpu = cpuSeconds() - c0;

    const qi::Value stored = order.database()->scalar("SELECT count(*) FROM T_DatInventur");
    const qi::Value withStatus = order.database()->scalar("SELECT count(*) FROM T_Raum WHERE ststatus = 'E'");
    const long peak = peakKilobytes();
    const double shell = shellSeconds(folder, files);

    const int lines = kFiles * kLinesPerFile;
    std::printf("import: %d lines in %d files, %.3f s (processor %.3f s), %.0f lines/s\n", lines, kFiles, ours,
                oursCpu, lines / ours);
    std::printf("rows stored: %lld, rooms with scans: %lld, conflicts asked: %zu, messages: %zu\n",
                static_cast<long long>(qi::toLong(stored)), static_cast<long long>(qi::toLong(withStatus)),
                ui.conflicts.size(), ui.messages.size());
    std::printf("peak memory: %ld KiB\n", peak);
    std::printf("sqlite3 shell: %.3f s, %.0f lines/s\n", shell, lines / shell);
    std::printf("ratio import/shell: %.2f\n", ours / shell);

    order.CloseDb();
    fs::remove_all(folder);
    return 0;
}
