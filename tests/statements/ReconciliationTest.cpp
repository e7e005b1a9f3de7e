#include "StatementsFixture.h"

#include "FileSystem.h"

using namespace qi;
using namespace qi::test;

namespace {

/// The classification as the evaluation run calls it.
void classify(CAuftragDb& db)
{
    ASSERT_TRUE(db.MakeIstInvOk());
    ASSERT_TRUE(db.MakeIstScanExtra());
    ASSERT_TRUE(db.GetRaumGefunden());
}

std::vector<std::int64_t> keysOf(const std::vector<DiffRow>& rows)
{
    std::vector<std::int64_t> keys;
    for (const auto& r : rows)
        keys.push_back(r.lID);
    return keys;
}

} // namespace

// ---------------------------------------------------------------- the classification

TEST_F(StatementsTest, ObjectMovedWithinOrderIsMissingInItsRoomAndSurplusWhereFound)
{
    const auto a = addRoom("A");
    const auto b = addRoom("B");
    addSoll(a, "X1", "Stuhl");
    ASSERT_TRUE(addScan("B", "X1", "ART1", "03.04.2024", 1, "11:12:13"));
    classify(db);

    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].lRaumID, a);
    EXPECT_EQ(rows[0].stTyp, kTyp3a);
    EXPECT_EQ(rows[0].stZiel, "B");
    EXPECT_EQ(rows[0].stIstInvNR, "");
    EXPECT_EQ(rows[0].Datum, "03.04.2024");
    EXPECT_EQ(rows[0].Uhrzeit, "11:12:13");
    EXPECT_EQ(rows[0].stQuarn, "");
    EXPECT_EQ(rows[1].lRaumID, b);
    EXPECT_EQ(rows[1].stTyp, kTyp2a);
    EXPECT_EQ(rows[1].stIstInvNR, "X1");
    EXPECT_EQ(rows[1].stSollInvNR, "");
    EXPECT_EQ(rows[1].stQuelle, "A");
    EXPECT_EQ(rows[1].stQuarn, "");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, ObjectScannedInItsRoomIsOk)
{
    const auto a = addRoom("A");
    addSoll(a, "X1", "Stuhl");
    ASSERT_TRUE(addScan("A", "X1", "ART1", "05.06.2024", 2, "08:09:10"));
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].stTyp, kTyp1);
    EXPECT_EQ(rows[0].stIstInvNR, "X1");
    EXPECT_EQ(rows[0].Datum, "05.06.2024");
    EXPECT_EQ(rows[0].Uhrzeit, "08:09:10");
    EXPECT_EQ(rows[0].stZiel, "");
}

// The order file keeps an inventory number once, so the second scan of the same number
// is refused at import; an order file made without that index can hold both lines. The
// A row is matched; the B line's number is then already the Ist number of a difference
// row, so it adds no surplus row.
TEST_F(StatementsTest, ObjectExpectedInAScannedInAAndB)
{
    const auto a = addRoom("A");
    addRoom("B");
    addSoll(a, "X1", "Stuhl");
    ASSERT_TRUE(addScan("A", "X1"));
    EXPECT_FALSE(addScan("B", "X1")); // refused as a duplicate by the unique index

    dropUniqueInvNr();
    ASSERT_TRUE(addScan("B", "X1"));
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].lRaumID, a);
    EXPECT_EQ(rows[0].stTyp, kTyp1);
    EXPECT_EQ(rows[0].stIstInvNR, "X1");
}

TEST_F(StatementsTest, ObjectExpectedInAScannedInAAndAnotherNumberInBGivesSurplus)
{
    const auto a = addRoom("A");
    const auto b = addRoom("B");
    addSoll(a, "X1", "Stuhl");
    ASSERT_TRUE(addScan("A", "X1"));
    ASSERT_TRUE(addScan("B", " X1")); // a different number for the engine (leading blank)
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].stTyp, kTyp1);
    EXPECT_EQ(rows[1].lRaumID, b);
    EXPECT_EQ(rows[1].stIstInvNR, " X1");
    EXPECT_EQ(rows[1].stTyp, kTyp2b);
}

TEST_F(StatementsTest, ScanInRoomOutsideOrderProducesNoRow)
{
    addRoom("A");
    ASSERT_TRUE(addScan("D", "X9"));
    classify(db);
    EXPECT_TRUE(diffRows().empty());
}

