#pragma once
// A large order for the kill harness: a generated Quarn installation, its report
// database, an order of most of its rooms with three scanner files read, and a
// fourth file ready to be added. The operation program works on a copy of it; the
// harness compares content digests of the order database.

#include <string>

namespace qi::test {

/// Folders and files of a prepared order below `root`.
struct CrashOrder {
    explicit CrashOrder(std::string root);
    std::string root;    ///< the folder holding everything
    std::string project; ///< project folder (Quarn's databases, Inventur\A1.mdb, scanner files)
    std::string program; ///< program folder (QInventurRpt.mdb)
    std::string order;   ///< the order database
    std::string registry; ///< the project's order register, which names the order "A1"
    /// The scanner file that the operation "hinzufuegen" adds.
    std::string newFile() const;
};

/// Makes the installation, the report database and the order with three files read.
void prepareCrashOrder(const CrashOrder& o);

/// The operations the harness kills, by name: "hinzufuegen" (add a file of 10,000 lines),
/// "entfernen" (remove a file and rebuild), "neu" (rebuild), "auswerten" (evaluation),
/// "artikel" (article tally), "inventur" (inventory list), "raeume" (the room selection takes
/// rooms in and out and saves) on the order; "anlegen" (create the order kNewOrder) and
/// "loeschen" (delete the order "A1") on the project. Runs one to its end; false when the
/// name is unknown or the operation reported a failure.
/// The order that "anlegen" creates.
inline constexpr const char* kNewOrder = "B2";

bool runCrashOperation(const CrashOrder& o, const std::string& operation);

} // namespace qi::test
