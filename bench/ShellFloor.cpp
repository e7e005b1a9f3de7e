#include "ShellFloor.h"

#include "LargeOrder.h"

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace qi::bench {

namespace {

int runShell(const fs::path& db, const fs::path& script, const fs::path& output)
{
    const std::string cmd =
        "/usr/bin/sqlite3 '" + db.string() + "' < '" + script.string() + "' > '" + output.string() + "'";
    return std::system(cmd.c_str());
}

} // namespace

double cpuSeconds(int who)
{
    rusage u{};
    getrusage(who, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) + double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

void writeFloorObjects(const demo::Installation& inst, const fs::path& folder)
{
    std::ofstream objects(folder / "objects.csv", std::ios::binary);
    for (const demo::Object& o : inst.modules[0].objects)
        objects << o.name << "," << o.ort << "," << o.gebstruId << "," << o.gebstruTyp << "," << o.variante << "\n";
}

void writeFloorRooms(Database& order, const fs::path& folder)
{
    std::ofstream rooms(folder / "rooms.csv", std::ios::binary);
    const Recordset rs = order.query("SELECT lID, lIdRB, stRaumNr, ststatus FROM T_Raum");
    for (const auto& r : rs.rows())
        rooms << toLong(r[0]) << "," << toLong(r[1]) << "," << toText(r[2]) << "," << toText(r[3]) << "\n";
}

Floor runFloor(const fs::path& folder, const std::vector<std::string>& files)
{
    Floor floor;
    const fs::path db = folder / "floor.db";
    fs::remove(db);
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
    if (runShell(db, folder / "floor-setup.sql", folder / "floor-setup.out") != 0) {
        std::printf("floor set-up failed\n");
        floor.ok = false;
    }
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
    floor.cpu = cpuSeconds(RUSAGE_CHILDREN) - c0;
    floor.seconds = seconds(t0, t1);
    if (rc != 0) {
        std::printf("sqlite3 shell ended with %d\n", rc);
        floor.ok = false;
    }
    std::ifstream in(folder / "floor.out");
    std::string l;
    while (std::getline(in, l)) {
        const auto comma = l.find(',');
        if (comma != std::string::npos)
            floor.counts[l.substr(0, comma)] = std::stol(l.substr(comma + 1));
    }
    return floor;
}

} // namespace qi::bench
