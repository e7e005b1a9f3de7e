#pragma once
// Quarn's tables on a database server, read through the ODBC driver manager
// (unixODBC) into a mirror. Nothing is ever written to the server.

#include <functional>
#include <string>

namespace qi {

class MirrorWriter;

/// The message of a server that can't be reached; `detail` is the driver's description. Passwords of the
/// connection string show as "***", in the string and in the description.
std::string odbcUnreachableMessage(const std::string& connection, const std::string& detail);
/// The first line of that message: "Die Quarn-Datenbank auf dem Server ist nicht erreichbar (...)."
std::string odbcUnreachableHeadline(const std::string& connection);

/// Connects with the connection string (a leading "ODBC;" is dropped) and reads every table
/// for which `wanted` answers true, found by name whatever its letter case, into `mirror`.
/// Quarn's tables and columns take the spelling the system uses. Text arrives as UTF-16 and is
/// kept as UTF-8, the blanks that pad fixed-length columns (char(n)) dropped; whole numbers, Booleans (-1 for True), real numbers, dates and binary data
/// keep their kind. Throws DbError 3151 with odbcUnreachableMessage when the connection fails,
/// and with the table's name and the driver's description when a table can't be read.
void readOdbcDatabase(const std::string& connection, MirrorWriter& mirror,
                      const std::function<bool(const std::string& table)>& wanted);

} // namespace qi