TEST_F(StatementsTest, SurplusObjectExpectedNowhereIs2b)
{
    const auto a = addRoom("A");
    ASSERT_TRUE(addScan("A", "X9", "ART1", "01.01.2024", 1, "07:00:00"));
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].lRaumID, a);
    EXPECT_EQ(rows[0].stIstInvNR, "X9");
    EXPECT_EQ(rows[0].stSollInvNR, "");
    EXPECT_EQ(rows[0].stTyp, kTyp2b);
    EXPECT_EQ(rows[0].Datum, "01.01.2024");
    EXPECT_EQ(rows[0].Uhrzeit, "07:00:00");
    EXPECT_EQ(rows[0].stZiel, "");
    EXPECT_EQ(rows[0].stQuelle, "");
}

TEST_F(StatementsTest, RoomOfScanMatchesIgnoringCaseAndTrailingBlanks)
{
    const auto a = addRoom("Büro-1");
    const auto b = addRoom("LAGER");
    addSoll(a, "X1");
    addSoll(a, "X2");
    ASSERT_TRUE(addScan("BÜRO-1  ", "x1"));
    ASSERT_TRUE(addScan("lager ", "x2"));
    ASSERT_TRUE(addScan("Lager", "X3"));
    ASSERT_TRUE(addScan("Buero-1", "X4")); // another text: no room of the order
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].stTyp, kTyp1);
    EXPECT_EQ(rows[0].stIstInvNR, "x1");
    EXPECT_EQ(rows[1].stTyp, kTyp3a);
    EXPECT_EQ(rows[1].stZiel, "lager ");
    EXPECT_EQ(rows[2].lRaumID, b);
    EXPECT_EQ(rows[2].stIstInvNR, "x2");
    EXPECT_EQ(rows[2].stTyp, kTyp2a);
    EXPECT_EQ(rows[2].stQuelle, "Büro-1");
    EXPECT_EQ(rows[3].lRaumID, b);
    EXPECT_EQ(rows[3].stIstInvNR, "X3");
    EXPECT_EQ(rows[3].stTyp, kTyp2b);
}

TEST_F(StatementsTest, QuotesAndKeywordsInNumbersAreOrdinaryValues)
{
    const std::string roomA = R"(A"1' OR 1=1; --)";
    const std::string roomB = "B'; DROP TABLE T_Raum; --";
    const auto a = addRoom(roomA);
    const auto b = addRoom(roomB);
    addSoll(a, R"(INV"1)");
    addSoll(a, "SELECT 'x' FROM T_Raum");
    ASSERT_TRUE(addScan(roomA, R"(INV"1)"));
    ASSERT_TRUE(addScan(roomB, "SELECT 'x' FROM T_Raum"));
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].stTyp, kTyp1);
    EXPECT_EQ(rows[1].stTyp, kTyp3a);
    EXPECT_EQ(rows[1].stZiel, roomB);
    EXPECT_EQ(rows[2].lRaumID, b);
    EXPECT_EQ(rows[2].stTyp, kTyp2a);
    EXPECT_EQ(rows[2].stQuelle, roomA);
    EXPECT_TRUE(sql().tableExists("T_Raum"));
}

TEST_F(StatementsTest, ScanExtraAddsOneRowPerRoomEntryOfTheScan)
{
    // The same room twice in the order: the scan joins both entries.
    const auto a1 = addRoom("A");
    const auto a2 = addRoom("a");
    ASSERT_TRUE(addScan("A", "X9"));
    ASSERT_TRUE(db.MakeIstScanExtra());
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].lRaumID, a1);
    EXPECT_EQ(rows[1].lRaumID, a2);
    // A second run adds nothing: the number is now an Ist number of the list.
    ASSERT_TRUE(db.MakeIstScanExtra());
    EXPECT_EQ(diffRows().size(), 2u);
}

TEST_F(StatementsTest, GetRaumGefundenClearsQuarnOnlyForRoomsOfTheOrder)
{
    const auto a = addRoom("A");
    CDifferenzlisteRec outside;
    outside.lRaumID = a;
    outside.stIstInvNR = "X8";
    outside.stQuarn = "Z-99";
    outside.stTyp = kTyp2b;
    addDiff(outside);
    CDifferenzlisteRec inside = outside;
    inside.stIstInvNR = "X9";
    inside.stQuarn = "a ";
    addDiff(inside);
    ASSERT_TRUE(db.GetRaumGefunden());
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].stQuarn, "Z-99");
    EXPECT_EQ(rows[1].stQuarn, "");
}

