#pragma once
// The report database "QInventurRpt.mdb" in the program folder: its path, the two
// stored queries that the reports read, defined per module, and the private copy of
// it that each running program keeps for its own reports.
//
// The program folder's file is shared by every program started from that folder (on a
// terminal server by every user), and each of them points its links at the order it
// opens. What a program's reports read is therefore its own copy: made in a folder of
// the program's own whenever the shared file is relinked for an order of this program,
// and linked to that order, so that another program relinking the shared file in
// between changes nothing that this program reads.

#include "JetSql.h"
#include "LinkedDatabase.h"
#include "PrivateFolder.h"
#include "Settings.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qi {

/// File name of the report database in the program folder.
inline constexpr const char* kReportDatabaseFile = "QInventurRpt.mdb";
/// The stored queries of the report database.
inline constexpr const char* kQueryAnzProRaum = "Q_AnzProRaum";
inline constexpr const char* kQueryDiffListe = "Q_DiffListe";

/// The report database that this program's reports read: the settings' own report database file
/// when they name one, else the program's private copy when it keeps one, else the shared file.
std::string reportDatabasePath(const Settings& settings);
/// The program folder's report database, shared by every program started from there:
/// gstAppPfad + "\QInventurRpt.mdb", or the user's own program folder's when there is one.
std::string sharedReportDatabasePath(const Settings& settings);

/// The private copy of the report database of one running program (the windows, one run of
/// qinventur-cli): a file in a folder below the system's temporary folder that only its user
/// can read, removed with its folder when the program ends.
class PrivateReportDatabase {
public:
    /// No folder yet: the first copyFrom makes it. The folder goes with the object.
    PrivateReportDatabase() = default;

    /// The copy ("<folder>/QInventurRpt.mdb"); empty until the folder is made.
    const std::string& file() const { return file_; }
    /// The folder of the copy; empty until it is made.
    std::string folder() const { return folder_ ? folder_->path() : std::string(); }
    /// Replaces the copy, in one step, by a copy of the report database `shared`, making the
    /// folder first if there is none yet. DbError when `shared` can't be read or the copy can't be
    /// written, std::runtime_error with the user's message when no folder can be made.
    void copyFrom(const std::string& shared);

private:
    std::unique_ptr<PrivateFolder> folder_;
    std::string file_;
};

/// Objects per room of the order, for the module (0, 1, 2); std::runtime_error
/// "Ungültiger Prozeduraufruf oder ungültiges Argument" for any other module.
JetSql anzProRaumQuery(std::int16_t modul);
/// The difference list with room, person responsible and cost centre, for the module
/// (0, 1, 2); std::runtime_error as anzProRaumQuery for any other module.
JetSql diffListeQuery(std::int16_t modul);

/// Sets the SQL of both stored queries for the module; DbError when the file lacks them.
/// A module outside 0..2 raises before either query is changed.
void setReportQueries(LinkedDatabase& db, std::int16_t modul);

} // namespace qi
