#pragma once
// The walk list ("Begehungsliste"): per room a page with the room's number, name, building,
// floor and the person responsible, and the objects Quarn expects in the room (those standing
// in it, variants not counted) with inventory number, article, description, remark and a box
// to tick. A report of the report engine (its file "invbegehung.rpt" in the project's
// "Report" folder, else the template folder's) over a small database of its own: W_Raum, a
// row per room, and W_Objekt, a row per object expected, filled from Quarn's data.

#include "LabelRooms.h"
#include "Report.h"

#include <memory>
#include <string>
#include <vector>

namespace qi {

class Database;
class QGebDb;
struct Settings;

inline constexpr const char* kWalkListFile = "invbegehung.rpt";
inline constexpr const char* kWalkListTitle = "Begehungsliste";

/// The walk list's rows for `rooms`: W_Raum (lIdRB, stRaumNr, stRaumName, stGebaeude, stGeschoss,
/// stVerantwortlich, iObjekte, stObjekte) and W_Objekt (lIdRB, iPos, stInvNr, stArtNr, stArtikel,
/// stBeschreibung, stBemerkung) in a database in memory. The objects come from the module's
/// object database the building component `geb` has open, the person responsible from Quarn's
/// master data (left empty where it can't be read). std::runtime_error (German) when the
/// objects can't be read.
std::unique_ptr<Database> walkListData(const Settings& settings, QGebDb& geb, const std::vector<LabelRoom>& rooms);

/// The report file the walk list is printed with: the project's, else the template folder's.
std::string walkListReportFile(const Settings& settings);

/// The walk list over `data` (walkListData), ready for the preview or a file; `scope` fills the
/// page header's {Auftrag} (the order's name, or the node's). ReportError as every report.
std::unique_ptr<Report> openWalkList(const Settings& settings, Database& data, const std::string& scope,
                                     const std::string& printDate = {});

} // namespace qi
