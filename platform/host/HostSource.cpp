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

std::string odbcDisplayString(const std::string& connection)
{
    std::string shown;
    std::size_t pos = 0;
    while (pos <= connection.size()) {
        const std::size_t end = std::min(connection.find(';', pos), connection.size());
        std::string part = connection.substr(pos, end - pos);
        const std::string key = upper(part.substr(0, part.find('=')));
        if ((key == "PWD" || key == "PASSWORD") && part.find('=') != std::string::npos)
            part = part.substr(0, part.find('=') + 1) + "***";
        shown += part;
        if (end < connection.size())
            shown += ';';
        pos = end + 1;
    }
    return shown;
}

} // namespace qi
