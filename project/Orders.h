#pragma once
// The orders of a project without a window: creating an order (its database in the
// project's folder "Inventur" and its row in the register), deleting one and opening
// one for work. The main window and the command line call these same functions;
// they tell the user through UserInteraction, with the main window's labels.
//
// Creating and deleting survive a process that dies on the way: the register and the
// order's database are then either as before or as after the command. The only trace
// such a death may leave is an order database that no register row names.
//
// No order database is ever lost: a file that creating an order would replace, and the
// file of a deleted order, is kept in "Inventur\Gesichert" first (KeptOrders.h), from
// where it can be taken back as a new order.

#include "CAuftragDb.h"
#include "CInventurDb.h"
#include "RolledBackCopy.h"
#include "Settings.h"
#include "UserInteraction.h"

#include <memory>
#include <string>
#include <vector>

namespace qi {

/// Labels of the common error message of the main window's procedures.
namespace mainlabel {
inline constexpr const char* InitAuftraege = "frmMain.InitAuftraege";
inline constexpr const char* DblClick = "frmMain.lvAuftraege_DblClick";
inline constexpr const char* DateiFkt = "frmMain.mnuDateiFkt_Click";
inline constexpr const char* Paint = "frmMain.Form_Paint";
inline constexpr const char* Unload = "frmMain.Form_Unload";
inline constexpr const char* MakeNewOrder = "frmMain.MakeNewOrder";
inline constexpr const char* MakeDatabase = "frmMain.MakeDatabase";
} // namespace mainlabel

/// Messages of the order commands.
namespace ordermsg {
inline constexpr const char* Duplicate = "Es existiert bereits ein Auftrag mit diesem Namen!";
inline constexpr const char* DuplicateTitle = "Problem";
inline constexpr const char* SelectFirst = "Zu löschenden Auftrag zuerst auswählen!";
inline constexpr const char* SelectFirstTitle = "Achtung";
inline constexpr const char* DeleteTitle = "Quarn";
/// "Auftrag '" + name + "' löschen ?"
std::string deleteQuestion(const std::string& name);
/// Why an order is not created: the file it would replace can't be kept.
std::string notKept(const std::string& file);
/// Why a register row's database is neither opened nor deleted: it lies outside the order folder.
std::string outsideOrderFolder(const std::string& path);
} // namespace ordermsg

/// Descriptions of the run-time errors of the order commands' own steps.
namespace rterr {
inline constexpr const char* InvalidCall = "Ungültiger Prozeduraufruf oder ungültiges Argument";
inline constexpr const char* BadFileName = "Dateiname oder -nummer falsch";
inline constexpr const char* FileNotFound = "Datei nicht gefunden";
inline constexpr const char* PathFileAccess = "Fehler beim Zugriff auf Pfad/Datei";
inline constexpr const char* PathNotFound = "Pfad nicht gefunden";
} // namespace rterr

/// Folder of the order databases in the project folder.
inline constexpr const char* kOrderFolder = "Inventur";
/// The empty order database in the project folder that every new order copies.
inline constexpr const char* kTemplateOrderDb = "QAuftrag.mdb";

/// What became of an order command.
enum class OrderResult {
    Done,
    NameRefused,    ///< the name can't name a file in the order folder (said so)
    OutsideProject, ///< the register row names a file outside the order folder (said so)
    ReadOnly,       ///< the project may only be looked at (said so)
    Failed,         ///< an error was reported
};

/// How an order is opened.
enum class OrderAccess {
    Work, ///< stamped as opened now, opened for changes, the report database linked to it
    Look, ///< opened read-only; nothing is written
};

/// The first order of the collection with exactly this name (letter case counts), or null.
CAuftragRec* findOrder(CAuftragRecColl& orders, const std::string& name);

/// True, after the message "Es existiert bereits ein Auftrag mit diesem Namen!" (exclamation,
/// title "Problem"), when an order of the collection has exactly this name.
bool refuseTakenName(const CAuftragRecColl& orders, const std::string& name, UserInteraction& ui);

/// The database file of a register row's `stPfad`: below the project folder when it begins with
/// a backslash, else the path as it stands. Empty when that is no ".mdb" file directly in the
/// project's folder "Inventur" (after resolving "." and ".." and links).
std::string orderDatabaseFile(const Settings& settings, const std::string& stPfad);

/// Creates the order that `rec` names (stBezeichung, stErsteller): the record gets the creation
/// and change time now, its database "Inventur\<name>.mdb" is copied from the project's
/// "QAuftrag.mdb" and names the order in its T_Auftrag, and the record is stored in the register
/// with stPfad "\Inventur\<name>.mdb" (it receives its lID). A name that can't be a file name is
/// refused before anything is written ("frmMain.MakeDatabase" and why); failures of the database
/// file report as "frmMain.MakeDatabase", of the register as "frmMain.MakeNewOrder", and leave
/// neither a register row nor a new file. A file of the same name is replaced, after it was kept
/// (as is a file of that name in another letter case that no register row names); the kept
/// files' paths are added to `kept`. When a file can't be kept the order is not created.
OrderResult CreateOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                        std::vector<std::string>* kept = nullptr);

/// Takes the kept order database `keptFile` back as the new order that `rec` names, in the same
/// way as CreateOrder: its copy (put back first when a change of it was cut off) becomes
/// "Inventur\<name>.mdb" with T_Auftrag naming the order, and the record is stored in the register.
/// `keptFile` itself stays. A file that is no order database is refused ("frmMain.MakeDatabase").
OrderResult RestoreOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, const std::string& keptFile,
                         CAuftragRec& rec, std::vector<std::string>* kept = nullptr);

/// Deletes the order `rec`: its register row, then its database file, which is kept first (its
/// path in `kept`; a file that can't be kept is left where it is). A row whose file lies outside the
/// order folder is left as it is, after the message. Failures report as "frmMain.mnuDateiFkt_Click".
/// The caller has released the order's database.
OrderResult DeleteOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, const CAuftragRec& rec,
                        std::string* kept = nullptr);

/// Opens the order `rec` in `db` (which must not be open). For work: the record's letzte_Aenderung
/// becomes now and its open mark is set, it is written back to the register, the database is opened
/// for changes and the report database is linked to it. To look: the database is opened read-only.
/// An order opened read-only (to look, or for work in a read-only project or file) whose last change
/// was cut off (a journal lies beside it) is, when `putBack` is given, read from a private copy put
/// back to the state before that change, which is handed to `putBack` (the order's file stays as
/// it is). A row whose file lies outside the order folder is not opened. Failures
/// report as "frmMain.lvAuftraege_DblClick".
OrderResult OpenOrderDatabase(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                              CAuftragDb& db, OrderAccess access = OrderAccess::Work,
                              std::unique_ptr<RolledBackCopy>* putBack = nullptr);

} // namespace qi
