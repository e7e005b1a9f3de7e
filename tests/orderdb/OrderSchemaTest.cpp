#include "OrderSchema.h"
#include "TestSupport.h"

using namespace qi;

TEST(OrderSchema, TemplateFileHoldsTablesAndUniqueIndexes)
{
    const std::string file = std::string(QI_PROGRAM_DIR) + "/Leeres Projekt/QAuftrag.mdb";
    auto db = Database::open(file, true);
    for (const char* t : {"T_Abschreibung", "T_Artikelliste", "T_Dateien", "T_DatInventur", "T_Differenzliste",
                          "T_Invliste", "T_Raum", "T_Auftrag"})
        EXPECT_TRUE(db->tableExists(t)) << t;
    const Recordset idx = db->query("SELECT name FROM sqlite_master WHERE type='index' AND sql LIKE 'CREATE UNIQUE%' ORDER BY name");
    ASSERT_EQ(idx.size(), 2u);
    EXPECT_EQ(toText(idx.rows()[0][0]), "T_DatInventur_stInvNr");
    EXPECT_EQ(toText(idx.rows()[1][0]), "T_Dateien_stName");
}

TEST(OrderSchema, ColumnTypesAndDefaults)
{
    test::TempDir dir;
    test::makeOrderDatabase(dir.file("o.mdb"));
    auto db = Database::open(dir.file("o.mdb"));
    const TableInfo& diff = db->tableInfo("t_differenzliste");
    EXPECT_GE(diff.column("stObjBemerkung"), 0);
    EXPECT_TRUE(diff.columns[std::size_t(diff.column("iReihenfolge"))].isInteger16);
    // Rows inserted without naming the text columns get empty texts, not Null.
    db->execute("INSERT INTO T_Differenzliste (stIstInvNR) VALUES ('1')");
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_Differenzliste WHERE stSollInvNR = '' AND stQuelle = '' AND stZiel = ''")), 1);
    // The inventory list's description stays Null.
    db->execute("INSERT INTO T_Invliste (stRaumNr) VALUES ('1')");
    EXPECT_TRUE(isNull(db->scalar("SELECT stBeschreibung FROM T_Invliste")));
    EXPECT_TRUE(db->tableInfo("T_Auftrag").column("stAuftrag") >= 0);
}