TEST_F(StatementsTest, SoughtObjectScannedOutsideOrderTakesThatRoomAsTarget)
{
    const auto a = addRoom("A");
    addSoll(a, "X6");
    ASSERT_TRUE(addScan("D", "X6"));
    classify(db);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].stTyp, kTyp3a);
    EXPECT_EQ(rows[0].stZiel, "D");
}

// ---------------------------------------------------------------- the scenario

class ScenarioTest : public StatementsTest {
protected:
    void SetUp() override
    {
        StatementsTest::SetUp();
        a = addRoom("A");
        b = addRoom("B");
        c = addRoom("C");
        addSoll(a, "X1", "Stuhl");   // 1: scanned in A
        addSoll(a, "X2", "Tisch");   // 2: scanned in B
        addSoll(a, "X3", "Lampe");   // 3: not scanned
        addSoll(a, "X6", "Regal");   // 4: scanned in D, outside the order
        addSoll(b, "X4", "Schrank"); // 5: scanned in B
        addSoll(c, "X5", "Tafel");   // 6: not scanned
        ASSERT_TRUE(addScan("A", "X1", "ART1", "02.02.2024", 1, "09:00:01"));
        ASSERT_TRUE(addScan("A", "X7", "ART2", "02.02.2024", 1, "09:00:02"));
        ASSERT_TRUE(addScan("B", "X2", "ART1", "02.02.2024", 1, "09:00:03"));
        ASSERT_TRUE(addScan("B", "X4", "ART3", "02.02.2024", 1, "09:00:04"));
        ASSERT_TRUE(addScan("D", "X8", "ART3", "02.02.2024", 1, "09:00:05"));
        ASSERT_TRUE(addScan("D", "X6", "ART3", "02.02.2024", 1, "09:00:06"));
        classify(db);
    }
    std::int32_t a = 0, b = 0, c = 0;
};

TEST_F(ScenarioTest, EveryRowIsClassified)
{
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 8u);
    auto expect = [&](std::size_t i, std::int64_t room, const char* soll, const char* ist, const char* ziel,
                      const char* quelle, const char* typ, const char* uhrzeit) {
        SCOPED_TRACE(i);
        EXPECT_EQ(rows[i].lID, static_cast<std::int64_t>(i + 1));
        EXPECT_EQ(rows[i].lRaumID, room);
        EXPECT_EQ(rows[i].stSollInvNR, soll);
        EXPECT_EQ(rows[i].stIstInvNR, ist);
        EXPECT_EQ(rows[i].stZiel, ziel);
        EXPECT_EQ(rows[i].stQuelle, quelle);
        EXPECT_EQ(rows[i].stQuarn, "");
        EXPECT_EQ(rows[i].stTyp, typ);
        EXPECT_EQ(rows[i].Uhrzeit, uhrzeit);
    };
    expect(0, a, "X1", "X1", "", "", kTyp1, "09:00:01");
    expect(1, a, "X2", "", "B", "", kTyp3a, "09:00:03");
    expect(2, a, "X3", "", "", "", kTyp3b, "");
    expect(3, a, "X6", "", "D", "", kTyp3a, "09:00:06");
    expect(4, b, "X4", "X4", "", "", kTyp1, "09:00:04");
    expect(5, c, "X5", "", "", "", kTyp3b, "");
    expect(6, a, "", "X7", "", "", kTyp2b, "09:00:02");
    expect(7, b, "", "X2", "", "A", kTyp2a, "09:00:03");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ScenarioTest, ErrorListsKeepTheirRows)
{
    db.CloseDb();
    struct Case {
        const char* file;
        bool (CAuftragDb::*op)();
        std::vector<std::int64_t> remaining;
    };
    const Case cases[] = {{"neu.mdb", &CAuftragDb::MakeListNeu, {7}},
                          {"verschoben.mdb", &CAuftragDb::MakeListVerschoben, {2, 4}},
                          {"fehlend.mdb", &CAuftragDb::MakeListFehlend, {3, 6}}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k.file);
        ASSERT_TRUE(copyFile(dbFile, dir.file(k.file)));
        CAuftragDb copy(ui);
        copy.setDbPath(dir.file(k.file));
        ASSERT_TRUE(copy.OpenDb());
        leaveLastError(copy);
        ASSERT_TRUE((copy.*k.op)());
        EXPECT_EQ(copy.LastError(), "");
        std::vector<std::int64_t> keys;
        Recordset rs = copy.database()->query("SELECT lID FROM T_Differenzliste ORDER BY lID");
        for (rs.moveFirst(); !rs.eof(); rs.moveNext())
            keys.push_back(toLong(rs.field("lID")));
        EXPECT_EQ(keys, k.remaining);
    }
}

