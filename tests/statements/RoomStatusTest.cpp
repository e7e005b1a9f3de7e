#include "StatementsFixture.h"

using namespace qi;
using namespace qi::test;

namespace {

CRaumRec readRoom(CAuftragDb& db, std::int32_t id)
{
    CRaumRec r;
    r.lID = id;
    EXPECT_TRUE(db.ReadRaumRec(&r)) << db.LastError();
    return r;
}

} // namespace

// ---------------------------------------------------------------- rooms

TEST_F(StatementsTest, RaumVorhandenWithoutScansReturnsFalseSilently)
{
    addRoom("A");
    ASSERT_TRUE(addScan("B", "X1"));
    EXPECT_FALSE(db.RaumVorhanden("A"));
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(db.RaumVorhanden("B"));
    EXPECT_TRUE(db.RaumVorhanden("b  "));
    EXPECT_FALSE(db.RaumVorhanden(" B"));
}

TEST_F(StatementsTest, RaumImAuftragMatchesAsTheEngineCompares)
{
    addRoom("Büro 1");
    EXPECT_TRUE(db.RaumImAuftrag("Büro 1"));
    EXPECT_TRUE(db.RaumImAuftrag("BÜRO 1 "));
    EXPECT_FALSE(db.RaumImAuftrag("Buro 1"));
    EXPECT_FALSE(db.RaumImAuftrag(""));
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, RoomNumbersWithQuotesAndKeywords)
{
    const std::string room = R"(R"1' OR ''='; DELETE FROM T_Raum; --)";
    addRoom(room);
    ASSERT_TRUE(addScan(room, R"(I"1')"));
    EXPECT_TRUE(db.RaumImAuftrag(room));
    EXPECT_TRUE(db.RaumVorhanden(room));
    EXPECT_FALSE(db.RaumImAuftrag(R"(R"1' OR ''=')"));
    EXPECT_FALSE(db.RaumVorhanden("x\" OR \"\"=\""));
    ASSERT_TRUE(db.MakeInvListbyRoom(room));
    CInvlisteRecColl list;
    ASSERT_TRUE(db.ReadAllInvlisteRec2Coll(list));
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Item(1)->stInvNr, R"(I"1')");
    EXPECT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_Raum")), 1);
    EXPECT_TRUE(ui.messages.empty());
}

// ---------------------------------------------------------------- inventory list

TEST_F(StatementsTest, MakeInvListbyRoomTakesTheLinesOfTheRoom)
{
    ASSERT_TRUE(addScan("A", "X1", "ART1", "01.01.2024", 1, "10:00:00"));
    ASSERT_TRUE(addScan("B", "X2"));
    ASSERT_TRUE(addScan("a ", "X3", "ART2", "01.01.2024", 1, "10:00:01"));
    ASSERT_TRUE(db.WriteReihenfolgeDatInventur());
    ASSERT_TRUE(db.MakeInvListbyRoom("A"));
    Recordset rs = sql().query("SELECT * FROM T_Invliste ORDER BY lID");
    ASSERT_EQ(rs.size(), 2u);
    rs.moveFirst();
    EXPECT_EQ(toText(rs.field("stRaumNr")), "A");
    EXPECT_EQ(toText(rs.field("stInvNr")), "X1");
    EXPECT_EQ(toLong(rs.field("iRFolge")), 1);
    EXPECT_EQ(toText(rs.field("stArtNr")), "ART1");
    EXPECT_EQ(toText(rs.field("Datum")), "01.01.2024");
    EXPECT_EQ(toText(rs.field("Uhrzeit")), "10:00:00");
    EXPECT_TRUE(isNull(rs.field("stBeschreibung")));
    rs.moveNext();
    EXPECT_EQ(toText(rs.field("stInvNr")), "X3");
    EXPECT_EQ(toLong(rs.field("iRFolge")), 2);
}

TEST_F(StatementsTest, MakeInvListbyRoomScannedTwiceWithIdenticalDataAddsOneRow)
{
    // At import the second identical line is refused as a duplicate ...
    ASSERT_TRUE(addScan("A", "X1"));
    EXPECT_FALSE(addScan("A", "X1"));
    // ... an order file without the unique index holds both; the list groups them.
    dropUniqueInvNr();
    ASSERT_TRUE(addScan("A", "X1"));
    ASSERT_TRUE(addScan("A", "X2"));
    ASSERT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_DatInventur")), 3);
    ASSERT_TRUE(db.MakeInvListbyRoom("A"));
    Recordset rs = sql().query("SELECT stInvNr FROM T_Invliste ORDER BY lID");
    ASSERT_EQ(rs.size(), 2u);
    rs.moveFirst();
    EXPECT_EQ(toText(rs.field("stInvNr")), "X1");
    rs.moveNext();
    EXPECT_EQ(toText(rs.field("stInvNr")), "X2");
}

// ---------------------------------------------------------------- status

TEST_F(StatementsTest, RoomWithScansFromTwoDataFilesTakesTheFirstGroup)
{
    const auto a = addRoom("A");
    const auto b = addRoom("B");
    const auto c = addRoom("C");
    ASSERT_TRUE(addScan("A", "X1", "ART1", "02.03.2024", 2));
    ASSERT_TRUE(addScan("a", "X2", "ART1", "01.03.2024", 1));
    ASSERT_TRUE(addScan("A", "X3", "ART1", "01.03.2024", 1));
    ASSERT_TRUE(addScan("B", "X4", "ART1", "05.03.2024", 3));
    CRaumRec before = readRoom(db, c);
    ASSERT_TRUE(db.ResetStatusRooms());
    ASSERT_TRUE(db.SetStatusRoomsByDB());
    const CRaumRec ra = readRoom(db, a);
    EXPECT_EQ(ra.ststatus, "E");
    EXPECT_EQ(ra.Datum, "01.03.2024");
    EXPECT_EQ(ra.lDatID, 1);
    EXPECT_EQ(ra.iAnzahl, 2);
    const CRaumRec rb = readRoom(db, b);
    EXPECT_EQ(rb.ststatus, "E");
    EXPECT_EQ(rb.Datum, "05.03.2024");
    EXPECT_EQ(rb.lDatID, 3);
    EXPECT_EQ(rb.iAnzahl, 1);
    const CRaumRec rc = readRoom(db, c);
    EXPECT_EQ(rc.ststatus, "N");
    EXPECT_EQ(rc.iAnzahl, 0);
    EXPECT_EQ(before.ststatus, "E");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, SetStatusRoomsByDBWithoutRoomsReturnsTrue)
{
    ASSERT_TRUE(addScan("A", "X1"));
    EXPECT_TRUE(db.SetStatusRoomsByDB());
    EXPECT_TRUE(db.ResetStatusRooms());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, ResetStatusRoomsClearsStatusButKeepsTime)
{
    const auto a = addRoom("A", "12:34:56");
    const auto b = addRoom("B", "07:08:09");
    ASSERT_TRUE(addScan("A", "X1"));
    ASSERT_TRUE(db.SetStatusRoomsByDB());
    ASSERT_EQ(readRoom(db, a).ststatus, "E");
    ASSERT_TRUE(db.ResetStatusRooms());
    for (auto id : {a, b}) {
        const CRaumRec r = readRoom(db, id);
        EXPECT_EQ(r.ststatus, "N");
        EXPECT_EQ(r.Datum, "");
        EXPECT_EQ(r.iAnzahl, 0);
        EXPECT_EQ(r.lDatID, 0);
    }
    EXPECT_EQ(toText(sql().scalar("SELECT Uhrzeit FROM T_Raum WHERE lID = ?1", {std::int64_t{a}})), "12:34:56");
    EXPECT_EQ(toText(sql().scalar("SELECT Uhrzeit FROM T_Raum WHERE lID = ?1", {std::int64_t{b}})), "07:08:09");
}

TEST_F(StatementsTest, SetStatusCountOverflowShowsProblemAndChangesNoRoom)
{
    const auto a = addRoom("A");
    sql().execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32768) "
        "INSERT INTO T_DatInventur (stRaum, stInvNr, Datum, lDatID) SELECT 'A', 'N' || i, 'd', 1 FROM n");
    ASSERT_TRUE(db.ResetStatusRooms());
    EXPECT_FALSE(db.SetStatusRoomsByDB());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Numerischer Feldüberlauf.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    EXPECT_EQ(readRoom(db, a).ststatus, "N");
}

