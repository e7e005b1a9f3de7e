#pragma once
// The report database "QInventurRpt.mdb" in the program folder: its path and the
// two stored queries that the reports read, defined per module.

#include "JetSql.h"
#include "LinkedDatabase.h"
#include "Settings.h"

#include <cstdint>
#include <string>

namespace qi {

/// File name of the report database in the program folder.
inline constexpr const char* kReportDatabaseFile = "QInventurRpt.mdb";
/// The stored queries of the report database.
inline constexpr const char* kQueryAnzProRaum = "Q_AnzProRaum";
inline constexpr const char* kQueryDiffListe = "Q_DiffListe";

/// gstAppPfad + "\QInventurRpt.mdb", or the settings' own report database file when they name one.
std::string reportDatabasePath(const Settings& settings);

/// Objects per room of the order, for the module (0, 1, 2; others as 0).
JetSql anzProRaumQuery(std::int16_t modul);
/// The difference list with room, person responsible and cost centre, for the module.
JetSql diffListeQuery(std::int16_t modul);

/// Sets the SQL of both stored queries for the module; DbError when the file lacks them.
void setReportQueries(LinkedDatabase& db, std::int16_t modul);

} // namespace qi