// ---------------------------------------------------------------- GetRaumSoll

TEST_F(StatementsTest, GetRaumSollStopsAtFirstIstOnlyRowWithoutNumber)
{
    const auto a = addRoom("A");
    const auto c = addRoom("C");
    addSoll(c, "X9");
    addSoll(a, "X5");
    CDifferenzlisteRec ist;
    ist.lRaumID = a;
    ist.stIstInvNR = "x9 ";
    addDiff(ist); // 3: expected in C
    CDifferenzlisteRec placeholder;
    placeholder.lRaumID = a;
    addDiff(placeholder); // 4: both numbers empty: the walk ends here
    ist.stIstInvNR = "X5";
    addDiff(ist); // 5: expected in A, but not looked at
    ASSERT_TRUE(db.GetRaumSoll());
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0].stZiel, "");
    EXPECT_EQ(rows[2].stZiel, "C");
    EXPECT_EQ(rows[3].stZiel, "");
    EXPECT_EQ(rows[4].stZiel, "");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, GetRaumSollNotesTheRoomOfTheFirstSollRow)
{
    const auto a = addRoom("A");
    const auto c = addRoom(R"(C"1')");
    addSoll(c, R"(X'9")");
    addSoll(a, R"(X'9")");
    CDifferenzlisteRec ist;
    ist.lRaumID = a;
    ist.stIstInvNR = R"(X'9")";
    addDiff(ist);
    ist.stIstInvNR = "NIRGENDS";
    addDiff(ist);
    ASSERT_TRUE(db.GetRaumSoll());
    const auto rows = diffRows();
    EXPECT_EQ(rows[2].stZiel, R"(C"1')");
    EXPECT_EQ(rows[3].stZiel, "");
}

TEST_F(StatementsTest, GetRaumSollKeepsRoomsNotedBeforeAnEngineError)
{
    const auto a = addRoom("A");
    const auto c = addRoom("C");
    addSoll(c, "X1");
    addSoll(c, "X2");
    CDifferenzlisteRec ist;
    ist.lRaumID = a;
    ist.stIstInvNR = "X1";
    addDiff(ist); // 3: gets C
    ist.stIstInvNR = "X2";
    const auto refused = addDiff(ist); // 4: the engine refuses the change
    sql().execute("CREATE TRIGGER refuse_row BEFORE UPDATE OF stZiel ON T_Differenzliste WHEN NEW.lID = " +
                  std::to_string(refused) + " BEGIN SELECT RAISE(ABORT, 'Zeile gesperrt'); END");
    const std::string before = leaveLastError(db);
    EXPECT_FALSE(db.GetRaumSoll());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_NE(ui.messages[0].text.find("Zeile gesperrt"), std::string::npos) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    EXPECT_EQ(db.LastError(), before);
    const auto rows = diffRows();
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[2].stZiel, "C");
    EXPECT_EQ(rows[3].stZiel, "");
}

TEST_F(StatementsTest, GetRaumSollOnListWithoutIstOnlyRowsReturnsTrue)
{
    addSoll(addRoom("A"), "X1");
    EXPECT_TRUE(db.GetRaumSoll());
    EXPECT_EQ(diffRows()[0].stZiel, "");
}

// ---------------------------------------------------------------- error lists

TEST_F(StatementsTest, MakeListFehlendWithout3bRowsLeavesListEmpty)
{
    const auto a = addRoom("A");
    addSoll(a, "X1");
    ASSERT_TRUE(addScan("A", "X1"));
    ASSERT_TRUE(addScan("A", "X2"));
    classify(db);
    ASSERT_EQ(diffRows().size(), 2u);
    leaveLastError(db);
    EXPECT_TRUE(db.MakeListFehlend());
    EXPECT_TRUE(diffRows().empty());
    EXPECT_EQ(db.LastError(), "");
}

TEST_F(StatementsTest, MakeListNeuKeepsIstOnlyRowsWithoutSource)
{
    const auto a = addRoom("A");
    CDifferenzlisteRec r;
    r.lRaumID = a;
    r.stIstInvNR = "X1";
    r.stTyp = kTyp2b;
    addDiff(r); // 1 kept
    r.stQuelle = "B";
    addDiff(r); // 2 from another room
    r.stQuelle = "";
    r.stSollInvNR = "X1";
    addDiff(r); // 3 matched
    CDifferenzlisteRec empty;
    empty.lRaumID = a;
    addDiff(empty); // 4 no numbers
    ASSERT_TRUE(db.MakeListNeu());
    EXPECT_EQ(keysOf(diffRows()), (std::vector<std::int64_t>{1}));
}

