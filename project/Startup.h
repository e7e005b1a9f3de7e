#pragma once
// The program's start-up, run once when the main window loads: it finds Quarn's
// current project from "Quarn.ini" in the program folder, reads "Projekt.ini"
// there, takes the project for this program (or finds it read-only), seeds a new
// project from the template folder "Leeres Projekt", opens the project's order
// register and Quarn's building and object data. The main window shows the
// caption, keeps the objects and fills its order list afterwards.

#include "CInventurDb.h"
#include "ProfileFile.h"
#include "ProgramFolder.h"
#include "ProjectLock.h"
#include "QuarnHost.h"
#include "Settings.h"
#include "UserInteraction.h"

#include <memory>
#include <string>

namespace qi {

/// Messages of the start-up (critical icon, title "Problem").
namespace startupmsg {
inline constexpr const char* Title = "Problem";
inline constexpr const char* ProjectNotFound = "Projekt nicht gefunden!";
inline constexpr const char* NoConnectionString = "ConnectionString nicht gefunden!";
inline constexpr const char* SeedingFailed =
    "Die Datenbanken oder die Reports konnten nicht aus dem Verzeichnis Leeres Projekt kopiert werden!";
/// Label of the common error message of an unexpected error.
inline constexpr const char* ErrorLabel = "frmMain.Form_Load";
} // namespace startupmsg

/// What start-up leaves to the main window.
struct StartupResult {
    /// The window caption: "Aufträge im Projekt: '" + the raw "Projekt" value + "'".
    std::string caption;
    /// True when every step ran; false when start-up ended early (no register then).
    bool completed = false;
    /// The order register, opened on gstProjektPfad + "QInventur.mdb" (read-only when the project is).
    std::unique_ptr<CInventurDb> inventurDb;
    /// The project's lock, to be kept while the program works on the project; null when the
    /// project is read-only for this program (settings.readOnly, see ProjectAccess.h).
    std::shared_ptr<ProjectLock> lock;
    /// Quarn's building database component (its objects opened for the module).
    std::unique_ptr<QGebDb> gebDb;
    /// Quarn's object component for the module.
    std::unique_ptr<QObjektDb> objektDb;
};

/// Runs start-up for the program folder `programFolder` (no trailing separator) and fills `settings`.
/// Messages go to `ui`; nothing is thrown. A read-only project (TakeProject) is not seeded and its
/// register is opened read-only. A register that can't be opened or is no order register ends
/// start-up with the reason (critical icon, title "Problem"), so that nothing is written into it.
StartupResult RunStartup(const std::string& programFolder, Settings& settings, UserInteraction& ui);
/// The same with a given profile service (tests use one that fails on purpose).
StartupResult RunStartup(const std::string& programFolder, Settings& settings, UserInteraction& ui,
                         const ProfileService& profile);
/// Start-up of a program whose writable files may lie in a program folder of the user's own
/// (ProgramFolder.h): "Quarn.ini" is read from quarnIniFolder(folders) and a relative project value
/// taken below that folder; gstAppPfad is the installation, and the report database lies in
/// folders.own. With folders.own == folders.installation this is start-up in that folder.
StartupResult RunStartup(const ProgramFolders& folders, Settings& settings, UserInteraction& ui);
StartupResult RunStartup(const ProgramFolders& folders, Settings& settings, UserInteraction& ui,
                         const ProfileService& profile);

/// Quarn's building component for the project of `settings`, as start-up opens it: the building
/// database and, for a module with a table prefix, its objects for the per-room query, both read
/// through their mirrors. The component is returned also when a step failed (start-up keeps it so);
/// `error` then receives the failing step's LastError.
std::unique_ptr<QGebDb> openBuildingComponent(const Settings& settings, std::string* error = nullptr);

/// Makes the mirror of an ODBC project's server database anew (start-up, opening an order). A server that
/// can't be reached is reported (critical icon, title "Problem") and the last copy stays; false then.
bool refreshServerMirror(const Settings& settings, UserInteraction& ui);

/// Seeds the project folder from the template folder gstAppPfad + "\Leeres Projekt\" unless it already
/// holds "QInventur.mdb": the register, "QAuftrag.mdb" and the eight report files, the latter copied to
/// gstProjektPfad + "Report" + file name (so "Reportinvraum.rpt" ... in the project folder itself).
/// False when a copy failed; the copying stops there and files already copied stay. Each file is
/// copied whole or not at all (AtomicFile.h), and the register takes its name last, so that a start
/// that dies while seeding leaves no register. A register that an interrupted seeding left empty
/// or cut short, or one beside such a "QAuftrag.mdb", is seeded again while "Inventur\" holds no order.
bool CheckDB_Reports(const Settings& settings);
/// The same with a given profile service.
bool CheckDB_Reports(const Settings& settings, const ProfileService& profile);

/// The report files of a project, in the order they are seeded.
inline constexpr const char* kReportFiles[] = {"invraum.rpt", "invart.rpt", "invdiff.rpt", "invfehlend.rpt",
                                               "invliste.rpt", "invneu.rpt", "invversch.rpt", "invausw.rpt"};

} // namespace qi
