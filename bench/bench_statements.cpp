// Time of the classification statements of an order with 1,000 rooms, 100,000 Soll
// rows and 100,000 scans, each statement on its own and the whole sequence, against
// the sqlite3 shell running a set-based script of the same classification on its own
// copy of the same data (the shell compares text with NOCASE).

#include "CAuftragDb.h"
#include "OrderSchema.h"
#include "ScriptedUserInteraction.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

double seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

// The same rows for both copies: 1,000 rooms R0001..R1000, 100 Soll objects a room;
// of the scans 80 % lie in their own room, 10 % in the next room, 10 % are numbers
// the order does not expect (one in ten of those in a room outside the order).
constexpr const char* kData = R"sql(
BEGIN;
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000)
INSERT INTO T_Raum (stRaumNr, ststatus, stAuftrag) SELECT printf('R%04d', i), 'E', 'A1' FROM n;
WITH RECURSIVE n(j) AS (SELECT 0 UNION ALL SELECT j + 1 FROM n WHERE j < 99999)
INSERT INTO T_Differenzliste (lRaumID, stSollInvNR, stBeschreibung, stArtNr, stTyp)
SELECT j / 100 + 1, printf('INV%06d', j), 'Objekt ' || (j * 7919 % 1000), 'ART' || (j % 60),
 '3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.' FROM n;
WITH RECURSIVE n(j) AS (SELECT 0 UNION ALL SELECT j + 1 FROM n WHERE j < 99999)
INSERT INTO T_DatInventur (lDatID, stMitarbNr, stAuftragsNr, Datum, Uhrzeit, stRaum, stInvNr, stArtNr, stTaet)
SELECT 1 + j / 20000, '17', '4711', printf('%02d.02.2024', 1 + j % 3), printf('10:%02d:%02d', j / 60 % 60, j % 60),
 CASE WHEN j % 10 < 8 THEN printf('r%04d', j / 100 + 1)
      WHEN j % 10 = 8 THEN printf('R%04d ', (j / 100 + 1) % 1000 + 1)
      WHEN j % 100 = 99 THEN printf('X%04d', j / 100 + 1)
      ELSE printf('R%04d', j / 100 + 1) END,
 CASE WHEN j % 10 < 9 THEN printf('INV%06d', j) ELSE printf('NEU%06d', j) END, 'ART' || (j % 60), 'I' FROM n;
COMMIT;
)sql";

constexpr const char* kShellSchema = R"sql(
CREATE TABLE T_Raum (lID INTEGER PRIMARY KEY AUTOINCREMENT, lIdRB INTEGER DEFAULT 0, stRaumNr TEXT COLLATE NOCASE DEFAULT '',
 ststatus TEXT COLLATE NOCASE DEFAULT '', stAuftrag TEXT COLLATE NOCASE DEFAULT '', Datum TEXT COLLATE NOCASE DEFAULT '',
 Uhrzeit TEXT COLLATE NOCASE DEFAULT '', iAnzahl SMALLINT DEFAULT 0 CHECK (iAnzahl BETWEEN -32768 AND 32767), lDatID INTEGER DEFAULT 0);
CREATE INDEX T_Raum_stRaumNr ON T_Raum (stRaumNr);
CREATE TABLE T_DatInventur (lID INTEGER PRIMARY KEY AUTOINCREMENT, lDatID INTEGER DEFAULT 0, stMitarbNr TEXT COLLATE NOCASE DEFAULT '',
 stAuftragsNr TEXT COLLATE NOCASE DEFAULT '', Datum TEXT COLLATE NOCASE DEFAULT '', Uhrzeit TEXT COLLATE NOCASE DEFAULT '',
 stRaum TEXT COLLATE NOCASE DEFAULT '', stInvNr TEXT COLLATE NOCASE DEFAULT '', stArtNr TEXT COLLATE NOCASE DEFAULT '',
 stTaet TEXT COLLATE NOCASE DEFAULT '', iReihenfolge SMALLINT DEFAULT 0 CHECK (iReihenfolge BETWEEN -32768 AND 32767));
