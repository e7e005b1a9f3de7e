#pragma once
// The lists across orders of the project result (ProjectResultSchema.h), made from its
// order tables P_Auftrag, P_Raum, P_Scan and P_Diff by set-based statements over the rows
// they need (NumberSightings.h); numbers and rooms compare as the order databases compare them.

#include <string>
#include <vector>

namespace qi {

class Database;
class NumberSightings;
struct GebRoom;

/// Fills L_Verschoben, L_Doppelt, L_Zuviel, L_Unbekannt and L_Fehlend from the rows of P_Scan
/// and P_Diff that `sightings` noted.
void makeCrossOrderLists(Database& result, const NumberSightings& sightings);
/// The same, with the rows of P_Scan and P_Diff noted first.
void makeCrossOrderLists(Database& result);

/// A room of the building structure with the number of objects Quarn expects in it.
struct ExpectedRoom {
    int lIdRB = 0;
    std::string stRaumNr;
    std::string stBezeichnung;
    int iErwartet = 0;
};

/// Fills L_Ungeprueft (rooms of `allRooms` that no order has, by lIdRB) and L_Ueberschneidung
/// (rooms in more than one order).
void makeCoverageLists(Database& result, const std::vector<ExpectedRoom>& allRooms);

} // namespace qi