TEST_F(StatementsTest, SetStatusCountOverflowKeepsRoomsBeforeAndLeavesRoomsAfter)
{
    const auto a = addRoom("A");
    const auto b = addRoom("B");
    const auto c = addRoom("C");
    ASSERT_TRUE(addScan("A", "A1", "ART1", "01.02.2024", 4));
    ASSERT_TRUE(addScan("C", "C1", "ART1", "03.02.2024", 5));
    sql().execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32768) "
        "INSERT INTO T_DatInventur (stRaum, stInvNr, Datum, lDatID) SELECT 'B', 'N' || i, 'd', 1 FROM n");
    ASSERT_TRUE(db.ResetStatusRooms());
    const std::string before = leaveLastError(db);
    EXPECT_FALSE(db.SetStatusRoomsByDB());
    // The statement reports through its message and leaves LastError alone.
    EXPECT_EQ(db.LastError(), before);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Numerischer Feldüberlauf.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    const CRaumRec ra = readRoom(db, a);
    EXPECT_EQ(ra.ststatus, "E");
    EXPECT_EQ(ra.Datum, "01.02.2024");
    EXPECT_EQ(ra.lDatID, 4);
    EXPECT_EQ(ra.iAnzahl, 1);
    EXPECT_EQ(readRoom(db, b).ststatus, "N");
    EXPECT_EQ(readRoom(db, c).ststatus, "N");
}

