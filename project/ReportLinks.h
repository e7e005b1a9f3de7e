#pragma once
// The links of the report database "QInventurRpt.mdb": which tables it links,
// setting up a new report database, and pointing its links at the open order
// and at the project's Quarn databases.

#include "Settings.h"
#include "UserInteraction.h"

#include <string>
#include <vector>

namespace qi {

/// Label of the common error message of CheckReportMdbLink.
inline constexpr const char* kCheckReportMdbLinkLabel = "COVRpt.CheckReportMdbLink";

/// The links to the open order's database, in the order they are relinked.
inline constexpr const char* kOrderLinks[] = {"t_Artikelliste", "t_DatInventur", "t_Differenzliste",
                                              "t_Invliste",     "t_Raum",        "T_Auftrag"};

/// Creates the report database at `path` (an existing file is replaced): every link
/// with a connect string naming its usual file (";DATABASE=QAuftrag.mdb", ";DATABASE=QGebaeude.mdb" ...)
/// until an order is opened, and both stored queries defined for module 0.
void createReportDatabase(const std::string& path);

/// Points the report database's links at the order database `orderDbPath` and at the project's
/// Quarn databases for its type and module. For an ODBC project the local mirror of the server's
/// tables is made anew after the order links (a server that can't be reached ends the relinking
/// there; the links keep reading the last copy). For a "ptJet" project whose link T_Raumkern still holds
/// an ODBC connect string the host links are dropped and made anew. Errors end the relinking at the
/// failing step with the common error message "COVRpt.CheckReportMdbLink"; links already changed
/// stay changed. True when every step succeeded.
///
/// The file relinked is the program folder's "QInventurRpt.mdb", under an exclusive lock that
/// the other programs of that folder wait for. When the settings name a private copy of this
/// program (Settings::privateReportDatabase), the copy is then taken from the shared file and
/// linked the same way to this order, so that this program's reports read this order whatever
/// another program relinks afterwards; its failures end the same way. When the settings name a
/// report database file of their own (Settings::reportDatabaseFile), only that file is relinked.
bool CheckReportMdbLink(const Settings& settings, const std::string& orderDbPath, UserInteraction& ui);

} // namespace qi
