#pragma once
// What a database file must hold to be of its kind: its tables and their columns, as
// the statements that make a new file of that kind leave them. Checking a file against
// it tells a file of the right kind from another database, and from one that has lost
// a table or a column.

#include "Database.h"

#include <functional>
#include <string>
#include <vector>

namespace qi {

struct TableStructure {
    std::string name;
    std::vector<std::string> columns;
};

using Structure = std::vector<TableStructure>;

/// The tables and columns that `makeSchema` creates in a new, empty database (made in memory).
Structure structureMadeBy(const std::function<void(Database&)>& makeSchema);

/// What `db` lacks of `expected`, as a phrase for a message ("die Tabelle T_Raum fehlt",
/// "in der Tabelle T_Raum fehlt die Spalte ststatus"); empty when nothing is missing. Names are
/// compared with letter case ignored. DbError when the file can't be read.
std::string missingStructure(Database& db, const Structure& expected);

} // namespace qi
