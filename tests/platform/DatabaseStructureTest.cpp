// The tables and columns a database file must hold to be of its kind.

#include "DatabaseStructure.h"
#include "TestSupport.h"

using namespace qi;

namespace {

void makeKind(Database& db)
{
    db.executeScript("CREATE TABLE T_Eins (lID INTEGER PRIMARY KEY, stName TEXT); CREATE TABLE T_Zwei (lWert INTEGER);");
}

} // namespace

TEST(DatabaseStructure, IsReadFromTheStatementsThatMakeANewFile)
{
    const Structure s = structureMadeBy(makeKind);
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[0].name, "T_Eins");
    EXPECT_EQ(s[0].columns, (std::vector<std::string>{"lID", "stName"}));
    EXPECT_EQ(s[1].name, "T_Zwei");
    EXPECT_EQ(s[1].columns, std::vector<std::string>{"lWert"});
}

TEST(DatabaseStructure, NamesTheFirstTableOrColumnAFileLacks)
{
    const Structure s = structureMadeBy(makeKind);
    auto db = Database::inMemory();
    EXPECT_EQ(missingStructure(*db, s), "die Tabelle T_Eins fehlt");
    db->executeScript("CREATE TABLE t_eins (LID INTEGER, andere TEXT)");
    EXPECT_EQ(missingStructure(*db, s), "in der Tabelle T_Eins fehlt die Spalte stName");
    db->executeScript("ALTER TABLE t_eins ADD COLUMN STNAME TEXT");
    EXPECT_EQ(missingStructure(*db, s), "die Tabelle T_Zwei fehlt");
    db->executeScript("CREATE TABLE T_Zwei (lWert INTEGER, mehr TEXT); CREATE TABLE T_Drei (x)");
    // Letter case does not matter, and more than the kind holds is no fault.
    EXPECT_EQ(missingStructure(*db, s), "");
}
