#include "Database.h"
#include "FileSystem.h"
#include "TableRecordset.h"
#include "TestSupport.h"

using namespace qi;

class DatabaseTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        path = dir.file("t.mdb");
        auto db = Database::create(path);
        db->executeScript("CREATE TABLE T_X (lID INTEGER PRIMARY KEY AUTOINCREMENT, stName TEXT COLLATE JET DEFAULT '',"
                          " iZahl SMALLINT DEFAULT 0 CHECK (iZahl BETWEEN -32768 AND 32767), lWert INTEGER DEFAULT 0);"
                          "CREATE UNIQUE INDEX T_X_stName ON T_X(stName);");
    }
    std::unique_ptr<Database> open() { return Database::open(path); }
    test::TempDir dir;
    std::string path;
};

TEST_F(DatabaseTest, OpeningAMissingFileFailsAndCreatesNothing)
{
    const std::string missing = dir.file("fehlt.mdb");
    try {
        Database::open(missing);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::FileNotFound);
        EXPECT_NE(e.description().find("fehlt.mdb"), std::string::npos);
    }
    EXPECT_FALSE(fileExists(missing));
}

TEST_F(DatabaseTest, OpeningAFileThatIsNoDatabaseFails)
{
    const std::string other = dir.file("text.mdb");
    test::writeFile(other, std::string(2000, 'x'));
    try {
        Database::open(other);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::UnrecognizedFormat);
    }
    EXPECT_EQ(test::readFile(other), std::string(2000, 'x'));
}

TEST_F(DatabaseTest, AutoNumberIsReadableAtAddNewAndNeverReused)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    const auto k1 = rs.addNew();
    EXPECT_EQ(k1, 1);
    rs.setField("stName", std::string("a"));
    rs.update();
    const auto k2 = rs.addNew();
    rs.setField("stName", std::string("b"));
    rs.update();
    EXPECT_EQ(k2, 2);
    // Abandoned row: its number is consumed.
    const auto k3 = rs.addNew();
    rs.cancelUpdate();
    EXPECT_EQ(k3, 3);
    // Deleting the newest row does not free its number.
    ASSERT_TRUE(rs.seek(k2));
    rs.remove();
    const auto k4 = rs.addNew();
    rs.setField("stName", std::string("c"));
    rs.update();
    EXPECT_EQ(k4, 4);
    db.reset();
    auto again = open();
    TableRecordset rs2(*again, "t_x");
    EXPECT_EQ(rs2.addNew(), 5);
}

TEST_F(DatabaseTest, UniqueViolationIsError3022AndLeavesTableUnchanged)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    rs.setField("stName", std::string("Stuhl"));
    rs.update();
    rs.addNew();
    rs.setField("stName", std::string("STUHL "));
    try {
        rs.update();
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DuplicateKey);
    }
    rs.cancelUpdate();
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X")), 1);
}

TEST_F(DatabaseTest, SixteenBitColumnsOverflow)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    rs.setField("iZahl", std::int64_t{32767});
    EXPECT_THROW(rs.setField("iZahl", std::int64_t{32768}), DbError);
    EXPECT_THROW(rs.setField("iZahl", std::int64_t{-32769}), DbError);
    rs.update();
    try {
        db->execute("UPDATE T_X SET iZahl = iZahl + 1");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::NumericOverflow);
    }
    EXPECT_EQ(toLong(db->scalar("SELECT iZahl FROM T_X")), 32767);
}

TEST_F(DatabaseTest, ValuesWithQuotesAndKeywordsRoundTrip)
{
    auto db = open();
    const std::vector<std::string> values = {"O'Brien", "Raum \"12\"", "1; DROP TABLE T_X; --",
                                             "' OR '1'='1", "SELECT * FROM T_X", "Müller €"};
    TableRecordset rs(*db, "T_X");
    std::vector<std::int64_t> keys;
    for (const auto& v : values) {
        keys.push_back(rs.addNew());
        rs.setField("stName", v);
        rs.update();
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_TRUE(rs.seek(keys[i]));
        EXPECT_EQ(toText(rs.field("STNAME")), values[i]);
        EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X WHERE stName = ?1", {values[i]})), 1);
    }
    EXPECT_TRUE(db->tableExists("T_X"));
}

TEST_F(DatabaseTest, SeekMissReportsNoMatch)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    rs.setIndex("PrimaryKey");
    EXPECT_FALSE(rs.seek(42));
    EXPECT_TRUE(rs.noMatch());
    EXPECT_THROW(rs.setIndex("stName"), DbError);
    EXPECT_THROW(rs.field("stName"), DbError);
}

TEST_F(DatabaseTest, UnknownTableAndFieldAreEngineErrors)
{
    auto db = open();
    try {
        TableRecordset rs(*db, "T_Nix");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::InputTableNotFound);
        EXPECT_NE(e.description().find("T_Nix"), std::string::npos);
    }
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    EXPECT_THROW(rs.setField("stNix", std::string("x")), DbError);
}

TEST_F(DatabaseTest, TransactionRollsBackUnlessCommitted)
{
    auto db = open();
    {
        Database::Transaction tx(*db);
        db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string("weg")});
    }
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X")), 0);
    {
        Database::Transaction tx(*db);
        db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string("bleibt")});
        {
            Database::Transaction inner(*db);
            db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string("innen")});
        }
        tx.commit();
    }
    const Recordset rs = db->query("SELECT stName FROM T_X");
    ASSERT_EQ(rs.size(), 1u);
    EXPECT_EQ(toText(rs.rows()[0][0]), "bleibt");
}

TEST_F(DatabaseTest, ReadOnlyRefusesChanges)
{
    auto db = Database::open(path, true);
    try {
        db->execute("INSERT INTO T_X(stName) VALUES ('x')");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::ReadOnly);
    }
}

TEST_F(DatabaseTest, WalkingATableGoesInKeyOrder)
{
    auto db = open();
    for (const char* s : {"c", "a", "b"})
        db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string(s)});
    TableRecordset rs(*db, "T_X");
    std::string seen;
    for (bool ok = rs.moveFirst(); ok && !rs.eof(); rs.moveNext())
        seen += toText(rs.field("stName"));
    EXPECT_EQ(seen, "cab");
    EXPECT_EQ(rs.recordCount(), 3u);
}
