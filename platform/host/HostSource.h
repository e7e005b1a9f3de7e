#pragma once
// Where Quarn's data of a project lie: a database file in the project folder
// (Jet projects) or one database on a server reached through ODBC (any other
// project type). The project type decides; the text alone never does, since a
// file path may hold "=" and a connection string may name a "DATABASE=".

#include <string>

namespace qi {

struct HostSource {
    enum class Kind { File, Odbc };
    Kind kind = Kind::File;
    /// The file path (system form with backslashes or native) or the ODBC connection string.
    std::string location;

    static HostSource file(std::string path) { return {Kind::File, std::move(path)}; }
    static HostSource odbc(std::string connection) { return {Kind::Odbc, std::move(connection)}; }
    bool isOdbc() const { return kind == Kind::Odbc; }
};

/// The connection string as the ODBC driver manager takes it: a leading "ODBC;" (the form
/// that table links carry) is dropped.
std::string odbcDriverConnectString(const std::string& connection);

} // namespace qi
