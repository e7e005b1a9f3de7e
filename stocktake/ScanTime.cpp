#include "ScanTime.h"

#include <cctype>

namespace qi {

namespace {

std::string trimmed(const std::string& s)
{
    const std::size_t first = s.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

bool digits(const std::string& s, std::size_t from, std::size_t count)
{
    for (std::size_t i = from; i < from + count; ++i)
        if (i >= s.size() || !std::isdigit(static_cast<unsigned char>(s[i])))
            return false;
    return true;
}

/// "TT.MM.JJJJ" with digits in their places.
bool scannerDate(const std::string& d)
{
    return d.size() == 10 && digits(d, 0, 2) && d[2] == '.' && digits(d, 3, 2) && d[5] == '.' && digits(d, 6, 4);
}

} // namespace

std::string scanTime(const std::string& datum, const std::string& uhrzeit)
{
    const std::string d = trimmed(datum), t = trimmed(uhrzeit);
    if (!scannerDate(d)) {
        if (d.empty() || t.empty())
            return d + t;
        return d + " " + t;
    }
    const std::string date = d.substr(6, 4) + "-" + d.substr(3, 2) + "-" + d.substr(0, 2);
    return t.empty() ? date : date + " " + t;
}

} // namespace qi
