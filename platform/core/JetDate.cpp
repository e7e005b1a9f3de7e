#include "JetDate.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace qi {

namespace {
using namespace std::chrono;
constexpr sys_days kEpoch = sys_days{year{1899} / December / 30};
} // namespace

JetDate JetDate::fromParts(int y, int mo, int d, int h, int mi, int s)
{
    const sys_days day = sys_days{year{y} / month{unsigned(mo)} / ::std::chrono::day{unsigned(d)}};
    const double days = double((day - kEpoch).count());
    return JetDate{days + (h * 3600 + mi * 60 + s) / 86400.0};
}

JetDate JetDate::now()
{
    const std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
    return fromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

void JetDate::toParts(int& y, int& mo, int& d, int& h, int& mi, int& s) const
{
    const double whole = std::floor(serial);
    long secs = std::lround((serial - whole) * 86400.0);
    long days = long(whole);
    if (secs >= 86400) {
        secs -= 86400;
        ++days;
    }
    const year_month_day ymd{kEpoch + ::std::chrono::days{days}};
    y = int(ymd.year());
    mo = int(unsigned(ymd.month()));
    d = int(unsigned(ymd.day()));
    h = int(secs / 3600);
    mi = int(secs % 3600 / 60);
    s = int(secs % 60);
}

JetDate JetDate::fromStorageText(const std::string& text)
{
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
    const int n = std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &y, &mo, &d, &h, &mi, &s);
    if (n < 3 || mo < 1 || mo > 12 || d < 1 || d > 31)
        return JetDate{};
    return fromParts(y, mo, d, h, mi, s);
}

std::string JetDate::toStorageText() const
{
    int y, mo, d, h, mi, s;
    toParts(y, mo, d, h, mi, s);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", y, mo, d, h, mi, s);
    return buf;
}

std::string JetDate::toDisplayText() const
{
    int y, mo, d, h, mi, s;
    toParts(y, mo, d, h, mi, s);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02d.%02d.%04d %02d:%02d:%02d", d, mo, y, h, mi, s);
    return buf;
}

} // namespace qi
