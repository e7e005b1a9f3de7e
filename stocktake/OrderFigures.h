#pragma once
// One order's part of the project result: its rooms (P_Raum), scan lines (P_Scan),
// difference list (P_Diff) and its row of figures (P_Auftrag), read from its database.

#include <cstdint>
#include <string>
#include <vector>

namespace qi {

class Database;
class NumberSightings;
class QuarnRooms;

/// What the register and the overview say of an order, beside what its database holds.
struct OrderHeader {
    std::int64_t lAuftragID = 0;
    std::string stAuftrag;
    std::string stPfad;
    std::string stDatei;
    std::string stStand;
    std::string stFehler;
};

/// An order database (its own, or the copy a fresh evaluation made of it) attached to the result
/// database only for reading, for the time of the object, so that its rows are copied set-based.
/// Made and ended outside a transaction of the result database; DbError when it can't be attached.
class AttachedOrder {
public:
    AttachedOrder(Database& result, Database& order);
    ~AttachedOrder();
    AttachedOrder(const AttachedOrder&) = delete;
    AttachedOrder& operator=(const AttachedOrder&) = delete;
    Database& order() const { return order_; }

private:
    Database& result_;
    Database& order_;
};

/// Writes the order's rows into the result database `result`: its figures from `order` (only
/// read) and Quarn's objects of its rooms, and notes its scans and difference rows in
/// `sightings`. Counts per category as `qinventur-cli auswerten` counts them. DbError when the
/// order can't be read.
void writeOrderFigures(Database& result, const AttachedOrder& order, const OrderHeader& header,
                       const QuarnRooms& quarn, NumberSightings& sightings);

/// Writes the P_Auftrag row of an order whose database gives no figures (it is missing or can't
/// be read): every count 0.
void writeOrderWithoutFigures(Database& result, const OrderHeader& header);

/// The rooms of the order with status "N".
std::int64_t roomsWithoutScans(Database& order);

/// The paths (as T_Dateien keeps them) of the order's scanner files that are no longer at their place.
std::vector<std::string> missingScannerFiles(Database& order);

} // namespace qi