// ---------------------------------------------------------------- line order

TEST_F(StatementsTest, TwoRoomsAreNumberedIndependently)
{
    ASSERT_TRUE(addScan("A", "X1"));
    ASSERT_TRUE(addScan("B", "X2"));
    ASSERT_TRUE(addScan("a ", "X3"));
    ASSERT_TRUE(addScan("B", "X4"));
    ASSERT_TRUE(addScan("A", "X5"));
    ASSERT_TRUE(db.WriteReihenfolgeDatInventur());
    Recordset rs = sql().query("SELECT stInvNr, iReihenfolge FROM T_DatInventur ORDER BY lID");
    std::vector<std::int64_t> order;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext())
        order.push_back(toLong(rs.field("iReihenfolge")));
    EXPECT_EQ(order, (std::vector<std::int64_t>{1, 1, 2, 2, 3}));
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, WriteReihenfolgeDatInventurOnEmptyTableReturnsTrue)
{
    EXPECT_TRUE(db.WriteReihenfolgeDatInventur());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, MoreThan32767LinesInOneRoomOverflow)
{
    ASSERT_TRUE(addScan("A", "A1"));
    ASSERT_TRUE(addScan("A", "A2"));
    ASSERT_TRUE(addScan("C", "C1"));
    sql().execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32768) "
        "INSERT INTO T_DatInventur (stRaum, stInvNr) SELECT 'B', 'N' || i FROM n");
    const std::string before = leaveLastError(db);
    EXPECT_FALSE(db.WriteReihenfolgeDatInventur());
    EXPECT_EQ(db.LastError(), before);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Überlauf");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    // The room before is numbered, the overflowing room up to the last number that fits,
    // and the walk ends there: the room after it stays unnumbered.
    const auto number = [&](const char* inv) {
        return toLong(sql().scalar("SELECT iReihenfolge FROM T_DatInventur WHERE stInvNr = ?1", {inv}));
    };
    EXPECT_EQ(number("A1"), 1);
    EXPECT_EQ(number("A2"), 2);
    EXPECT_EQ(number("N1"), 1);
    EXPECT_EQ(number("N32767"), 32767);
    EXPECT_EQ(number("N32768"), 0);
    EXPECT_EQ(number("C1"), 0);

    // Exactly 32767 lines still fit.
    sql().execute("DELETE FROM T_DatInventur WHERE stInvNr = 'N32768'");
    ui.messages.clear();
    EXPECT_TRUE(db.WriteReihenfolgeDatInventur());
    EXPECT_EQ(toLong(sql().scalar("SELECT max(iReihenfolge) FROM T_DatInventur")), 32767);
    EXPECT_EQ(number("C1"), 1);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, WriteReihenfolgeDatInventurKeepsLinesNumberedBeforeAnEngineError)
{
    ASSERT_TRUE(addScan("A", "A1"));
    ASSERT_TRUE(addScan("A", "A2"));
    ASSERT_TRUE(addScan("B", "B1"));
    ASSERT_TRUE(addScan("B", "B2"));
    sql().execute("CREATE TRIGGER refuse_b2 BEFORE UPDATE OF iReihenfolge ON T_DatInventur "
                  "WHEN NEW.stInvNr = 'B2' BEGIN SELECT RAISE(ABORT, 'Zeile gesperrt'); END");
    EXPECT_FALSE(db.WriteReihenfolgeDatInventur());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_NE(ui.messages[0].text.find("Zeile gesperrt"), std::string::npos) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    const auto number = [&](const char* inv) {
        return toLong(sql().scalar("SELECT iReihenfolge FROM T_DatInventur WHERE stInvNr = ?1", {inv}));
    };
    EXPECT_EQ(number("A1"), 1);
    EXPECT_EQ(number("A2"), 2);
    EXPECT_EQ(number("B1"), 1);
    EXPECT_EQ(number("B2"), 0);
}

