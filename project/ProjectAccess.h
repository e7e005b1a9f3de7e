#pragma once
// Who may change a project. One program at a time works on a project: it holds the
// project's lock (ProjectLock) for as long as it runs. A second program on the same
// project (a window or the command line), and a program whose project folder or order
// register can't be written, may look at everything but change nothing: the project is
// read-only for it, its orders are opened read-only and every command that would change
// something is refused. The windows and the command line share these functions.

#include "CAuftragDb.h"
#include "ProjectLock.h"
#include "Settings.h"
#include "UserInteraction.h"

#include <memory>
#include <string>

namespace qi {

/// The messages of a read-only project (exclamation icon, title "Quarn-Inventur").
namespace accessmsg {
inline constexpr const char* Title = "Quarn-Inventur";
/// A command that would change an order that is open read-only.
inline constexpr const char* OrderReadOnly =
    "Der Auftrag ist nur zum Ansehen geöffnet. Er kann nicht geändert werden.";
/// Creating or deleting an order of a read-only project.
inline constexpr const char* ProjectReadOnly =
    "Das Projekt ist nur zum Ansehen geöffnet. Aufträge können weder angelegt noch gelöscht werden.";
/// The project folder can be read but not written.
std::string folderReadOnly(const std::string& folder);
/// The order register can be read but not written.
std::string registerReadOnly(const std::string& file);
/// The database file of one order (or its folder) can be read but not written.
std::string orderReadOnly(const std::string& file);
} // namespace accessmsg

/// Takes the project in settings.gstProjektPfad for this program. When another program holds
/// it, or its folder or its order register "QInventur.mdb" can't be written, the project is
/// read-only: settings.readOnly and settings.readOnlyReason are set and the reason is shown once
/// (exclamation icon, title "Quarn-Inventur"). Answers the lock to keep while the program works
/// on the project; null when the project is read-only.
std::shared_ptr<ProjectLock> TakeProject(Settings& settings, UserInteraction& ui);

/// Opens the order database `db` (its DbPath set) for work and checks that it is an order
/// database. It is opened read-only when the project is read-only, or when the file or its
/// folder can't be written; in the latter case the user is told so once. False with LastError
/// set (the database stays closed) when the file can't be opened or is no order database.
bool OpenOrderForWork(CAuftragDb& db, const Settings& settings, UserInteraction& ui);

/// True, after telling the user (accessmsg::ProjectReadOnly), when the project is read-only:
/// no order may be created or deleted.
bool RefuseProjectChange(const Settings& settings, UserInteraction& ui);

/// True, after telling the user (accessmsg::OrderReadOnly), when the order in `db` is open
/// read-only: the command that asks must change nothing.
bool RefuseOrderChange(const CAuftragDb& db, UserInteraction& ui);

} // namespace qi
