#include "CrossOrderLists.h"

#include "Categories.h"
#include "Database.h"
#include "NumberSightings.h"
#include "ProjectResultSchema.h"
#include "Value.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace qi {
namespace {

using Rows = std::vector<std::vector<std::string>>;

// A project result with hand-made order tables: three orders "Nord", "Süd" and "West".
class CrossOrderListsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        db = Database::inMemory();
        createProjectResultSchema(*db);
    }

    // The sortable stamp of a scanner date and time.
    static std::string stamp(const std::string& datum, const std::string& uhrzeit)
    {
        return datum.substr(6, 4) + "-" + datum.substr(3, 2) + "-" + datum.substr(0, 2) + " " + uhrzeit;
    }

    void scan(const std::string& auftrag, const std::string& nr, const std::string& raum, const std::string& art,
              const std::string& datum, const std::string& uhrzeit, const std::string& datei = "MDE1.dat")
    {
        db->execute("INSERT INTO P_Scan (stAuftrag, stInvNr, stRaum, stArtNr, Datum, Uhrzeit, stZeit, stDatei) "
                    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)",
                    {auftrag, nr, raum, art, datum, uhrzeit, stamp(datum, uhrzeit), datei});
    }

    // A row of a difference list expecting `soll` in `raum`.
    void soll(const std::string& auftrag, const std::string& raum, const std::string& nr, const char* typ,
              const std::string& beschreibung, const std::string& art)
    {
        db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stTyp, stBeschreibung, stArtNr) "
                    "VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
                    {auftrag, raum, nr, std::string(typ), beschreibung, art});
    }

    // A row of a difference list for a number scanned in `raum` that the room does not expect.
    void ist(const std::string& auftrag, const std::string& raum, const std::string& nr, const char* typ,
             const std::string& art, const std::string& quarn, const std::string& datum, const std::string& uhrzeit)
    {
        db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stIstInvNR, stTyp, stArtNr, stQuarn, Datum, Uhrzeit, "
                    "stZeit) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)",
                    {auftrag, raum, nr, std::string(typ), art, quarn, datum, uhrzeit, stamp(datum, uhrzeit)});
    }

    void raum(const std::string& auftrag, std::int64_t lIdRB, const std::string& nr, const std::string& bezeichnung)
    {
        db->execute("INSERT INTO P_Raum (stAuftrag, lIdRB, stRaumNr, stBezeichnung) VALUES (?1, ?2, ?3, ?4)",
                    {auftrag, lIdRB, nr, bezeichnung});
    }

    // A move, a number of two orders, surplus, unknown and missing numbers: a row in every list.
    void rowsOfEveryList()
    {
        soll("Nord", "101", "I100", category::k3b, "Stuhl", "A1");
        scan("Süd", "I100", "201", "A1", "21.11.2026", "10:15:00");
        ist("Süd", "201", "I100", category::k2b, "A1", "101", "21.11.2026", "10:15:00");
        scan("Nord", "X1", "101", "A9", "21.11.2026", "10:00:00");
        ist("Nord", "101", "X1", category::k2c, "A9", "", "21.11.2026", "10:00:00");
        scan("Süd", "X1", "201", "A9", "21.11.2026", "11:00:00");
        ist("Süd", "201", "X1", category::k2c, "A9", "", "21.11.2026", "11:00:00");
        soll("West", "301", "M2", category::k3b, "Tisch", "A2");
        ist("West", "301", "I050", category::k2b, "A0", "777", "21.11.2026", "08:20:00");
    }

    // Every column of every row of a table, in the order of its rows.
    Rows rows(const std::string& table)
    {
        const Recordset rs = db->query("SELECT * FROM " + table + " ORDER BY rowid");
        Rows out;
        for (const auto& row : rs.rows()) {
            std::vector<std::string> texts;
            for (const Value& v : row)
                texts.push_back(toText(v));
            out.push_back(texts);
        }
        return out;
    }

    std::unique_ptr<Database> db;
};

