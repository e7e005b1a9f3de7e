#include "CrossOrderLists.h"

#include "Categories.h"
#include "Database.h"
#include "NumberSightings.h"
#include "ProjectResultSchema.h"

namespace qi {

namespace {

// The lists read the rows of P_Diff and P_Scan that NumberSightings gathered into temp.Diff
// and temp.Scan, with their rowids. Every text column of the project result compares as Jet
// does; where a value passes through a subquery or a window, the comparison is named again so
// that it never falls back to comparing bytes.

// A missing object ("3b") of one order whose number another order scanned in a room other
// than the one the object belongs in: one row per such scan.
constexpr const char* kVerschoben =
    "INSERT INTO L_Verschoben (stInvNr, stBeschreibung, stArtNr, stAuftragSoll, stRaumSoll, stAuftragIst, "
    "stRaumIst, Datum, Uhrzeit, stZeit) "
    "SELECT d.stSollInvNR, d.stBeschreibung, d.stArtNr, d.stAuftrag, d.stRaumNr, s.stAuftrag, s.stRaum, "
    "s.Datum, s.Uhrzeit, s.stZeit "
    "FROM temp.Diff AS d INNER JOIN temp.Scan AS s ON s.stInvNr = d.stSollInvNR "
    "WHERE d.stTyp = ?1 AND s.stAuftrag <> d.stAuftrag AND s.stRaum <> d.stRaumNr "
    "ORDER BY d.stSollInvNR, d.stAuftrag, d.stRaumNr, s.stZeit, s.stAuftrag, s.stRaum";

// Every scan of a number that more than one order scanned, the latest first.
constexpr const char* kDoppelt =
    "INSERT INTO L_Doppelt (stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stZeit, stDatei, iAuftraege, iRang) "
    "SELECT stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stZeit, stDatei, k, rang FROM ("
    " SELECT s.stInvNr, s.stAuftrag, s.stRaum, s.Datum, s.Uhrzeit, s.stZeit, s.stDatei, n.k,"
    "  ROW_NUMBER() OVER (PARTITION BY s.stInvNr COLLATE JET ORDER BY s.stZeit COLLATE JET DESC,"
    "   s.stAuftrag COLLATE JET, s.stRaum COLLATE JET, s.stDatei COLLATE JET, s.rowid) AS rang"
    " FROM temp.Scan AS s INNER JOIN ("
    "  SELECT stInvNr, COUNT(DISTINCT stAuftrag) AS k FROM temp.Scan GROUP BY stInvNr"
    "  HAVING COUNT(DISTINCT stAuftrag) > 1) AS n ON s.stInvNr = n.stInvNr) "
    "ORDER BY stInvNr COLLATE JET, rang";

// Surplus ("2b") that no other order expects.
constexpr const char* kZuviel =
    "INSERT INTO L_Zuviel (stAuftrag, stRaum, stInvNr, stArtNr, stQuarn, Datum, Uhrzeit, stZeit) "
    "SELECT d.stAuftrag, d.stRaumNr, d.stIstInvNR, d.stArtNr, d.stQuarn, d.Datum, d.Uhrzeit, d.stZeit "
    "FROM temp.Diff AS d WHERE d.stTyp = ?1 AND NOT EXISTS (SELECT 1 FROM temp.Diff AS o "
    " WHERE o.stSollInvNR = d.stIstInvNR AND o.stSollInvNR <> '' AND o.stAuftrag <> d.stAuftrag) "
    "ORDER BY d.stAuftrag, d.stRaumNr, d.stIstInvNR";

// Each number unknown to Quarn ("2c") once: taken from its scans in every order (from its
// rows of the difference lists where no scan holds it any more), with the first scan's
// article, room and date, the orders in name order and the number of scans.
constexpr const char* kUnbekannt =
    "INSERT INTO L_Unbekannt (stInvNr, stArtNr, stAuftraege, stRaum, iScans, Datum, stZeit) "
    "WITH u AS (SELECT DISTINCT stIstInvNR AS nr FROM temp.Diff WHERE stTyp = ?1),"
    " seen AS ("
    "  SELECT s.stInvNr AS nr, s.stAuftrag, s.stRaum, s.stArtNr, s.Datum, s.stZeit, s.rowid AS pos"
    "  FROM temp.Scan AS s WHERE s.stInvNr IN (SELECT nr FROM u)"
    "  UNION ALL"
    "  SELECT d.stIstInvNR, d.stAuftrag, d.stRaumNr, d.stArtNr, d.Datum, d.stZeit, -d.rowid FROM temp.Diff AS d"
    "  WHERE d.stTyp = ?1 AND NOT EXISTS (SELECT 1 FROM temp.Scan AS s WHERE s.stInvNr = d.stIstInvNR)),"
    " firstOfOrder AS (SELECT nr, stAuftrag, stRaum, stArtNr, Datum, stZeit, pos,"
    "  ROW_NUMBER() OVER (PARTITION BY nr COLLATE JET, stAuftrag COLLATE JET) AS ra FROM seen),"
    " ranked AS (SELECT nr, stAuftrag, stRaum, stArtNr, Datum, stZeit,"
    "  ROW_NUMBER() OVER (PARTITION BY nr COLLATE JET ORDER BY stZeit COLLATE JET, stAuftrag COLLATE JET,"
    "   stRaum COLLATE JET, pos) AS r,"
    "  COUNT(*) OVER (PARTITION BY nr COLLATE JET) AS n,"
    "  group_concat(CASE WHEN ra = 1 THEN stAuftrag END, ', ') OVER (PARTITION BY nr COLLATE JET"
    "   ORDER BY stAuftrag COLLATE JET ROWS BETWEEN UNBOUNDED PRECEDING AND UNBOUNDED FOLLOWING) AS liste"
    "  FROM firstOfOrder) "
    "SELECT nr, stArtNr, liste, stRaum, n, Datum, stZeit FROM ranked WHERE r = 1 ORDER BY nr COLLATE JET";

// Each missing number ("3b") that no order scanned, once: with the row of the first order by name.
constexpr const char* kFehlend =
    "INSERT INTO L_Fehlend (stInvNr, stBeschreibung, stArtNr, stAuftrag, stRaum) "
    "SELECT nr, stBeschreibung, stArtNr, stAuftrag, stRaumNr FROM ("
    " SELECT d.stSollInvNR AS nr, d.stBeschreibung, d.stArtNr, d.stAuftrag, d.stRaumNr,"
    "  ROW_NUMBER() OVER (PARTITION BY d.stSollInvNR COLLATE JET ORDER BY d.stAuftrag COLLATE JET,"
    "   d.stRaumNr COLLATE JET, d.rowid) AS r"
    " FROM temp.Diff AS d WHERE d.stTyp = ?1"
    "  AND NOT EXISTS (SELECT 1 FROM temp.Scan AS s WHERE s.stInvNr = d.stSollInvNR)) "
    "WHERE r = 1 ORDER BY stAuftrag COLLATE JET, stRaumNr COLLATE JET, nr COLLATE JET";

// The rooms of the building structure, for the time of one call.
constexpr const char* kRoomsCreate =
    "CREATE TEMP TABLE Gebaeuderaum (lIdRB INTEGER, stRaumNr TEXT COLLATE JET, stBezeichnung TEXT COLLATE JET, "
    "iErwartet INTEGER)";
constexpr const char* kRoomsIndex = "CREATE INDEX temp.Gebaeuderaum_lIdRB ON Gebaeuderaum (lIdRB)";
constexpr const char* kRoomsInsert =
    "INSERT INTO temp.Gebaeuderaum (lIdRB, stRaumNr, stBezeichnung, iErwartet) VALUES (?1, ?2, ?3, ?4)";
constexpr const char* kRoomsDrop = "DROP TABLE IF EXISTS temp.Gebaeuderaum";

// Rooms of the building structure that no order has.
constexpr const char* kUngeprueft =
    "INSERT INTO L_Ungeprueft (lIdRB, stRaumNr, stBezeichnung, iErwartet, stPruefung) "
    "SELECT g.lIdRB, g.stRaumNr, g.stBezeichnung, g.iErwartet, ?1 FROM temp.Gebaeuderaum AS g "
    "WHERE NOT EXISTS (SELECT 1 FROM P_Raum AS r WHERE r.lIdRB = g.lIdRB) "
    "ORDER BY g.stRaumNr, g.lIdRB";

// Rooms that more than one order has: the room number of the first order by name, the
// name of the building structure where it knows the room.
constexpr const char* kUeberschneidung =
    "INSERT INTO L_Ueberschneidung (lIdRB, stRaumNr, stBezeichnung, stAuftraege, iAuftraege) "
    "SELECT x.lIdRB, x.stRaumNr, CASE WHEN g.lIdRB IS NULL THEN x.stBezeichnung ELSE g.stBezeichnung END,"
    " x.liste, x.k FROM ("
    " SELECT lIdRB, stRaumNr, stBezeichnung,"
    "  ROW_NUMBER() OVER (PARTITION BY lIdRB ORDER BY stAuftrag COLLATE JET, pos) AS r,"
    "  SUM(ra = 1) OVER (PARTITION BY lIdRB) AS k,"
    "  group_concat(CASE WHEN ra = 1 THEN stAuftrag END, ', ') OVER (PARTITION BY lIdRB"
    "   ORDER BY stAuftrag COLLATE JET ROWS BETWEEN UNBOUNDED PRECEDING AND UNBOUNDED FOLLOWING) AS liste"
    " FROM (SELECT lIdRB, stRaumNr, stBezeichnung, stAuftrag, rowid AS pos,"
    "  ROW_NUMBER() OVER (PARTITION BY lIdRB, stAuftrag COLLATE JET) AS ra FROM P_Raum)) AS x "
    "LEFT JOIN (SELECT lIdRB, MIN(stBezeichnung) AS stBezeichnung FROM temp.Gebaeuderaum GROUP BY lIdRB) AS g"
    " ON g.lIdRB = x.lIdRB "
    "WHERE x.r = 1 AND x.k > 1 ORDER BY x.stRaumNr COLLATE JET, x.lIdRB";

constexpr const char* kListRowsDrop = "DROP TABLE temp.Diff; DROP TABLE temp.Scan;";

} // namespace

void makeCrossOrderLists(Database& result, const NumberSightings& sightings)
{
    Database::Transaction tx(result);
    for (const char* table : {"L_Verschoben", "L_Doppelt", "L_Zuviel", "L_Unbekannt", "L_Fehlend"})
        result.execute(std::string("DELETE FROM ") + table);
    sightings.writeListRows(result);
    result.execute(kVerschoben, {category::k3b});
    result.execute(kDoppelt);
    result.execute(kZuviel, {category::k2b});
    result.execute(kUnbekannt, {category::k2c});
    result.execute(kFehlend, {category::k3b});
    result.executeScript(kListRowsDrop);
    tx.commit();
}

void makeCrossOrderLists(Database& result)
{
    NumberSightings sightings;
    sightings.noteAll(result);
    makeCrossOrderLists(result, sightings);
}

void makeCoverageLists(Database& result, const std::vector<ExpectedRoom>& allRooms)
{
    Database::Transaction tx(result);
    result.execute("DELETE FROM L_Ungeprueft");
    result.execute("DELETE FROM L_Ueberschneidung");
    result.execute(kRoomsDrop);
    result.execute(kRoomsCreate);
    result.execute(kRoomsIndex);
    for (const ExpectedRoom& room : allRooms)
        result.execute(kRoomsInsert, {std::int64_t{room.lIdRB}, room.stRaumNr, room.stBezeichnung,
                                      std::int64_t{room.iErwartet}});
    result.execute(kUngeprueft, {kNichtGeprueft});
    result.execute(kUeberschneidung);
    result.execute(kRoomsDrop);
    tx.commit();
}

} // namespace qi
