#pragma once
// A fresh order database with helpers that store rooms, scans and difference rows
// the way the import and the evaluation run do, and read back what the statements wrote.

#include "TestSupport.h"

#include <string>
#include <vector>

namespace qi::test {

inline constexpr const char* kTyp1 = "1 OK";
inline constexpr const char* kTyp2a = "2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)";
inline constexpr const char* kTyp2b = "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)";
inline constexpr const char* kTyp3a = "3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)";
inline constexpr const char* kTyp3b =
    "3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.";

/// One row of T_Differenzliste as the tests compare it.
struct DiffRow {
    std::int64_t lID = 0;
    std::int64_t lRaumID = 0;
    std::string stSollInvNR, stIstInvNR, stBeschreibung, stZiel, stQuelle, stQuarn, Datum, Uhrzeit, stTyp;
    std::int64_t iReihenfolge = 0;
};

class StatementsTest : public OrderDbTest {
protected:
    /// Stores a room of the order with status "E"; returns its key.
    std::int32_t addRoom(const std::string& nr, const std::string& uhrzeit = "");
    /// Imports one scan line; returns false when it was refused as a duplicate.
    bool addScan(const std::string& room, const std::string& inv, const std::string& art = "ART1",
                 const std::string& datum = "01.02.2024", std::int32_t datId = 1,
                 const std::string& uhrzeit = "10:00:00");
    /// A Soll row as the evaluation run writes it (category 3b).
    std::int32_t addSoll(std::int32_t roomId, const std::string& inv, const std::string& beschreibung = "",
                         const std::string& art = "ART1");
    /// Any difference row.
    std::int32_t addDiff(CDifferenzlisteRec rec);
    /// All rows of T_Differenzliste in key order.
    std::vector<DiffRow> diffRows();
    /// Drops the unique index on the inventory number (an order file made without it).
    void dropUniqueInvNr();
    /// The engine's description for a statement on a missing table.
    std::string missingTableText(const std::string& table);
    Database& sql() { return *db.database(); }
};

} // namespace qi::test
