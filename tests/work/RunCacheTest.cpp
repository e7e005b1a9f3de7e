// The larger cache of a long run: it holds the pages the run used while it lives, and gives
// them back when it ends, so that the memory of a run over a large order is not kept under
// what the program does next (a report's rows).

#include "Database.h"
#include "RunCache.h"
#include "TestSupport.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace qi::test {
namespace {

/// Bytes of page cache the connection holds.
int cacheUsed(Database& db)
{
    int used = 0, highWater = 0;
    sqlite3_db_status(db.handle(), SQLITE_DBSTATUS_CACHE_USED, &used, &highWater, 0);
    return used;
}

TEST(RunCacheTest, ARunHoldsItsPagesAndGivesThemBackWhenItEnds)
{
    TempDir dir;
    auto db = Database::create(dir.file("t.mdb"));
    db->executeScript("PRAGMA cache_size = -1024");
    db->executeScript("CREATE TABLE T_X (lID INTEGER PRIMARY KEY, stText TEXT)");
    const std::string text(2000, 'x');
    {
        const RunCache cache(db.get(), 16 * 1024);
        Database::Transaction tx(*db);
        for (int i = 0; i < 4000; ++i)
            db->execute("INSERT INTO T_X (stText) VALUES (?1)", {text});
        tx.commit();
        // 8 MB of rows: more than the everyday cache of 1 MB holds, less than the run's.
        EXPECT_GT(cacheUsed(*db), 4 * 1024 * 1024);
        EXPECT_EQ(toLong(db->scalar("PRAGMA cache_size")), -16 * 1024);
    }
    EXPECT_EQ(toLong(db->scalar("PRAGMA cache_size")), -1024);
    EXPECT_LE(cacheUsed(*db), 1200 * 1024);
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X")), 4000);
}

} // namespace
} // namespace qi::test