TEST_F(StatementsTest, MakeListVerschobenKeepsSollRowsWithTarget)
{
    const auto a = addRoom("A");
    CDifferenzlisteRec r;
    r.lRaumID = a;
    r.stSollInvNR = "X1";
    r.stZiel = "B";
    addDiff(r); // 1 kept
    r.stZiel = "";
    addDiff(r); // 2 no target
    r.stSollInvNR = "";
    r.stIstInvNR = "X1";
    r.stZiel = "B";
    addDiff(r); // 3 no Soll number
    ASSERT_TRUE(db.MakeListVerschoben());
    EXPECT_EQ(keysOf(diffRows()), (std::vector<std::int64_t>{1}));
}

// ---------------------------------------------------------------- print order

TEST_F(StatementsTest, WriteReihenfolgeDiffListeOnEmptyListReturnsTrue)
{
    EXPECT_TRUE(db.WriteReihenfolgeDiffListe());
    EXPECT_TRUE(diffRows().empty());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, WriteReihenfolgeDiffListeNumbersThreePassesByDescription)
{
    const auto a = addRoom("A");
    auto row = [&](const char* soll, const char* ist, const char* beschreibung) {
        CDifferenzlisteRec r;
        r.lRaumID = a;
        r.stSollInvNR = soll;
        r.stIstInvNR = ist;
        r.stBeschreibung = beschreibung;
        return addDiff(r);
    };
    row("S1", "", "c");      // 1 pass 3
    row("M1", "M1", "b");    // 2 pass 1
    row("", "I1", "z");      // 3 pass 2
    row("M2", "M2", "A");    // 4 pass 1
    row("", "", "m");        // 5 passes 2 and 3
    row("M3", "M3", "b");    // 6 pass 1, tie with 2
    row("", "I2", "n");      // 7 pass 2
    row("S2", "", "a");      // 8 pass 3
    ASSERT_TRUE(db.WriteReihenfolgeDiffListe());
    std::vector<std::int64_t> order;
    for (const auto& r : diffRows())
        order.push_back(r.iReihenfolge);
    // Pass 1: A(4)=1, b(2)=2, b(6)=3. Pass 2: m(5)=4, n(7)=5, z(3)=6.
    // Pass 3: a(8)=7, c(1)=8, m(5)=9: the row without numbers keeps its second number.
    const auto pos = [&](std::int64_t key) { return order[static_cast<std::size_t>(key - 1)]; };
    EXPECT_EQ(pos(4), 1);
    EXPECT_EQ(pos(2), 2);
    EXPECT_EQ(pos(6), 3);
    EXPECT_EQ(pos(7), 5);
    EXPECT_EQ(pos(3), 6);
    EXPECT_EQ(pos(8), 7);
    EXPECT_EQ(pos(1), 8);
    EXPECT_EQ(pos(5), 9);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, WriteReihenfolgeDiffListeOverflowShowsCriticalMessage)
{
    // 32767 Ist-only rows and one row without numbers, which counts twice: 32769.
    sql().execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32767) "
        "INSERT INTO T_Differenzliste (lRaumID, stIstInvNR) SELECT 1, 'I' || i FROM n");
    sql().execute("INSERT INTO T_Differenzliste (lRaumID) VALUES (1)");
    const std::string before = leaveLastError(db);
    EXPECT_FALSE(db.WriteReihenfolgeDiffListe());
    EXPECT_EQ(db.LastError(), before);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "CAuftragDb.WriteReihenfolgeDiffListe\r\nÜberlauf");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    // The rows up to the last number that fits keep their numbers.
    EXPECT_EQ(toLong(sql().scalar("SELECT iReihenfolge FROM T_Differenzliste WHERE lID = 1")), 1);
    EXPECT_EQ(toLong(sql().scalar("SELECT iReihenfolge FROM T_Differenzliste WHERE lID = 32767")), 32767);
    EXPECT_EQ(toLong(sql().scalar("SELECT iReihenfolge FROM T_Differenzliste WHERE lID = 32768")), 0);
}

TEST_F(StatementsTest, WriteReihenfolgeDiffListeEngineErrorShowsCriticalMessage)
{
    const std::string expected = "CAuftragDb.WriteReihenfolgeDiffListe\r\n" + [&] {
        sql().execute("DROP TABLE T_Differenzliste");
        return missingTableText("T_Differenzliste");
    }();
    EXPECT_FALSE(db.WriteReihenfolgeDiffListe());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, expected);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