CREATE UNIQUE INDEX T_DatInventur_stInvNr ON T_DatInventur (stInvNr);
CREATE INDEX T_DatInventur_stRaum ON T_DatInventur (stRaum, iReihenfolge);
CREATE INDEX T_DatInventur_Gruppe ON T_DatInventur (stRaum, Datum, lDatID);
CREATE TABLE T_Differenzliste (lID INTEGER PRIMARY KEY AUTOINCREMENT, lRaumID INTEGER DEFAULT 0, stSollInvNR TEXT COLLATE NOCASE DEFAULT '',
 stIstInvNR TEXT COLLATE NOCASE DEFAULT '', stBeschreibung TEXT COLLATE NOCASE DEFAULT '', stZiel TEXT COLLATE NOCASE DEFAULT '',
 stQuelle TEXT COLLATE NOCASE DEFAULT '', stQuarn TEXT COLLATE NOCASE DEFAULT '', stArtNr TEXT COLLATE NOCASE DEFAULT '',
 Datum TEXT COLLATE NOCASE DEFAULT '', Uhrzeit TEXT COLLATE NOCASE DEFAULT '', stTyp TEXT COLLATE NOCASE DEFAULT '',
 iReihenfolge SMALLINT DEFAULT 0 CHECK (iReihenfolge BETWEEN -32768 AND 32767));
CREATE INDEX T_Differenzliste_stSollInvNR ON T_Differenzliste (stSollInvNR);
CREATE INDEX T_Differenzliste_stIstInvNR ON T_Differenzliste (stIstInvNR);
CREATE INDEX T_Differenzliste_lRaumID ON T_Differenzliste (lRaumID);
)sql";

// The classification, set-based, one statement after another (each commits on its own).
// NOCASE does not ignore trailing blanks, so the rooms are compared trimmed.
constexpr const char* kShellScript = R"sql(
UPDATE T_Differenzliste SET stIstInvNR = s.stInvNr, Datum = s.Datum, Uhrzeit = s.Uhrzeit, stTyp = '1 OK'
 FROM T_Raum AS r, T_DatInventur AS s WHERE r.lID = T_Differenzliste.lRaumID
 AND s.stInvNr = T_Differenzliste.stSollInvNR AND rtrim(s.stRaum) = r.stRaumNr;
INSERT INTO T_Differenzliste (stIstInvNR, lRaumID, Datum, Uhrzeit, stTyp)
 SELECT s.stInvNr, r.lID, s.Datum, s.Uhrzeit, '2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)'
 FROM T_DatInventur AS s JOIN T_Raum AS r ON rtrim(s.stRaum) = r.stRaumNr
 WHERE NOT EXISTS (SELECT 1 FROM T_Differenzliste AS d WHERE d.stIstInvNR = s.stInvNr) ORDER BY s.lID, r.lID;
UPDATE T_Differenzliste SET stZiel = s.stRaum, Datum = s.Datum, Uhrzeit = s.Uhrzeit,
 stTyp = '3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)' FROM T_DatInventur AS s
 WHERE s.stInvNr = T_Differenzliste.stSollInvNR AND T_Differenzliste.stIstInvNR = '';
UPDATE T_Differenzliste SET stQuelle = m.stRaumNr, stQuarn = m.stRaumNr,
 stTyp = '2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)'
 FROM (SELECT d.stSollInvNR AS nr, r.stRaumNr FROM T_Differenzliste AS d JOIN T_Raum AS r ON r.lID = d.lRaumID
       WHERE d.stZiel <> '') AS m WHERE T_Differenzliste.stIstInvNR = m.nr;
UPDATE T_Differenzliste SET stQuarn = '' WHERE EXISTS (SELECT 1 FROM T_Raum AS r WHERE r.stRaumNr = T_Differenzliste.stQuarn);
UPDATE T_Raum SET ststatus = 'E', Datum = g.Datum, lDatID = g.lDatID, iAnzahl = g.n FROM
 (SELECT rtrim(stRaum) AS stRaum, Datum, lDatID, n, ROW_NUMBER() OVER (PARTITION BY rtrim(stRaum) ORDER BY Datum, lDatID) AS k
  FROM (SELECT stRaum, Datum, lDatID, count(*) AS n FROM T_DatInventur GROUP BY rtrim(stRaum), Datum, lDatID)) AS g
 WHERE g.k = 1 AND T_Raum.stRaumNr = g.stRaum;
UPDATE T_DatInventur SET iReihenfolge = p.n FROM (SELECT lID, ROW_NUMBER() OVER (PARTITION BY rtrim(stRaum) ORDER BY lID) AS n
 FROM T_DatInventur) AS p WHERE T_DatInventur.lID = p.lID;
