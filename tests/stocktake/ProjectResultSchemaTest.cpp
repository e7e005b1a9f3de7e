#include "ProjectResultSchema.h"

#include "Database.h"
#include "Value.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

TEST(ProjectResultSchema, ListsAreFoundByTheirCommandLineNames)
{
    EXPECT_EQ(listTable("verschoben"), "L_Verschoben");
    EXPECT_EQ(listTable("ueberschneidung"), "L_Ueberschneidung");
    EXPECT_EQ(listTable("hinweise"), "L_Hinweis");
    EXPECT_EQ(listTable("Verschoben"), "");
    EXPECT_EQ(listTable("alles"), "");
}

TEST(ProjectResultSchema, ListNamesAreTheCommandLineNamesInTheirOrderEachWithItsTable)
{
    const std::vector<std::string> expected = {"verschoben", "doppelt",    "zuviel",          "unbekannt",
                                               "fehlend",    "ungeprueft", "ueberschneidung", "hinweise"};
    EXPECT_EQ(listNames(), expected);
    auto db = Database::inMemory();
    createProjectResultSchema(*db);
    for (const std::string& name : listNames())
        EXPECT_TRUE(db->tableExists(listTable(name))) << name;
}

TEST(ProjectResultSchema, NumbersCompareAsTheOrderDatabasesCompareThem)
{
    auto db = Database::inMemory();
    createProjectResultSchema(*db);
    db->execute("INSERT INTO P_Scan (stAuftrag, stInvNr) VALUES ('EG', 'i100001  ')");
    const Recordset rows = db->query("SELECT count(*) FROM P_Scan WHERE stInvNr = 'I100001'");
    EXPECT_EQ(toText(rows.rows().at(0).at(0)), "1");
    const Recordset defaults = db->query("SELECT iScans, dProzent, stFehler FROM P_Auftrag");
    EXPECT_TRUE(defaults.rows().empty());
}

} // namespace
} // namespace qi