// ---------------------------------------------------------------- failures

TEST_F(StatementsTest, ReconciliationEngineErrorShowsProblem)
{
    const std::string expected = [&] {
        sql().execute("DROP TABLE T_Raum");
        return missingTableText("T_Raum");
    }();
    for (auto op : {&CAuftragDb::MakeIstInvOk, &CAuftragDb::MakeIstScanExtra, &CAuftragDb::GetRaumGefunden,
                    &CAuftragDb::GetRaumSoll}) {
        ui.messages.clear();
        addSoll(1, "X1");
        CDifferenzlisteRec ist;
        ist.stIstInvNR = "X1";
        addDiff(ist);
        const std::string before = leaveLastError(db);
        EXPECT_FALSE((db.*op)());
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0].text, expected);
        EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
        EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
        EXPECT_EQ(ui.messages[0].title, "Problem");
        EXPECT_EQ(db.LastError(), before);
    }
}

TEST_F(StatementsTest, GetRaumGefundenKeepsStatementsBeforeTheFailingOne)
{
    const auto a = addRoom("A");
    addSoll(a, "X1");
    ASSERT_TRUE(addScan("B", "X1"));
    sql().execute("DROP TABLE T_Raum"); // the second statement needs the rooms
    EXPECT_FALSE(db.GetRaumGefunden());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    const auto rows = diffRows();
    EXPECT_EQ(rows[0].stTyp, kTyp3a);
    EXPECT_EQ(rows[0].stZiel, "B");
}

TEST_F(StatementsTest, StatementsWithoutDatabaseShowProblem)
{
    db.CloseDb();
    for (auto op : {&CAuftragDb::MakeIstInvOk, &CAuftragDb::MakeIstScanExtra, &CAuftragDb::GetRaumGefunden,
                    &CAuftragDb::GetRaumSoll, &CAuftragDb::SetStatusRoomsByDB, &CAuftragDb::ResetStatusRooms,
                    &CAuftragDb::WriteReihenfolgeDatInventur, &CAuftragDb::WriteIst}) {
        ui.messages.clear();
        const std::string before = leaveLastError(db);
        EXPECT_FALSE((db.*op)());
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0].text, "Objektvariable oder With-Blockvariable nicht festgelegt");
        EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
        EXPECT_EQ(ui.messages[0].title, "Problem");
        EXPECT_EQ(db.LastError(), before);
    }
    for (auto op : {&CAuftragDb::RaumVorhanden, &CAuftragDb::RaumImAuftrag, &CAuftragDb::MakeInvListbyRoom}) {
        ui.messages.clear();
        EXPECT_FALSE((db.*op)("A"));
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0].title, "Problem");
    }
    ui.messages.clear();
    EXPECT_FALSE(db.WriteReihenfolgeDiffListe());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "CAuftragDb.WriteReihenfolgeDiffListe\r\nObjektvariable oder With-Blockvariable nicht festgelegt");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

TEST_F(StatementsTest, DeleteFamilyWithoutDatabaseSetsLastError)
{
    db.CloseDb();
    for (auto op : {&CAuftragDb::MakeListNeu, &CAuftragDb::MakeListVerschoben, &CAuftragDb::MakeListFehlend,
                    &CAuftragDb::DelAllDiffListe, &CAuftragDb::DelAllRaumRec, &CAuftragDb::DelAllInvListe}) {
        EXPECT_FALSE((db.*op)());
        EXPECT_EQ(db.LastError(), "Der Datensatz konnte nicht gelöscht werden!");
    }
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(StatementsTest, DeleteFamilyEngineErrorAppendsDescription)
{
    sql().execute("DROP TABLE T_Differenzliste");
    const std::string expected =
        std::string("Der Datensatz konnte nicht gelöscht werden!\r\n") + missingTableText("T_Differenzliste");
    for (auto op : {&CAuftragDb::MakeListNeu, &CAuftragDb::MakeListVerschoben, &CAuftragDb::MakeListFehlend}) {
        EXPECT_FALSE((db.*op)());
        EXPECT_EQ(db.LastError(), expected);
    }
    EXPECT_TRUE(ui.messages.empty());
    // A success clears the text of the last failure.
    EXPECT_TRUE(db.DelAllRaumRec());
    EXPECT_EQ(db.LastError(), "");
}
