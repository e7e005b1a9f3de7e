#pragma once
// The order of the demo's ground floor as the tests build it: every room that the
// demo's two ground-floor scanner files scan, added as the room selection adds rooms.

#include "CAuftragDb.h"
#include "DemoInstallation.h"

#include <string>
#include <vector>

namespace qi::test {

/// The installation's rooms that the first two scanner files scan, in the installation's order.
std::vector<demo::Room> groundFloorRooms(const demo::Installation& inst, const std::vector<demo::ScanFile>& scanFiles);

/// Adds the rooms to the order `order` with status "N"; the database's error text at the
/// first room that can't be added, else "".
std::string addOrderRooms(CAuftragDb& db, const std::vector<demo::Room>& rooms, const std::string& order);

} // namespace qi::test