TEST_F(CrossOrderListsTest, ListsOfAProjectWithoutDataAreEmpty)
{
    makeCrossOrderLists(*db);
    makeCoverageLists(*db, {});
    for (const char* table :
         {"L_Verschoben", "L_Doppelt", "L_Zuviel", "L_Unbekannt", "L_Fehlend", "L_Ungeprueft", "L_Ueberschneidung"})
        EXPECT_EQ(rows(table), Rows{}) << table;
}

TEST_F(CrossOrderListsTest, AMissingObjectScannedInAnotherOrdersRoomIsMovedNeitherMissingNorSurplus)
{
    // Found by "Süd" in its room 201, spelled in lower case with trailing blanks.
    soll("Nord", "101", "I100", category::k3b, "Stuhl", "A1");
    scan("Süd", "i100  ", "201", "A1", "21.11.2026", "10:15:00", "MDE2.dat");
    ist("Süd", "201", "i100  ", category::k2b, "A1", "101", "21.11.2026", "10:15:00");
    // Found by "Süd" and by "West" in rooms of their own: one row per scan, the earlier first.
    soll("Nord", "102", "I400", category::k3b, "Tisch", "A2");
    scan("West", "I400", "301", "A2", "22.11.2026", "08:00:00", "MDE3.dat");
    ist("West", "301", "I400", category::k2b, "A2", "102", "22.11.2026", "08:00:00");
    scan("Süd", "I400", "202", "A2", "20.11.2026", "14:30:00", "MDE2.dat");
    ist("Süd", "202", "I400", category::k2b, "A2", "102", "20.11.2026", "14:30:00");
    // Scanned by "Süd" in the very room it belongs in (a room of both orders, spelled with a
    // trailing blank there): no move, and not missing either.
    soll("Nord", "101", "I200", category::k3b, "Schrank", "A3");
    scan("Süd", "I200", "101 ", "A3", "21.11.2026", "11:00:00", "MDE2.dat");
    // A scan of the order itself in another room is no move between orders.
    soll("Nord", "101", "I300", category::k3b, "Lampe", "A4");
    scan("Nord", "I300", "102", "A4", "19.11.2026", "09:00:00");

    makeCrossOrderLists(*db);

    EXPECT_EQ(rows("L_Verschoben"),
              (Rows{{"I100", "Stuhl", "A1", "Nord", "101", "Süd", "201", "21.11.2026", "10:15:00", "2026-11-21 10:15:00"},
                    {"I400", "Tisch", "A2", "Nord", "102", "Süd", "202", "20.11.2026", "14:30:00", "2026-11-20 14:30:00"},
                    {"I400", "Tisch", "A2", "Nord", "102", "West", "301", "22.11.2026", "08:00:00",
                     "2026-11-22 08:00:00"}}));
    EXPECT_EQ(rows("L_Fehlend"), Rows{});
    EXPECT_EQ(rows("L_Zuviel"), Rows{});
}

