#include "Database.h"
#include "IndexesSetAside.h"
#include "TestSupport.h"

#include <stdexcept>

using namespace qi;

namespace {

class IndexesSetAsideTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        db = Database::create(dir.file("t.mdb"));
        db->executeScript("CREATE TABLE T_X (lID INTEGER PRIMARY KEY AUTOINCREMENT, stName TEXT COLLATE JET DEFAULT '',"
                          " lRaum INTEGER DEFAULT 0);"
                          "CREATE INDEX T_X_lRaum ON T_X (lRaum);"
                          "CREATE UNIQUE INDEX T_X_stName ON T_X (stName);"
                          "CREATE TABLE T_Y (lID INTEGER PRIMARY KEY, stName TEXT);"
                          "CREATE INDEX T_Y_stName ON T_Y (stName);");
    }
    /// Name and statement of every index, by name.
    std::string indexes()
    {
        std::string all;
        const Recordset rs = db->query("SELECT name, sql FROM sqlite_master WHERE type = 'index' ORDER BY name");
        for (const auto& r : rs.rows())
            all += toText(r[0]) + ": " + toText(r[1]) + "\n";
        return all;
    }
    std::int64_t rows() { return toLong(db->scalar("SELECT count(*) FROM T_X")); }
    test::TempDir dir;
    std::unique_ptr<Database> db;
};

TEST_F(IndexesSetAsideTest, TheTablesIndexesAreGoneWhileRowsGoInAndComeBackAsTheyWere)
{
    const std::string before = indexes();
    {
        IndexesSetAside aside(*db, "t_x");
        EXPECT_EQ(indexes(), "T_Y_stName: CREATE INDEX T_Y_stName ON T_Y (stName)\n");
        db->execute("INSERT INTO T_X (stName, lRaum) VALUES ('b', 2), ('A', 1)");
        aside.restore();
        EXPECT_EQ(indexes(), before);
    }
    EXPECT_EQ(indexes(), before);
    EXPECT_EQ(rows(), 2);
    // The unique index compares as it did: a number that differs in letter case only is refused.
    try {
        db->execute("INSERT INTO T_X (stName) VALUES ('a ')");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DuplicateKey);
    }
    EXPECT_EQ(toText(db->scalar("SELECT stName FROM T_X INDEXED BY T_X_stName WHERE stName = 'B'")), "b");
}

TEST_F(IndexesSetAsideTest, AnErrorMeanwhileKeepsTheRowsAndTheIndexes)
{
    const std::string before = indexes();
    try {
        IndexesSetAside aside(*db, "T_X");
        db->execute("INSERT INTO T_X (stName) VALUES ('x')");
        throw std::runtime_error("Fehler beim Lesen");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(indexes(), before);
    EXPECT_EQ(rows(), 1);
}

TEST_F(IndexesSetAsideTest, IndexesThatCantBeMadeAnewUndoTheRowsWrittenMeanwhile)
{
    db->execute("INSERT INTO T_X (stName) VALUES ('vorher')");
    const std::string before = indexes();
    Database::Transaction outer(*db);
    {
        IndexesSetAside aside(*db, "T_X");
        db->execute("INSERT INTO T_X (stName) VALUES ('Doppelt'), ('doppelt')");
        try {
            aside.restore();
            FAIL();
        } catch (const DbError& e) {
            EXPECT_EQ(e.number(), dberr::DuplicateKey);
        }
    }
    outer.commit();
    EXPECT_EQ(indexes(), before);
    EXPECT_EQ(rows(), 1);
}

TEST_F(IndexesSetAsideTest, WithoutATableTheIndexesOfEveryTableAreDroppedAndTheirStatementsMakeThemAnew)
{
    const std::string before = indexes();
    const std::vector<std::string> statements = dropMadeIndexes(*db);
    EXPECT_EQ(statements.size(), 3u);
    EXPECT_EQ(indexes(), "");
    for (const std::string& statement : statements)
        db->execute(statement);
    EXPECT_EQ(indexes(), before);
}

} // namespace