DELETE FROM T_Differenzliste WHERE lRaumID > 250;
UPDATE T_Differenzliste SET iReihenfolge = p.n FROM (SELECT lID, ROW_NUMBER() OVER (ORDER BY
  CASE WHEN stSollInvNR <> '' AND stIstInvNR <> '' THEN 1 WHEN stIstInvNR = '' THEN 3 ELSE 2 END, stBeschreibung, lID) AS n
 FROM T_Differenzliste) AS p WHERE T_Differenzliste.lID = p.lID;
)sql";

} // namespace

int main()
{
    const fs::path dir = fs::temp_directory_path() / "qinventur-bench-statements";
    fs::remove_all(dir);
    fs::create_directories(dir);
    const std::string ours = (dir / "order.mdb").string();
    const std::string shell = (dir / "shell.db").string();

    {
        auto db = qi::Database::create(ours);
        qi::createOrderSchema(*db);
        db->executeScript(kData);
    }
    std::ofstream(dir / "schema.sql") << kShellSchema << kData;
    std::ofstream(dir / "classify.sql") << kShellScript;
    if (std::system(("/usr/bin/sqlite3 " + shell + " < " + (dir / "schema.sql").string()).c_str()) != 0) {
        std::fprintf(stderr, "sqlite3 shell failed to load the data\n");
        return 1;
    }

    qi::ScriptedUserInteraction ui;
    qi::CAuftragDb db(ui);
    db.setDbPath(ours);
    if (!db.OpenDb()) {
        std::fprintf(stderr, "%s\n", db.LastError().c_str());
        return 1;
    }
    struct Step {
        const char* name;
        std::function<bool()> run;
    };
    const Step steps[] = {{"MakeIstInvOk", [&] { return db.MakeIstInvOk(); }},
                          {"MakeIstScanExtra", [&] { return db.MakeIstScanExtra(); }},
                          {"GetRaumGefunden", [&] { return db.GetRaumGefunden(); }},
                          {"SetStatusRoomsByDB", [&] { return db.SetStatusRoomsByDB(); }},
                          {"WriteReihenfolgeDatInventur", [&] { return db.WriteReihenfolgeDatInventur(); }},
                          // 119,000 rows would overflow the 16-bit print position: the list is
                          // cut to the rooms 1-250 (about 30,000 rows) on both sides first.
                          {"(cut list to 250 rooms)",
                           [&] { return db.database()->execute("DELETE FROM T_Differenzliste WHERE lRaumID > 250") > 0; }},
                          {"WriteReihenfolgeDiffListe", [&] { return db.WriteReihenfolgeDiffListe(); }}};
    double total = 0;
    for (const auto& s : steps) {
        const auto t0 = Clock::now();
        const bool ok = s.run();
        const double t = seconds(t0, Clock::now());
        total += t;
        std::printf("%-28s %8.3f s%s\n", s.name, t, ok ? "" : "  FAILED");
    }
    const auto t0 = Clock::now();
    const int rc = std::system(("/usr/bin/sqlite3 " + shell + " < " + (dir / "classify.sql").string()).c_str());
    const double tShell = seconds(t0, Clock::now());

    auto count = [&](const char* sql) { return qi::toLong(db.database()->scalar(sql)); };
    std::printf("rows of the difference list after the cut: %lld (1 OK %lld, 2a %lld, 2b %lld, 3a %lld, 3b %lld)\n",
                static_cast<long long>(count("SELECT count(*) FROM T_Differenzliste")),
                static_cast<long long>(count("SELECT count(*) FROM T_Differenzliste WHERE stTyp = '1 OK'")),
                static_cast<long long>(count("SELECT count(*) FROM T_Differenzliste WHERE stTyp LIKE '2a%'")),
                static_cast<long long>(count("SELECT count(*) FROM T_Differenzliste WHERE stTyp LIKE '2b%'")),
                static_cast<long long>(count("SELECT count(*) FROM T_Differenzliste WHERE stTyp LIKE '3a%'")),
                static_cast<long long>(count("SELECT count(*) FROM T_Differenzliste WHERE stTyp LIKE '3b%'")));
    std::printf("whole sequence               %8.3f s\n", total);
    std::printf("sqlite3 shell script         %8.3f s%s\n", tShell, rc == 0 ? "" : "  FAILED");
    std::printf("ratio sequence / shell       %8.2f (target <= 2)\n", total / tShell);
    db.CloseDb();
    fs::remove_all(dir);
    return rc == 0 && ui.messages.empty() ? 0 : 1;
}