// ---------------------------------------------------------------- article tally

TEST_F(StatementsTest, WriteIstCountsScanLinesPerArticle)
{
    auto article = [&](const std::string& nr) {
        CArtikellisteRec r;
        r.stArtikel = nr;
        r.iAnzIst = 5;
        EXPECT_TRUE(db.AddNewArtikellisteRec(&r));
        return r.lID;
    };
    const auto a1 = article("ART1");
    const auto a2 = article(R"(O'Neil "x")");
    const auto a3 = article("LEER");
    ASSERT_TRUE(addScan("A", "X1", "art1"));
    ASSERT_TRUE(addScan("A", "X2", "ART1 "));
    ASSERT_TRUE(addScan("B", "X3", "ART1"));
    ASSERT_TRUE(addScan("B", "X4", R"(O'Neil "x")"));
    ASSERT_TRUE(db.WriteIst());
    auto ist = [&](std::int32_t id) {
        CArtikellisteRec r;
        r.lID = id;
        EXPECT_TRUE(db.ReadArtikellisteRec(&r));
        return r.iAnzIst;
    };
    EXPECT_EQ(ist(a1), 3);
    EXPECT_EQ(ist(a2), 1);
    EXPECT_EQ(ist(a3), 0);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, ArticleWithoutScanLinesKeepsCountZero)
{
    // A count left from an earlier tally is overwritten with 0.
    CArtikellisteRec r;
    r.stArtikel = "ART9";
    r.iAnzIst = 7;
    ASSERT_TRUE(db.AddNewArtikellisteRec(&r));
    ASSERT_TRUE(addScan("A", "X1", "ART1"));
    ASSERT_TRUE(db.WriteIst());
    ASSERT_TRUE(db.ReadArtikellisteRec(&r));
    EXPECT_EQ(r.iAnzIst, 0);
}

TEST_F(StatementsTest, WriteIstReportsItsErrorEvenWhenKeepingTheCountsFails)
{
    // The second article refuses its count; keeping the first one's count then fails as
    // well (a deferred constraint at the commit). The walk shows the first error and returns.
    CArtikellisteRec a1;
    a1.stArtikel = "ART1";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&a1));
    CArtikellisteRec a2;
    a2.stArtikel = "ART2";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&a2));
    ASSERT_TRUE(addScan("A", "X1", "ART1"));
    sql().execute("PRAGMA foreign_keys = ON");
    sql().executeScript(
        "CREATE TABLE parent (id INTEGER PRIMARY KEY);"
        "CREATE TABLE child (p INTEGER REFERENCES parent(id) DEFERRABLE INITIALLY DEFERRED);"
        "CREATE TRIGGER orphan AFTER UPDATE OF iAnzIst ON T_Artikelliste WHEN NEW.lID = " + std::to_string(a1.lID) +
        " BEGIN INSERT INTO child VALUES (99); END;"
        "CREATE TRIGGER refuse BEFORE UPDATE OF iAnzIst ON T_Artikelliste WHEN NEW.lID = " + std::to_string(a2.lID) +
        " BEGIN SELECT RAISE(ABORT, 'Zeile gesperrt'); END;");
    bool result = true;
    EXPECT_NO_THROW(result = db.WriteIst());
    EXPECT_FALSE(result);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_NE(ui.messages[0].text.find("Zeile gesperrt"), std::string::npos) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].title, "Problem");
    // The connection is usable afterwards.
    EXPECT_TRUE(db.DelAllInvListe()) << db.LastError();
}

