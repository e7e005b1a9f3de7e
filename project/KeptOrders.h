#pragma once
// Order databases that the program kept before it replaced or deleted them. Whenever
// creating an order would copy the empty order database over an existing file, and
// whenever an order is deleted, the file that lay there is first kept in the project's
// folder "Inventur\Gesichert" under a name that says which order it was and when it was
// kept: "EG 2026-11-25 17-31-05.mdb" (" (2)" and on when that name is taken), with the
// journal that lay beside it. Such a file can be taken back as a new order.

#include "JetDate.h"
#include "Settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qi {

/// Messages about kept order databases.
namespace keptmsg {
/// "Die bisherige Datenbank des Auftrags '<order>' wurde gesichert: <path>"
std::string kept(const std::string& keptFile);
/// A command that only reads an order whose last change was cut off.
std::string readBeforeCutOff(const std::string& order);
} // namespace keptmsg

/// The folder of the kept order databases in the order folder.
inline constexpr const char* kKeptFolder = "Gesichert";

/// The project's folder of kept order databases: "Inventur\Gesichert" below the project folder.
std::string keptOrdersFolder(const Settings& settings);

/// The name under which an order database of `order` kept at `when` is stored; `number` above 1
/// adds " (number)". The order's part is shortened (whole characters) so that the name with
/// ".mdb-journal" is a file name of every file system.
std::string keptFileName(const std::string& order, const JetDate& when, int number = 1);

/// Reads a kept file's name: the order and the time it was kept. False when the name is no such name.
bool parseKeptFileName(const std::string& fileName, std::string& order, JetDate& when);

/// Keeps the order database `file` (and the journal beside it) in the kept folder under a free
/// name for the order its name says and the time now. The file stays at its place too where the
/// file system gives a file two names, else it is moved there. The kept file's path; empty when
/// it can't be kept (the file is then where it was).
std::string keepOrderDatabase(const Settings& settings, const std::string& file);

/// One kept order database as the list shows it.
struct KeptOrder {
    std::string file;        ///< its name in the kept folder
    std::string order;       ///< the order its name says
    JetDate keptAt;          ///< when it was kept
    std::int64_t scans = -1; ///< rows of T_DatInventur; -1 when the file can't be read as an order
    std::int64_t files = -1; ///< rows of T_Dateien; -1 likewise
};

/// The kept order databases of the project, ordered by order and time. Each is only read (a file
/// that was kept with a journal is read from a private, put-back copy).
std::vector<KeptOrder> listKeptOrders(const Settings& settings);

} // namespace qi
