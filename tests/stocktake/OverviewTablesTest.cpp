// What the overview windows show of a project result: rows, keys, headings and the texts
// of figures, read from a result filled by hand.

#include "OverviewTables.h"

#include "Database.h"
#include "ProjectResultSchema.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

using Row = std::vector<std::string>;

class OverviewTablesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        createProjectResultSchema(*db);
        db->execute("INSERT INTO P_Auftrag (lAuftragID, stAuftrag, stStand, iRaeume, iRaeumeN, iRaeumeE, iRaeumeL, "
                    "iDateien, iScans, iErwartet, iAmPlatz, i1, i2a, i2b, i2c, i3a, i3b, dProzent, dRaeumeFertig, "
                    "stLetzterScan) VALUES (7, 'Ost', ?1, 4, 1, 2, 1, 2, 30, 20, 15, 15, 1, 2, 3, 4, 5, 75.0, 75.0, "
                    "'2026-11-03 14:05:09'), (3, 'West', ?2, 2, 2, 0, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, '')",
                    {kStandAktuell, kStandNie});
        db->execute("INSERT INTO P_Raum (stAuftrag, lRaumID, stRaumNr, stBezeichnung, stStatus, iErwartet, iAmPlatz, "
                    "iGescannt, dProzent, stLetzterScan) VALUES ('Ost', 2, 'E0.10', 'Flur', 'E', 3, 2, 4, 66.6667, "
                    "'2026-11-03 14:05:09'), ('Ost', 1, 'E0.2', 'Büro', 'L', 6, 6, 6, 100, '2026-11-02 08:00:00'), "
                    "('West', 5, 'O1.1', 'Lager', 'N', 9, 0, 0, 0, '')");
        db->execute("INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stIstInvNR, stTyp, stBeschreibung, stArtNr, "
                    "Datum, Uhrzeit) VALUES ('Ost', 'E0.2', 'I1', 'I1', '1 OK', 'Stuhl', 'A1', '02.11.2026', "
                    "'08:00:00'), ('Ost', 'E0.2', 'I2', '', '3b', 'Tisch', 'A2', '', ''), "
                    "('Ost', 'E0.10', 'I3', 'I3', '1 OK', 'Schrank', 'A3', '03.11.2026', '14:05:09')");
    }

    std::unique_ptr<Database> db = Database::inMemory();
};

TEST_F(OverviewTablesTest, OrdersComeInRegisterOrderWithTheirFiguresAndKeys)
{
    const ShownTable t = orderTable(*db);
    ASSERT_EQ(t.rows.size(), 2u);
    EXPECT_EQ(t.keys, (Row{"3", "7"}));
    EXPECT_EQ(t.headings, (Row{"Auftrag", "Stand", "Räume", "N", "E", "L", "Räume fertig %", "Dateien", "Scans",
                               "Erwartet", "Gefunden", "Gefunden %", "1", "2a", "2b", "2c", "3a", "3b",
                               "Letzter Scan", "Fehler"}));
    EXPECT_EQ(t.rows[1], (Row{"Ost", "aktuell", "4", "1", "2", "1", "75,0", "2", "30", "20", "15", "75,0", "15", "1",
                              "2", "3", "4", "5", "03.11.2026 14:05:09", ""}));
    EXPECT_EQ(t.rows[0][0], "West");
    EXPECT_EQ(t.rows[0][1], "nie ausgewertet");
    EXPECT_EQ(t.rows[0][18], "");
    EXPECT_EQ(orderHeadings(), t.headings);
}

TEST_F(OverviewTablesTest, AnOrdersRoomsAndARoomsObjects)
{
    const ShownTable rooms = roomTable(*db, "ost");
    EXPECT_EQ(rooms.headings, roomHeadings());
    EXPECT_EQ(rooms.keys, (Row{"E0.10", "E0.2"}));
    EXPECT_EQ(rooms.rows[0], (Row{"E0.10", "Flur", "E", "3", "2", "4", "66,7", "03.11.2026 14:05:09"}));
    EXPECT_EQ(rooms.rows[1], (Row{"E0.2", "Büro", "L", "6", "6", "6", "100,0", "02.11.2026 08:00:00"}));
    EXPECT_EQ(roomTable(*db, "West").rows.size(), 1u);
    EXPECT_TRUE(roomTable(*db, "Nord").rows.empty());

    const ShownTable objects = objectTable(*db, "Ost", "E0.2");
    EXPECT_EQ(objects.headings, objectHeadings());
    ASSERT_EQ(objects.rows.size(), 2u);
    EXPECT_EQ(objects.rows[0], (Row{"1 OK", "I1", "I1", "Stuhl", "A1", "", "", "", "02.11.2026", "08:00:00"}));
    EXPECT_EQ(objects.rows[1][0], "3b");
    EXPECT_EQ(objectTable(*db, "Ost", "E0.10").rows.size(), 1u);
    EXPECT_TRUE(objectTable(*db, "West", "E0.2").rows.empty());
}