TEST_F(CrossOrderListsTest, ScansOfANumberInSeveralOrdersAreRankedTheLatestFirst)
{
    // In three orders: ranked by the time of the scan, the latest first.
    scan("Nord", "I500", "101", "A5", "20.11.2026", "09:00:00", "N1.dat");
    scan("Süd", "I500", "201", "A5", "22.11.2026", "07:45:00", "S1.dat");
    scan("West", "i500", "301", "A5", "21.11.2026", "16:20:00", "W1.dat");
    // In two orders at the same moment, spelled differently: the order name decides.
    scan("Süd", "I600 ", "202", "A6", "23.11.2026", "12:00:00", "S2.dat");
    scan("Nord", "i600", "102", "A6", "23.11.2026", "12:00:00", "N2.dat");
    // Twice in one order and once in another: every scan is listed, two orders.
    scan("Nord", "I700", "101", "A7", "18.11.2026", "10:00:00", "N1.dat");
    scan("Nord", "I700", "103", "A7", "19.11.2026", "10:00:00", "N3.dat");
    scan("West", "I700", "301", "A7", "18.11.2026", "11:00:00", "W1.dat");
    // Twice in one order only: not a number of several orders.
    scan("Nord", "I800", "101", "A8", "18.11.2026", "10:00:00", "N1.dat");
    scan("Nord", "i800 ", "102", "A8", "19.11.2026", "10:00:00", "N3.dat");

    makeCrossOrderLists(*db);

    EXPECT_EQ(rows("L_Doppelt"),
              (Rows{{"I500", "Süd", "201", "22.11.2026", "07:45:00", "2026-11-22 07:45:00", "S1.dat", "3", "1"},
                    {"i500", "West", "301", "21.11.2026", "16:20:00", "2026-11-21 16:20:00", "W1.dat", "3", "2"},
                    {"I500", "Nord", "101", "20.11.2026", "09:00:00", "2026-11-20 09:00:00", "N1.dat", "3", "3"},
                    {"i600", "Nord", "102", "23.11.2026", "12:00:00", "2026-11-23 12:00:00", "N2.dat", "2", "1"},
                    {"I600 ", "Süd", "202", "23.11.2026", "12:00:00", "2026-11-23 12:00:00", "S2.dat", "2", "2"},
                    {"I700", "Nord", "103", "19.11.2026", "10:00:00", "2026-11-19 10:00:00", "N3.dat", "2", "1"},
                    {"I700", "West", "301", "18.11.2026", "11:00:00", "2026-11-18 11:00:00", "W1.dat", "2", "2"},
                    {"I700", "Nord", "101", "18.11.2026", "10:00:00", "2026-11-18 10:00:00", "N1.dat", "2", "3"}}));
}

TEST_F(CrossOrderListsTest, SurplusStaysSurplusUnlessAnotherOrderExpectsTheNumber)
{
    // Nobody expects it.
    ist("Nord", "102", "I900", category::k2b, "A9", "555", "20.11.2026", "09:00:00");
    ist("Nord", "101", "I910", category::k2b, "A9", "556", "20.11.2026", "09:05:00");
    // "Nord" finds in place what "Süd" scanned as surplus (spelled differently): explained.
    soll("Nord", "101", "I920", category::k1, "Regal", "A9");
    ist("Süd", "201", "i920 ", category::k2b, "A9", "101", "21.11.2026", "08:00:00");
    // Only the order's own Soll row names it: that explains nothing.
    soll("Süd", "202", "I930", category::k3a, "Regal", "A9");
    ist("Süd", "201", "I930", category::k2b, "A9", "202", "21.11.2026", "08:10:00");
    // Listed after the rows of "Nord" although its number is smaller.
    ist("Süd", "201", "I050", category::k2b, "A0", "777", "21.11.2026", "08:20:00");
    // Other categories are no surplus.
    ist("West", "301", "I940", category::k2c, "A9", "", "22.11.2026", "08:00:00");
    scan("West", "I940", "301", "A9", "22.11.2026", "08:00:00");

    makeCrossOrderLists(*db);

    EXPECT_EQ(rows("L_Zuviel"),
              (Rows{{"Nord", "101", "I910", "A9", "556", "20.11.2026", "09:05:00", "2026-11-20 09:05:00"},
                    {"Nord", "102", "I900", "A9", "555", "20.11.2026", "09:00:00", "2026-11-20 09:00:00"},
                    {"Süd", "201", "I050", "A0", "777", "21.11.2026", "08:20:00", "2026-11-21 08:20:00"},
                    {"Süd", "201", "I930", "A9", "202", "21.11.2026", "08:10:00", "2026-11-21 08:10:00"}}));
}

