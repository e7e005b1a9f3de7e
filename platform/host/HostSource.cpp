#include "HostSource.h"

#include <algorithm>
#include <cctype>

namespace qi {

namespace {

std::string upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return s;
}

} // namespace

std::string odbcDriverConnectString(const std::string& connection)
{
    if (upper(connection.substr(0, 5)) == "ODBC;")
        return connection.substr(5);
    if (upper(connection) == "ODBC")
        return {};
    return connection;
}

} // namespace qi
