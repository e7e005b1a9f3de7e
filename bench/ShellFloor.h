#pragma once
// The sqlite3-shell floor of an order's import and evaluation: the shell loads the same
// scanner lines into a scan table and classifies them set-based into the same six
// categories as the evaluation, on its own copies of Quarn's objects and the order's rooms.
// What the program does beyond the engine's own work is measured against it.

#include "Database.h"
#include "DemoInstallation.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace qi::bench {

namespace fs = std::filesystem;

/// Processor seconds (user and system) of RUSAGE_SELF or RUSAGE_CHILDREN.
double cpuSeconds(int who);

/// The floor's own copy of Quarn's INVENTAR objects, "objects.csv" in `folder`.
void writeFloorObjects(const demo::Installation& inst, const fs::path& folder);

/// The floor's own copy of the order's rooms, "rooms.csv" in `folder`.
void writeFloorRooms(Database& order, const fs::path& folder);

/// What the floor took: wall-clock and processor seconds, and the count per category
/// (the first two characters of the type).
struct Floor {
    double seconds = 0;
    double cpu = 0;
    std::map<std::string, long> counts;
    bool ok = true;
};

/// Loads the scanner files into the floor's scan table in a database of its own in `folder`
/// and classifies them; only the loading and the classifying are timed.
Floor runFloor(const fs::path& folder, const std::vector<std::string>& files);

} // namespace qi::bench
