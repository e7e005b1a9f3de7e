// Rows per second for 100,000 AddNewDatInventurRec calls in one transaction,
// against the sqlite3 shell inserting the same rows from a prepared SQL file.

#include "CAuftragDb.h"
#include "OrderSchema.h"
#include "ScriptedUserInteraction.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kRows = 100000;

qi::CDatInventurRec row(int i)
{
    qi::CDatInventurRec r;
    r.stMitarbNr = "17";
    r.stAuftragsNr = "4711";
    r.Datum = "01.02.2015";
    r.Uhrzeit = "10:" + std::to_string(10 + i % 50) + ":00";
    r.stRaum = std::to_string(100 + i % 1000);
    r.stInvNr = "INV" + std::to_string(1000000 + i);
    r.stArtNr = "ART" + std::to_string(i % 60);
    r.stTaet = "I";
    r.lDatID = 1 + i / 10000;
    return r;
}

double seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

} // namespace

int main()
{
    const fs::path dir = fs::temp_directory_path() / "qinventur-bench-addnew";
    fs::remove_all(dir);
    fs::create_directories(dir);

    // Our path: the record operation, one transaction.
    const std::string ours = (dir / "ours.mdb").string();
    {
        auto db = qi::Database::create(ours);
        qi::createOrderSchema(*db);
    }
    qi::ScriptedUserInteraction ui;
    qi::CAuftragDb db(ui);
    db.setDbPath(ours);
    if (!db.OpenDb()) {
        std::fprintf(stderr, "%s\n", db.LastError().c_str());
        return 1;
    }
    const auto t0 = Clock::now();
    {
        qi::Database::Transaction tx(*db.database());
        for (int i = 0; i < kRows; ++i) {
            qi::CDatInventurRec r = row(i);
            bool duplicate = false;
            if (!db.AddNewDatInventurRec(&r, duplicate) || duplicate) {
                std::fprintf(stderr, "row %d: %s\n", i, db.LastError().c_str());
                return 1;
            }
        }
        tx.commit();
    }
    const auto t1 = Clock::now();
    db.CloseDb();

    // The shell: same table shape (NOCASE stands in for our collation), same rows, one transaction.
    const std::string shellDb = (dir / "shell.db").string();
    const std::string script = (dir / "rows.sql").string();
    {
        std::ofstream sql(script);
        sql << "CREATE TABLE T_DatInventur (lID INTEGER PRIMARY KEY AUTOINCREMENT, lDatID INTEGER DEFAULT 0,"
               " stMitarbNr TEXT COLLATE NOCASE DEFAULT '', stAuftragsNr TEXT COLLATE NOCASE DEFAULT '',"
               " Datum TEXT COLLATE NOCASE DEFAULT '', Uhrzeit TEXT COLLATE NOCASE DEFAULT '',"
               " stRaum TEXT COLLATE NOCASE DEFAULT '', stInvNr TEXT COLLATE NOCASE DEFAULT '',"
               " stArtNr TEXT COLLATE NOCASE DEFAULT '', stTaet TEXT COLLATE NOCASE DEFAULT '',"
               " iReihenfolge SMALLINT DEFAULT 0 CHECK (iReihenfolge BETWEEN -32768 AND 32767));\n"
               "CREATE UNIQUE INDEX T_DatInventur_stInvNr ON T_DatInventur (stInvNr);\n"
               "CREATE INDEX T_DatInventur_stRaum ON T_DatInventur (stRaum, iReihenfolge);\n"
               "CREATE INDEX T_DatInventur_Gruppe ON T_DatInventur (stRaum, Datum, lDatID);\n"
               "CREATE INDEX T_DatInventur_stArtNr ON T_DatInventur (stArtNr);\n"
               "BEGIN;\n";
        for (int i = 0; i < kRows; ++i) {
            const qi::CDatInventurRec r = row(i);
            sql << "INSERT INTO T_DatInventur (stMitarbNr,stAuftragsNr,Datum,Uhrzeit,stRaum,stInvNr,stArtNr,stTaet,"
                   "iReihenfolge,lDatID) VALUES ('"
                << r.stMitarbNr << "','" << r.stAuftragsNr << "','" << r.Datum << "','" << r.Uhrzeit << "','"
                << r.stRaum << "','" << r.stInvNr << "','" << r.stArtNr << "','" << r.stTaet << "',0," << r.lDatID
                << ");\n";
        }
        sql << "COMMIT;\n";
    }
    const std::string cmd = "sqlite3 '" + shellDb + "' < '" + script + "'";
    const auto s0 = Clock::now();
    const int rc = std::system(cmd.c_str());
    const auto s1 = Clock::now();
    if (rc != 0) {
        std::fprintf(stderr, "sqlite3 shell failed (%d)\n", rc);
        return 1;
    }

    const double ourSec = seconds(t0, t1), shellSec = seconds(s0, s1);
    std::printf("AddNewDatInventurRec: %d rows in %.3f s = %.0f rows/s\n", kRows, ourSec, kRows / ourSec);
    std::printf("sqlite3 shell:        %d rows in %.3f s = %.0f rows/s\n", kRows, shellSec, kRows / shellSec);
    std::printf("ratio (ours / shell): %.2fx (target: within 3x)\n", ourSec / shellSec);
    fs::remove_all(dir);
    return 0;
}
