#pragma once
// The large order of the benchmarks: a Quarn installation of 1,200 rooms and about
// 130,000 INVENTAR objects, an order of 1,000 of its rooms (a few marked "L", a few
// left "N"), and 10 scanner files of about 10,000 lines each (most objects found in
// place, some moved inside the order, objects from outside, unknown numbers, double
// scans in one room and across rooms, lines without number).

#include "CAuftragDb.h"
#include "DemoInstallation.h"
#include "UserInteraction.h"
#include "Settings.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qi::bench {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// QI_BENCH_SCALE=n makes everything n times smaller (for profiling under valgrind).
int scale();
/// Rooms of the order; of them the last 20 have no scans (10 marked "L", 10 left "N").
int orderRooms();
int scannedRooms();
inline constexpr int kFiles = 10;

double seconds(Clock::time_point a, Clock::time_point b);
/// Peak resident memory of this process's program so far, in kilobytes.
long peakKilobytes();

/// Writes the scanner files "Scan1.dat" ... of an order of the installation's first
/// `orderRoomCount` rooms into `folder`: kFiles files over all of them but the last 20;
/// adds their lines to `lines`.
void writeLargeOrderFiles(const demo::Installation& inst, const fs::path& folder, int orderRoomCount,
                          std::size_t& lines);

/// What the installation's maker noted for the benchmark.
struct Installation {
    std::size_t objects = 0; ///< INVENTAR objects
    std::size_t lines = 0;   ///< lines in the scanner files
    std::vector<std::pair<std::int32_t, std::string>> rooms; ///< id and number, in order
    std::vector<std::string> files;                          ///< the scanner files
};

/// Makes the installation in a child process (so that its memory is not counted): Quarn's
/// databases in `project`, the scanner files "Scan1.dat" ... in `folder`; `extra` may write
/// more from the installation there. Empty rooms when it could not be made.
Installation makeInstallation(const fs::path& folder, const fs::path& project,
                              const std::function<void(const demo::Installation&)>& extra = {});

/// The order "A1" of the installation's first orderRooms() rooms in `project`/Inventur/A1.mdb,
/// open, with the report database in `program` linked to it; `ui` is the user of both.
struct LargeOrder {
    LargeOrder(const fs::path& project, const fs::path& program, const Installation& installation,
               UserInteraction& ui);
    Settings settings;
    std::string orderPath;
    std::unique_ptr<CAuftragDb> order;
};

} // namespace qi::bench