TEST_F(CrossOrderListsTest, EachUnknownNumberIsListedOnceWithItsFirstScan)
{
    // Unknown in "Nord" and in "Süd" (spelled differently there), scanned three times: its
    // first scan is the one of "Süd" on 20.11.
    scan("Nord", "X1", "101", "A9", "21.11.2026", "10:00:00");
    ist("Nord", "101", "X1", category::k2c, "A9", "", "21.11.2026", "10:00:00");
    scan("Süd", "x1 ", "201", "A8", "20.11.2026", "08:00:00");
    ist("Süd", "201", "x1 ", category::k2c, "A8", "", "20.11.2026", "08:00:00");
    scan("Süd", "X1", "202", "A8", "22.11.2026", "08:00:00");
    ist("Süd", "202", "X1", category::k2c, "A8", "", "22.11.2026", "08:00:00");
    // Unknown in one order, once.
    scan("West", "X2", "301", "A7", "23.11.2026", "13:00:00");
    ist("West", "301", "X2", category::k2c, "A7", "", "23.11.2026", "13:00:00");
    // A difference list made before its scan was taken back: the list's row stands for it.
    ist("West", "302", "X0", category::k2c, "A6", "", "19.11.2026", "07:00:00");
    // Known to Quarn: not unknown, however often scanned.
    scan("Nord", "I100", "101", "A1", "21.11.2026", "10:00:00");
    scan("West", "I100", "301", "A1", "21.11.2026", "10:00:00");

    makeCrossOrderLists(*db);

    EXPECT_EQ(rows("L_Unbekannt"),
              (Rows{{"X0", "A6", "West", "302", "1", "19.11.2026", "2026-11-19 07:00:00"},
                    {"x1 ", "A8", "Nord, Süd", "201", "3", "20.11.2026", "2026-11-20 08:00:00"},
                    {"X2", "A7", "West", "301", "1", "23.11.2026", "2026-11-23 13:00:00"}}));
}

TEST_F(CrossOrderListsTest, AMissingNumberThatNoOrderScannedIsListedOnce)
{
    // Expected in room 101, which both "Nord" and "Süd" have: once, with the row of "Nord".
    soll("Süd", "101", "m1 ", category::k3b, "Stuhl (Süd)", "B1");
    soll("Nord", "101", "M1", category::k3b, "Stuhl", "A1");
    soll("West", "301", "M2", category::k3b, "Tisch", "A2");
    soll("Nord", "100", "M4", category::k3b, "Lampe", "A4");
    // Scanned somewhere: not missing in the project.
    soll("Nord", "101", "M3", category::k3b, "Schrank", "A3");
    scan("West", "m3", "301", "A3", "20.11.2026", "09:00:00");
    // Missing in a room of the order but found in another room of it: no "3b", not listed.
    soll("Nord", "101", "M5", category::k3a, "Regal", "A5");

    makeCrossOrderLists(*db);

    EXPECT_EQ(rows("L_Fehlend"), (Rows{{"M4", "Lampe", "A4", "Nord", "100"},
                                       {"M1", "Stuhl", "A1", "Nord", "101"},
                                       {"M2", "Tisch", "A2", "West", "301"}}));
}

TEST_F(CrossOrderListsTest, MakingTheListsAgainGivesTheSameRows)
{
    rowsOfEveryList();

    makeCrossOrderLists(*db);
    const std::vector<std::string> tables{"L_Verschoben", "L_Doppelt", "L_Zuviel", "L_Unbekannt", "L_Fehlend"};
    std::vector<Rows> first;
    for (const auto& table : tables) {
        first.push_back(rows(table));
        EXPECT_FALSE(first.back().empty()) << table;
    }
    makeCrossOrderLists(*db);
    for (std::size_t i = 0; i < tables.size(); ++i)
        EXPECT_EQ(rows(tables[i]), first[i]) << tables[i];
}

