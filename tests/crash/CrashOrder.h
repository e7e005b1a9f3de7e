#pragma once
// A large order for the kill harness: a generated Quarn installation, its report
// database and report files, an order of most of its rooms with three scanner files
// read, and a fourth file ready to be added. The operation program works on a copy of
// it; the harness compares content digests of the order database and of the files
// written. Beside it, a program folder with its template "Leeres Projekt" and a new
// project that a first start seeds.

#include <string>
#include <vector>

namespace qi::test {

/// Folders and files of a prepared order below `root`.
struct CrashOrder {
    explicit CrashOrder(std::string root);
    std::string root;    ///< the folder holding everything
    std::string project; ///< project folder (Quarn's databases, Inventur\A1.mdb, scanner files)
    std::string program; ///< program folder (QInventurRpt.mdb)
    std::string order;   ///< the order database
    std::string registry; ///< the project's order register, which names the order "A1"
    std::string firstProgram; ///< program folder of a first start (Quarn.ini, the template folder)
    std::string firstProject; ///< the new project that a first start seeds (Projekt.ini, Quarn's data)
    /// The scanner file that the operation "hinzufuegen" adds.
    std::string newFile() const;
    /// The file that an output operation ("pdf", "xlsx", "csv", "archiv") writes.
    std::string output(const std::string& operation) const;
    /// The template folder "Leeres Projekt" of the first start's program folder.
    std::string templateFolder() const;
};

/// Makes the installation, the report database and the order with three files read.
void prepareCrashOrder(const CrashOrder& o);
/// Makes the program folder of a first start and its new project (no register yet).
void prepareFirstStart(const CrashOrder& o);

/// The files that seeding puts in a project folder, in their order.
std::vector<std::string> seededFiles();

/// The order that "anlegen" creates.
inline constexpr const char* kNewOrder = "B2";

/// The operations the harness kills, by name: "hinzufuegen" (add a file of 10,000 lines),
/// "entfernen" (remove a file and rebuild), "neu" (rebuild), "auswerten" (evaluation),
/// "artikel" (article tally), "inventur" (inventory list), "raeume" (the room selection takes
/// rooms in and out and saves) on the order; "anlegen" (create the order kNewOrder) and
/// "loeschen" (delete the order "A1") on the project; "pdf" (the room list), "xlsx", "csv" (the
/// difference list; the order must have been evaluated) and "archiv" (the archive of the scan
/// data) write output(operation); "einrichten" starts the program the first time
/// on firstProject (which seeds it). Runs one to its end; false when the name is unknown
/// or the operation reported a failure.
bool runCrashOperation(const CrashOrder& o, const std::string& operation);

} // namespace qi::test
