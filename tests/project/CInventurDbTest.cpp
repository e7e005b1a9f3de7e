#include "CInventurDb.h"
#include "TestSupport.h"

#include <vector>

using namespace qi;

namespace {
struct FakeList : ListControl {
    std::vector<std::string> texts;
    std::vector<std::int32_t> data;
    int addItem(const std::string& text) override
    {
        texts.push_back(text);
        data.push_back(0);
        return int(texts.size()) - 1;
    }
    void setItemData(int index, std::int32_t d) override { data[std::size_t(index)] = d; }
};

class InventurDbTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        file = dir.file("QInventur.mdb");
        test::makeRegisterDatabase(file);
        reg.setDbPath(file);
        ASSERT_TRUE(reg.OpenDb()) << reg.LastError();
    }
    CAuftragRec order(const std::string& name)
    {
        CAuftragRec r;
        r.stBezeichung = name;
        r.stPfad = "\\Inventur\\" + name + ".mdb";
        r.erstellt = JetDate::fromParts(2026, 11, 23, 9, 30, 0);
        r.letzte_Aenderung = JetDate::fromParts(2026, 11, 24, 10, 0, 5);
        r.stErsteller = "Meier";
        r.stEditor = "Schulz";
        return r;
    }
    test::TempDir dir;
    std::string file;
    CInventurDb reg;
};
} // namespace

TEST_F(InventurDbTest, EmptyRegisterYieldsEmptyCollectionAndList)
{
    CAuftragRecColl coll;
    EXPECT_TRUE(reg.ReadAllAuftragRec2Coll(coll));
    EXPECT_EQ(coll.Count(), 0);
    FakeList list;
    EXPECT_TRUE(reg.ReadAllAuftragRec2Ctrl(list));
    EXPECT_TRUE(list.texts.empty());
}

TEST_F(InventurDbTest, DeletingAnUnknownIdFailsWithoutDescription)
{
    EXPECT_FALSE(reg.DelAuftragRec(42));
    EXPECT_EQ(reg.LastError(), "Der Datensatz konnte nicht gelöscht werden!");
}

TEST_F(InventurDbTest, RecordsRoundTripWithDates)
{
    CAuftragRec a = order("Nord");
    ASSERT_TRUE(reg.AddNewAuftragRec(&a));
    EXPECT_EQ(a.lID, 1);
    CAuftragRec b;
    ASSERT_TRUE(reg.ReadAuftragRec(1, &b));
    EXPECT_EQ(b.stBezeichung, "Nord");
    EXPECT_EQ(b.stPfad, "\\Inventur\\Nord.mdb");
    EXPECT_EQ(b.erstellt.toDisplayText(), "23.11.2026 09:30:00");
    EXPECT_EQ(b.letzte_Aenderung.toDisplayText(), "24.11.2026 10:00:05");
    EXPECT_EQ(b.stErsteller, "Meier");
    EXPECT_EQ(b.stEditor, "Schulz");
    b.stEditor = "Huber";
    ASSERT_TRUE(reg.EditAuftragRec(&b));
    CAuftragRec c;
    ASSERT_TRUE(reg.ReadAuftragRec(1, &c));
    EXPECT_EQ(c.stEditor, "Huber");
    EXPECT_TRUE(reg.DelAuftragRec(1));
    EXPECT_FALSE(reg.ReadAuftragRec(1, &c));
    EXPECT_EQ(reg.LastError(), "Der Datensatz konnte nicht gelesen werden!");
}

TEST_F(InventurDbTest, ListControlGetsNamesAndIds)
{
    CAuftragRec a = order("Nord"), b = order("Süd");
    ASSERT_TRUE(reg.AddNewAuftragRec(&a));
    ASSERT_TRUE(reg.AddNewAuftragRec(&b));
    FakeList list;
    ASSERT_TRUE(reg.ReadAllAuftragRec2Ctrl(list));
    EXPECT_EQ(list.texts, (std::vector<std::string>{"Nord", "Süd"}));
    EXPECT_EQ(list.data, (std::vector<std::int32_t>{1, 2}));
    CAuftragRecColl coll;
    ASSERT_TRUE(reg.ReadAllAuftragRec2Coll(coll));
    EXPECT_EQ(coll.Item("$2")->stBezeichung, "Süd");
}

TEST_F(InventurDbTest, FailureTextsWhenClosed)
{
    reg.CloseDb();
    CAuftragRec a = order("x");
    EXPECT_FALSE(reg.AddNewAuftragRec(&a));
    EXPECT_EQ(reg.LastError(), "Der Datensatz konnte nicht gespeichert werden!");
    EXPECT_FALSE(reg.EditAuftragRec(&a));
    EXPECT_EQ(reg.LastError(), "Der Datensatz konnte nicht aktualisiert werden!");
    EXPECT_FALSE(reg.ReadAuftragRec(1, &a));
    EXPECT_EQ(reg.LastError(), "Der Datensatz konnte nicht gelesen werden!");
    EXPECT_FALSE(reg.DelAuftragRec(1));
    EXPECT_EQ(reg.LastError(), "Der Datensatz konnte nicht gelöscht werden!");
    FakeList list;
    EXPECT_FALSE(reg.ReadAllAuftragRec2Ctrl(list));
    EXPECT_EQ(reg.LastError(), "Die Datensätze konnten nicht ins Listenfeld gelesen werden!");
    CAuftragRecColl coll;
    EXPECT_FALSE(reg.ReadAllAuftragRec2Coll(coll));
    EXPECT_EQ(reg.LastError(), "Die Datensätze konnten nicht in die Liste gelesen werden!");
    EXPECT_FALSE(reg.IsValidDb());
    EXPECT_EQ(reg.LastError(), "Die Struktur der Datenbank ist ungültig!");
    reg.setDbPath(dir.file("nix.mdb"));
    EXPECT_FALSE(reg.OpenDb());
    EXPECT_EQ(reg.LastError().rfind("Die Datenbank " + dir.file("nix.mdb") + " konnte nicht geöffnet werden!\r\n", 0), 0u);
}

TEST_F(InventurDbTest, IsValidDbNeedsTAuftrag)
{
    EXPECT_TRUE(reg.IsValidDb());
    reg.database()->execute("DROP TABLE T_Auftrag");
    EXPECT_FALSE(reg.IsValidDb());
    EXPECT_EQ(reg.LastError().rfind("Die Struktur der Datenbank ist ungültig!\r\n", 0), 0u);
}