TEST_F(CrossOrderListsTest, RowsNotedOfAWriteThatWasUndoneChangeNoList)
{
    rowsOfEveryList();
    // One order spelled in two ways scans I700; another order expects the surplus I050.
    scan("nord", "I700", "102", "A7", "19.11.2026", "10:00:00");
    scan("Nord", "i700 ", "101", "A7", "18.11.2026", "10:00:00");
    soll("Ost", "401", "I050", category::k1, "Bank", "A0");

    makeCrossOrderLists(*db);
    const std::vector<std::string> tables{"L_Verschoben", "L_Doppelt", "L_Zuviel", "L_Unbekannt", "L_Fehlend"};
    std::vector<Rows> fromTables;
    for (const auto& table : tables)
        fromTables.push_back(rows(table));
    for (const auto& row : fromTables[1])
        EXPECT_NE(row[0], "I700") << "I700 is scanned by one order whatever the letter case of its name";
    EXPECT_EQ(fromTables[2], Rows{}) << "I050 is expected by Ost";

    // The rows of an order whose writing was undone were noted under rowids that other rows
    // took afterwards, or that no row has: the lists take the rows for what they hold.
    NumberSightings sightings;
    sightings.noteAll(*db);
    sightings.noteScan(1, "I700", "West");
    sightings.noteScan(4, "M2", "West");
    sightings.noteScan(99, "I100", "Ost");
    sightings.noteListRow(2, category::k3b, "X1", "");
    sightings.noteListRow(5, category::k2b, "", "I700");
    sightings.noteListRow(98, category::k2c, "", "I100");
    makeCrossOrderLists(*db, sightings);
    for (std::size_t i = 0; i < tables.size(); ++i)
        EXPECT_EQ(rows(tables[i]), fromTables[i]) << tables[i];
    EXPECT_FALSE(db->tableExists("Diff", "temp"));
    EXPECT_FALSE(db->tableExists("Scan", "temp"));
}

TEST_F(CrossOrderListsTest, RoomsInNoOrderAreUncheckedAndRoomsInSeveralOrdersOverlap)
{
    const std::vector<ExpectedRoom> building{
        {1, "101", "Büro", 5}, {2, "102", "Lager", 3}, {3, "201", "Flur", 0}, {4, "100", "Küche", 2},
        {5, "301", "Archiv", 7}};
    raum("Süd", 3, "201 ", "Flur");
    raum("Nord", 3, "201", "Flur");
    raum("West", 1, "101", "Büro alt");
    raum("Nord", 1, "101", "Büro alt");
    raum("Süd", 1, "101", "Büro alt");
    // A room the building structure no longer has, in two orders: its name from the orders.
    raum("West", 9, "999", "Abstellraum");
    raum("Nord", 9, "999", "Abstellraum");
    // In one order only, even where the order holds it twice.
    raum("West", 6, "302", "Werkstatt");
    raum("West", 6, "302", "Werkstatt");

    makeCoverageLists(*db, building);

    EXPECT_EQ(rows("L_Ungeprueft"), (Rows{{"4", "100", "Küche", "2", "nicht geprüft"},
                                          {"2", "102", "Lager", "3", "nicht geprüft"},
                                          {"5", "301", "Archiv", "7", "nicht geprüft"}}));
    EXPECT_EQ(rows("L_Ueberschneidung"), (Rows{{"1", "101", "Büro", "Nord, Süd, West", "3"},
                                               {"3", "201", "Flur", "Nord, Süd", "2"},
                                               {"9", "999", "Abstellraum", "Nord, West", "2"}}));

    // Made again, with a room of the building structure given to an order since.
    raum("Nord", 2, "102", "Lager");
    makeCoverageLists(*db, building);
    EXPECT_EQ(rows("L_Ungeprueft"), (Rows{{"4", "100", "Küche", "2", "nicht geprüft"},
                                          {"5", "301", "Archiv", "7", "nicht geprüft"}}));
    EXPECT_EQ(rows("L_Ueberschneidung").size(), 3u);
}

} // namespace
} // namespace qi
