#include "Database.h"
#include "JetCollation.h"
#include "TestSupport.h"

using namespace qi;

TEST(JetCollation, IgnoresLetterCase)
{
    EXPECT_TRUE(jetEqual("ABC", "abc"));
    EXPECT_TRUE(jetEqual("Acción", "ACCIÓN"));
    EXPECT_TRUE(jetEqual("ÄÖÜ", "äöü"));
}

TEST(JetCollation, IgnoresTrailingBlanksOnly)
{
    EXPECT_TRUE(jetEqual("abc", "abc  "));
    EXPECT_TRUE(jetEqual("A Bad One  ", "a bad one"));
    EXPECT_FALSE(jetEqual(" abc", "abc"));
}

TEST(JetCollation, KeepsAccents)
{
    EXPECT_FALSE(jetEqual("Müller", "Muller"));
    EXPECT_FALSE(jetEqual("acción", "accion"));
}

TEST(JetCollation, OrdersWithoutRegardToCase)
{
    EXPECT_LT(jetCompare("apfel", "Birne"), 0);
    EXPECT_GT(jetCompare("Zebra", "affe"), 0);
    EXPECT_LT(jetCompare("ab", "abc"), 0);
    EXPECT_EQ(jetCompare("", "   "), 0);
}

TEST(JetCollation, SurvivesInvalidUtf8)
{
    const std::string bad1("\xff\xfe", 2), bad2("\xc3", 1);
    EXPECT_NE(jetCompare(bad1, bad2), 0);
    EXPECT_EQ(jetCompare(bad1, bad1), 0);
}

class CollationInDb : public ::testing::Test {
protected:
    void SetUp() override
    {
        db = Database::create(dir.file("c.mdb"));
        db->executeScript("CREATE TABLE t (lID INTEGER PRIMARY KEY AUTOINCREMENT, s TEXT COLLATE JET);"
                          "CREATE UNIQUE INDEX t_s ON t(s);");
    }
    test::TempDir dir;
    std::unique_ptr<Database> db;
};

TEST_F(CollationInDb, EqualityInStatements)
{
    db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("Müller")});
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM t WHERE s = ?1", {std::string("MÜLLER  ")})), 1);
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM t WHERE s = ?1", {std::string("Muller")})), 0);
}

TEST_F(CollationInDb, UniqueIndexRefusesOtherCase)
{
    db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("abc")});
    try {
        db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("ABC")});
        FAIL() << "duplicate accepted";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DuplicateKey);
        EXPECT_NE(e.description().find("mehrfach vorkommende Werte"), std::string::npos);
    }
    EXPECT_THROW(db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("abc ")}), DbError);
    EXPECT_NO_THROW(db->execute("INSERT INTO t(s) VALUES (?1)", {std::string("ábc")}));
}

TEST_F(CollationInDb, GroupByFoldsCase)
{
    db->executeScript("DROP INDEX t_s;");
    for (const char* s : {"Raum", "RAUM", "raum ", "Räume"})
        db->execute("INSERT INTO t(s) VALUES (?1)", {std::string(s)});
    const Recordset rs = db->query("SELECT s, count(*) FROM t GROUP BY s ORDER BY s");
    EXPECT_EQ(rs.size(), 2u);
}