TEST_F(OverviewTablesTest, EveryListHasATabAndItsHeadings)
{
    const auto lists = overviewLists();
    ASSERT_EQ(lists.size(), 8u);
    const Row titles{"Verschoben", "Doppelt erfasst", "Zuviel", "Nicht in Quarn", "Fehlend", "Nicht geprüft",
                     "Überschneidungen", "Hinweise"};
    const Row tables{"L_Verschoben", "L_Doppelt",    "L_Zuviel",          "L_Unbekannt",
                     "L_Fehlend",    "L_Ungeprueft", "L_Ueberschneidung", "L_Hinweis"};
    for (std::size_t i = 0; i < lists.size(); ++i) {
        EXPECT_EQ(lists[i].title, titles[i]);
        EXPECT_EQ(lists[i].table, tables[i]);
        EXPECT_FALSE(listHeadings(lists[i].table).empty()) << tables[i];
        EXPECT_TRUE(listTable(*db, lists[i].table).rows.empty());
    }
    EXPECT_TRUE(listHeadings("P_Auftrag").empty());
}

TEST_F(OverviewTablesTest, ListRowsAreSortedAndShownWithTheirHeadings)
{
    db->execute("INSERT INTO L_Doppelt (stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stZeit, stDatei, iAuftraege, iRang) "
                "VALUES ('I9', 'West', 'O1.1', '01.11.2026', '10:00:00', '2026-11-01 10:00:00', 'w.dat', 2, 2), "
                "('I9', 'Ost', 'E0.2', '03.11.2026', '09:00:00', '2026-11-03 09:00:00', 'o.dat', 2, 1)");
    const ShownTable t = listTable(*db, "L_Doppelt");
    EXPECT_EQ(t.headings, (Row{"Inv.-Nr.", "Auftrag", "Raum", "Datum", "Uhrzeit", "Datei", "Aufträge", "Rang"}));
    ASSERT_EQ(t.rows.size(), 2u);
    EXPECT_EQ(t.rows[0], (Row{"I9", "Ost", "E0.2", "03.11.2026", "09:00:00", "o.dat", "2", "1"}));
    EXPECT_EQ(t.rows[1][1], "West");

    db->execute("INSERT INTO L_Ungeprueft (lIdRB, stRaumNr, stBezeichnung, iErwartet, stPruefung) VALUES "
                "(40, 'K0.1', 'Keller', 12, ?1)",
                {kNichtGeprueft});
    EXPECT_EQ(listTable(*db, "L_Ungeprueft").rows.at(0), (Row{"K0.1", "Keller", "12", "nicht geprüft"}));
}

TEST_F(OverviewTablesTest, TheMainWindowsColumnsPerOrder)
{
    EXPECT_EQ(orderListHeadings(), (Row{"Räume fertig", "Gescannt", "Gefunden %", "Letzter Scan", "Stand"}));
    const auto figures = orderListFigures(*db);
    ASSERT_EQ(figures.size(), 2u);
    EXPECT_EQ(figures.at(7), (Row{"3 von 4", "30", "75,0", "03.11.2026 14:05:09", "aktuell"}));
    EXPECT_EQ(figures.at(3), (Row{"0 von 2", "0", "0,0", "", "nie ausgewertet"}));
}

TEST_F(OverviewTablesTest, TheProjectsTotalsInOneLine)
{
    EXPECT_EQ(projectTotalsText(*db),
              "2 Aufträge, Räume fertig: 3 von 6 (50,0 %), Objekte gefunden: 15 von 29 (51,7 %), Scans: 30");
    db->execute("DELETE FROM P_Auftrag WHERE lAuftragID = 3");
    EXPECT_EQ(projectTotalsText(*db),
              "1 Auftrag, Räume fertig: 3 von 4 (75,0 %), Objekte gefunden: 15 von 20 (75,0 %), Scans: 30");
    db->execute("DELETE FROM P_Auftrag");
    EXPECT_EQ(projectTotalsText(*db),
              "0 Aufträge, Räume fertig: 0 von 0 (0,0 %), Objekte gefunden: 0 von 0 (0,0 %), Scans: 0");
}

TEST(OverviewTexts, PercentAndStamps)
{
    EXPECT_EQ(percentText(0), "0,0");
    EXPECT_EQ(percentText(57.14), "57,1");
    EXPECT_EQ(percentText(99.96), "100,0");
    EXPECT_EQ(stampText("2026-11-03 14:05:09"), "03.11.2026 14:05:09");
    EXPECT_EQ(stampText("3.11.26 14:05"), "3.11.26 14:05");
    EXPECT_EQ(stampText(""), "");
}

} // namespace
} // namespace qi