TEST_F(StatementsTest, ArticleWhoseCountIsNullCountsZero)
{
    sql().execute("INSERT INTO T_Artikelliste (stArtikel, iAnzIst) VALUES ('ART1', NULL)");
    ASSERT_TRUE(addScan("A", "X1", "ART1"));
    ASSERT_TRUE(db.WriteIst());
    EXPECT_EQ(toLong(sql().scalar("SELECT iAnzIst FROM T_Artikelliste")), 0);
    // Now that the count is no longer Null, a second run counts the line.
    ASSERT_TRUE(db.WriteIst());
    EXPECT_EQ(toLong(sql().scalar("SELECT iAnzIst FROM T_Artikelliste")), 1);
}

TEST_F(StatementsTest, ArticleCountOverflowShowsProblem)
{
    CArtikellisteRec r;
    r.stArtikel = "ART1";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&r));
    CArtikellisteRec other;
    other.stArtikel = "ART2";
    other.iAnzIst = 7;
    ASSERT_TRUE(db.AddNewArtikellisteRec(&other));
    sql().execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32768) "
        "INSERT INTO T_DatInventur (stRaum, stInvNr, stArtNr) SELECT 'A', 'N' || i, 'ART1' FROM n");
    ASSERT_TRUE(addScan("A", "Y1", "ART2"));
    // The count of ART1 fails and reports it; the walk goes on with the next article.
    EXPECT_TRUE(db.WriteIst());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Überlauf");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    ASSERT_TRUE(db.ReadArtikellisteRec(&r));
    EXPECT_EQ(r.iAnzIst, 0);
    ASSERT_TRUE(db.ReadArtikellisteRec(&other));
    EXPECT_EQ(other.iAnzIst, 1);
}

TEST_F(StatementsTest, RoomStatementsEngineErrorShowsProblem)
{
    addRoom("A");
    sql().execute("DROP TABLE T_DatInventur");
    const std::string expected = missingTableText("T_DatInventur");
    for (auto op : {&CAuftragDb::SetStatusRoomsByDB, &CAuftragDb::WriteReihenfolgeDatInventur}) {
        ui.messages.clear();
        EXPECT_FALSE((db.*op)());
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0].text, expected);
        EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
        EXPECT_EQ(ui.messages[0].title, "Problem");
    }
    // Each article's count reports its failure; the walk itself reaches its end.
    for (const char* nr : {"ART1", "ART2"}) {
        CArtikellisteRec r;
        r.stArtikel = nr;
        r.iAnzIst = 4;
        ASSERT_TRUE(db.AddNewArtikellisteRec(&r));
    }
    ui.messages.clear();
    EXPECT_TRUE(db.WriteIst());
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_EQ(ui.messages[1].text, expected);
    EXPECT_EQ(ui.messages[1].title, "Problem");
    EXPECT_EQ(toLong(sql().scalar("SELECT max(iAnzIst) FROM T_Artikelliste")), 0);
    for (auto op : {&CAuftragDb::RaumVorhanden, &CAuftragDb::MakeInvListbyRoom}) {
        ui.messages.clear();
        EXPECT_FALSE((db.*op)("A"));
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0].text, expected);
        EXPECT_EQ(ui.messages[0].title, "Problem");
    }
    sql().execute("DROP TABLE T_Raum");
    ui.messages.clear();
    const std::string before = leaveLastError(db);
    EXPECT_FALSE(db.ResetStatusRooms());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, missingTableText("T_Raum"));
    EXPECT_EQ(db.LastError(), before);
}
