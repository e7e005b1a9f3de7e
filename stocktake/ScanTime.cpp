#include "ScanTime.h"

namespace qi {

namespace {

std::string_view trimmed(std::string_view s)
{
    const std::size_t first = s.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

bool digits(std::string_view s, std::size_t from, std::size_t count)
{
    for (std::size_t i = from; i < from + count; ++i)
        if (i >= s.size() || s[i] < '0' || s[i] > '9')
            return false;
    return true;
}

/// "TT.MM.JJJJ" with digits in their places.
bool scannerDate(std::string_view d)
{
    return d.size() == 10 && digits(d, 0, 2) && d[2] == '.' && digits(d, 3, 2) && d[5] == '.' && digits(d, 6, 4);
}

} // namespace

void scanTime(std::string_view datum, std::string_view uhrzeit, std::string& out)
{
    const std::string_view d = trimmed(datum), t = trimmed(uhrzeit);
    out.clear();
    if (!scannerDate(d)) {
        out += d;
    } else {
        out += d.substr(6, 4);
        out += '-';
        out += d.substr(3, 2);
        out += '-';
        out += d.substr(0, 2);
    }
    if (!d.empty() && !t.empty())
        out += ' ';
    out += t;
}

std::string scanTime(std::string_view datum, std::string_view uhrzeit)
{
    std::string out;
    scanTime(datum, uhrzeit, out);
    return out;
}

} // namespace qi
