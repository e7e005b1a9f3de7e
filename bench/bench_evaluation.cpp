// The whole reconciliation of the large order (LargeOrder.h): it times the import of
// the files through "Hinzufügen", the evaluation run, the article tally and the
// inventory list, and a sqlite3-shell floor that loads the same lines and classifies
// them set-based into the same six categories; both print their count per category.

#include "LargeOrder.h"
#include "ScriptedUserInteraction.h"
#include "frmWork.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qi::bench::Clock;
using qi::bench::seconds;

namespace {

/// The floor's own copy of Quarn's objects.
void writeFloorObjects(const qi::demo::Installation& inst, const fs::path& folder)
{
    std::ofstream objects(folder / "objects.csv", std::ios::binary);
    for (const qi::demo::Object& o : inst.modules[0].objects)
        objects << o.name << "," << o.ort << "," << o.gebstruId << "," << o.gebstruTyp << "," << o.variante << "\n";
}

/// The floor's own copy of the order's rooms.
void writeFloorRooms(qi::CAuftragDb& order, const fs::path& folder)
{
    std::ofstream rooms(folder / "rooms.csv", std::ios::binary);
    const qi::Recordset rs = order.database()->query("SELECT lID, lIdRB, stRaumNr, ststatus FROM T_Raum");
    for (const auto& r : rs.rows())
        rooms << qi::toLong(r[0]) << "," << qi::toLong(r[1]) << "," << qi::toText(r[2]) << "," << qi::toText(r[3])
              << "\n";
}

/// Processor seconds (user and system) of this process and of its finished children.
double cpuSeconds(int who)
{
    rusage u{};
    getrusage(who, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

/// The scripted user, noting when each step of the evaluation began.
class TimedUser : public qi::ScriptedUserInteraction {
public:
    void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override
    {
        ScriptedUserInteraction::reportStep(step, done, total);
        if (stepStarts.empty() || stepStarts.back().first != step)
            stepStarts.emplace_back(step, Clock::now());
    }
    std::vector<std::pair<std::string, Clock::time_point>> stepStarts;
};

int runShell(const fs::path& db, const fs::path& script, const fs::path& output)
{
    const std::string cmd =
        "/usr/bin/sqlite3 '" + db.string() + "' < '" + script.string() + "' > '" + output.string() + "'";
    return std::system(cmd.c_str());
}

/// Loads the scanner files into the floor's scan table and classifies them set-based;
/// returns the seconds and fills the count per category (first two characters).
double floorSeconds(const fs::path& folder, const std::vector<std::string>& files, std::map<std::string, long>& counts,
                    double& cpu)
{
    const fs::path db = folder / "floor.db";
    {
        std::ofstream s(folder / "floor-setup.sql");
        s << "CREATE TABLE r (lID INTEGER PRIMARY KEY, lIdRB INTEGER, stRaumNr TEXT COLLATE NOCASE, ststatus TEXT);\n"
             "CREATE TABLE o (stName TEXT COLLATE NOCASE, stOrt TEXT COLLATE NOCASE, lGebstruId INTEGER,"
             " byGebstruTyp INTEGER, iVariante INTEGER);\n"
             ".import --csv '" << (folder / "rooms.csv").string() << "' r\n"
             ".import --csv '" << (folder / "objects.csv").string() << "' o\n"
             "CREATE INDEX r_nr ON r (stRaumNr);\n"
             "CREATE UNIQUE INDEX o_name ON o (stName);\n"
             "CREATE INDEX o_room ON o (lGebstruId);\n";
    }
    if (runShell(db, folder / "floor-setup.sql", folder / "floor-setup.out") != 0)
        std::printf("floor set-up failed\n");
    {
        std::ofstream s(folder / "floor.sql");
        s << "CREATE TABLE raw (f1, f2, f3, f4, f5, f6, f7, f8);\n"
             "CREATE TABLE s (lID INTEGER PRIMARY KEY, lDatID INTEGER, Datum TEXT, Uhrzeit TEXT,"
             " stRaum TEXT COLLATE NOCASE, stInvNr TEXT COLLATE NOCASE, stArtNr TEXT);\n"
             "CREATE UNIQUE INDEX s_inv ON s (stInvNr);\n"
             "CREATE INDEX s_room ON s (stRaum);\n"
             "BEGIN;\n";
        for (std::size_t i = 0; i < files.size(); ++i)
            s << "DELETE FROM raw;\n.import --csv '" << files[i] << "' raw\n"
              << "INSERT OR IGNORE INTO s (lDatID, Datum, Uhrzeit, stRaum, stInvNr, stArtNr) SELECT " << (i + 1)
              << ", f3, f4, trim(ltrim(f5, '0'), ' '), CASE WHEN trim(f6, ' ') = '' THEN 'Obj. ohne Nr.'"
                 " ELSE trim(f6, ' ') END, trim(f7, ' ') FROM raw;\n";
        s << "CREATE TABLE d (lID INTEGER PRIMARY KEY, lRaumID INTEGER, soll TEXT COLLATE NOCASE DEFAULT '',"
             " ist TEXT COLLATE NOCASE DEFAULT '', typ TEXT, ziel TEXT DEFAULT '', quelle TEXT DEFAULT '');\n"
             "INSERT INTO d (lRaumID, soll, typ) SELECT r.lID, o.stName, '3b' FROM r JOIN o ON o.lGebstruId = r.lIdRB"
             " AND o.byGebstruTyp = 4 AND o.iVariante = 0 WHERE r.ststatus <> 'N' ORDER BY r.lID, o.stName;\n"
             "INSERT INTO d (lRaumID, typ) SELECT r.lID, '0' FROM r WHERE r.ststatus <> 'N' AND NOT EXISTS"
             " (SELECT 1 FROM o WHERE o.lGebstruId = r.lIdRB AND o.byGebstruTyp = 4 AND o.iVariante = 0);\n"
             "CREATE INDEX d_soll ON d (soll);\nCREATE INDEX d_ist ON d (ist);\n"
             "UPDATE d SET ist = soll, typ = '1 ' WHERE soll <> '' AND EXISTS (SELECT 1 FROM s JOIN r"
             " ON r.lID = d.lRaumID WHERE s.stInvNr = d.soll AND s.stRaum = r.stRaumNr);\n"
             "INSERT INTO d (lRaumID, ist, typ) SELECT r.lID, s.stInvNr, '2b' FROM s JOIN r ON s.stRaum = r.stRaumNr"
             " WHERE NOT EXISTS (SELECT 1 FROM d WHERE d.ist = s.stInvNr) ORDER BY s.lID;\n"
             "UPDATE d SET ziel = (SELECT stRaum FROM s WHERE s.stInvNr = d.soll), typ = '3a'"
             " WHERE ist = '' AND soll <> '' AND EXISTS (SELECT 1 FROM s WHERE s.stInvNr = d.soll);\n"
             "UPDATE d SET quelle = 'x', typ = '2a' WHERE soll = '' AND ist IN (SELECT soll FROM d WHERE ziel <> '');\n"
             "UPDATE d SET typ = '2c' WHERE soll = '' AND quelle = '' AND NOT EXISTS"
             " (SELECT 1 FROM o WHERE o.stName = d.ist);\n"
             "COMMIT;\n"
             "SELECT typ || ',' || count(*) FROM d GROUP BY typ ORDER BY typ;\n";
    }
    const double c0 = cpuSeconds(RUSAGE_CHILDREN);
    const auto t0 = Clock::now();
    const int rc = runShell(db, folder / "floor.sql", folder / "floor.out");
    const auto t1 = Clock::now();
    cpu = cpuSeconds(RUSAGE_CHILDREN) - c0;
    if (rc != 0)
        std::printf("sqlite3 shell ended with %d\n", rc);
    std::ifstream in(folder / "floor.out");
    std::string l;
    while (std::getline(in, l)) {
        const auto comma = l.find(',');
        if (comma != std::string::npos)
            counts[l.substr(0, comma)] = std::stol(l.substr(comma + 1));
    }
    return seconds(t0, t1);
}

/// Every row of the difference list, key and all columns, in the order of the keys.
std::vector<std::string> differenceList(qi::CAuftragDb& order)
{
    std::vector<std::string> lines;
    const qi::Recordset rs = order.database()->query("SELECT * FROM T_Differenzliste ORDER BY lID");
    for (const auto& r : rs.rows()) {
        std::string line;
        for (const qi::Value& v : r)
            line += (qi::isNull(v) ? std::string("<Null>") : qi::toText(v)) + "|";
        lines.push_back(line);
    }
    return lines;
}

/// QI_BENCH_DIFFLIST_SAVE=file writes the difference list there; QI_BENCH_DIFFLIST_EXPECT=file
/// compares it, key for key, with one saved before. False when they differ.
bool checkDifferenceList(qi::CAuftragDb& order)
{
    const std::vector<std::string> lines = differenceList(order);
    if (const char* save = std::getenv("QI_BENCH_DIFFLIST_SAVE")) {
        std::ofstream out(save, std::ios::binary);
        for (const std::string& l : lines)
            out << l << "\n";
        std::printf("difference list saved to %s (%zu rows)\n", save, lines.size());
    }
    const char* expect = std::getenv("QI_BENCH_DIFFLIST_EXPECT");
    if (!expect)
        return true;
    std::ifstream in(expect, std::ios::binary);
    std::vector<std::string> saved;
    for (std::string l; std::getline(in, l);)
        saved.push_back(l);
    std::size_t first = 0;
    while (first < lines.size() && first < saved.size() && lines[first] == saved[first])
        ++first;
    if (first == lines.size() && first == saved.size()) {
        std::printf("difference list identical to %s, row for row (%zu rows)\n", expect, lines.size());
        return true;
    }
    std::printf("difference list DIFFERS from %s at row %zu (%zu rows, %zu saved)\n", expect, first + 1,
                lines.size(), saved.size());
    if (first < lines.size())
        std::printf("  now:   %s\n", lines[first].c_str());
    if (first < saved.size())
        std::printf("  saved: %s\n", saved[first].c_str());
    return false;
}

} // namespace

int main()
{
    const fs::path folder = fs::temp_directory_path() / ("qi-bench-evaluation-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    const fs::path project = folder / "Projekt";
    const fs::path program = folder / "Programm";
    fs::create_directories(project / "Inventur");
    fs::create_directories(program);

    const qi::bench::Installation installation = qi::bench::makeInstallation(
        folder, project, [&](const qi::demo::Installation& inst) { writeFloorObjects(inst, folder); });
    if (installation.rooms.empty()) {
        std::printf("the installation could not be made\n");
        return 1;
    }
    const std::vector<std::string>& files = installation.files;
    const std::vector<std::pair<std::int32_t, std::string>>& rooms = installation.rooms;
    const std::size_t objects = installation.objects, lines = installation.lines;

    TimedUser ui;
    qi::bench::LargeOrder large(project, program, installation, ui);
    qi::CAuftragDb& order = *large.order;
    const qi::Settings& settings = large.settings;

    qi::frmWork work(order, settings, ui);
    const double c0 = cpuSeconds(RUSAGE_SELF);
    const auto t0 = Clock::now();
    for (const std::string& f : files) {
        ui.fileChoices.push_back(f);
        work.pbAdd_Click();
    }
    const auto t1 = Clock::now();
    ui.stepStarts.clear();
    const bool evaluated = work.ReportDifferenzListe();
    const auto t2 = Clock::now();
    const double c2 = cpuSeconds(RUSAGE_SELF);
    const bool sameList = checkDifferenceList(order);
    const auto evaluationSteps = ui.stepStarts;
    const bool tallied = work.MakeArtikelAufstellung();
    const auto t3 = Clock::now();
    const bool listed = work.MakeInvListe();
    const auto t4 = Clock::now();
    const long peak = qi::bench::peakKilobytes();

    std::map<std::string, long> ours;
    const qi::Recordset types =
        order.database()->query("SELECT substr(stTyp, 1, 2), count(*) FROM T_Differenzliste GROUP BY 1 ORDER BY 1");
    for (const auto& t : types.rows())
        ours[qi::toText(t[0])] = long(qi::toLong(t[1]));
    const long scans = long(qi::toLong(order.database()->scalar("SELECT count(*) FROM T_DatInventur")));
    const long diffRows = long(qi::toLong(order.database()->scalar("SELECT count(*) FROM T_Differenzliste")));
    const long invRows = long(qi::toLong(order.database()->scalar("SELECT count(*) FROM T_Invliste")));

    writeFloorRooms(order, folder);
    std::map<std::string, long> floor;
    double floorCpu = 0;
    const double floorTime = floorSeconds(folder, files, floor, floorCpu);

    const double import = seconds(t0, t1), evaluation = seconds(t1, t2);
    std::printf("installation: %zu rooms, %zu INVENTAR objects; order: %d rooms; %zu lines in %d files\n",
                rooms.size(), objects, qi::bench::orderRooms(), lines, qi::bench::kFiles);
    std::printf("import:                 %7.3f s (%ld scan rows, %zu conflicts asked, %zu messages)\n", import, scans,
                ui.conflicts.size(), ui.messages.size());
    std::printf("evaluation:             %7.3f s (%ld difference rows)%s\n", evaluation, diffRows,
                evaluated ? "" : " FAILED");
    for (std::size_t i = 0; i < evaluationSteps.size(); ++i)
        std::printf("  %-36s %6.3f s\n", evaluationSteps[i].first.c_str(),
                    seconds(evaluationSteps[i].second, i + 1 < evaluationSteps.size() ? evaluationSteps[i + 1].second : t2));
    std::printf("article tally:          %7.3f s%s\n", seconds(t2, t3), tallied ? "" : " FAILED");
    std::printf("inventory list:         %7.3f s (%ld rows)%s\n", seconds(t3, t4), invRows, listed ? "" : " FAILED");
    std::printf("sqlite3 shell floor:    %7.3f s (load and classify)\n", floorTime);
    std::printf("ratio (import + evaluation) / floor: %.2f wall clock, %.2f processor time (%.3f s / %.3f s)\n",
                (import + evaluation) / floorTime, (c2 - c0) / floorCpu, c2 - c0, floorCpu);
    std::printf("peak memory: %.1f MB\n", double(peak) / 1024.0);
    bool same = ours.size() == floor.size();
    std::printf("category      ours   floor\n");
    for (const auto& [typ, n] : ours) {
        const long f = floor.count(typ) ? floor.at(typ) : -1;
        same = same && f == n;
        std::printf("  %-4s %10ld %7ld\n", typ.c_str(), n, f);
    }
    std::printf("counts per category %s\n", same ? "agree" : "DIFFER");

    order.CloseDb();
    fs::remove_all(folder);
    return same && sameList && evaluated && tallied && listed ? 0 : 1;
}
