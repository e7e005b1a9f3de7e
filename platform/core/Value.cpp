#include "Value.h"

#include "DbError.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qi {

namespace {
[[noreturn]] void overflow() { throw DbError(dberr::Overflow, "Überlauf"); }
} // namespace

std::string toText(const Value& v)
{
    if (const auto* s = std::get_if<std::string>(&v))
        return *s;
    if (const auto* n = std::get_if<std::int64_t>(&v))
        return std::to_string(*n);
    if (const auto* d = std::get_if<double>(&v)) {
        if (std::floor(*d) == *d && std::fabs(*d) < 1e15)
            return std::to_string(static_cast<std::int64_t>(*d));
        std::string s = std::to_string(*d);
        while (!s.empty() && s.back() == '0') s.pop_back();
        if (!s.empty() && s.back() == '.') s.pop_back();
        return s;
    }
    return {};
}

std::int64_t toLong(const Value& v)
{
    if (const auto* n = std::get_if<std::int64_t>(&v))
        return *n;
    if (const auto* d = std::get_if<double>(&v)) {
        if (!std::isfinite(*d) || std::fabs(*d) > 9.2e18)
            overflow();
        return std::llround(*d);
    }
    if (const auto* s = std::get_if<std::string>(&v)) {
        std::int64_t n = 0;
        const char* b = s->data();
        while (b < s->data() + s->size() && *b == ' ') ++b;
        std::from_chars(b, s->data() + s->size(), n);
        return n;
    }
    return 0;
}

std::int32_t toInt32(const Value& v)
{
    const std::int64_t n = toLong(v);
    if (n < std::numeric_limits<std::int32_t>::min() || n > std::numeric_limits<std::int32_t>::max())
        overflow();
    return static_cast<std::int32_t>(n);
}

std::int16_t checkedInt16(std::int64_t n)
{
    if (n < std::numeric_limits<std::int16_t>::min() || n > std::numeric_limits<std::int16_t>::max())
        overflow();
    return static_cast<std::int16_t>(n);
}

std::int16_t toInt16(const Value& v) { return checkedInt16(toLong(v)); }

void incrementInt16(std::int16_t& counter) { counter = checkedInt16(std::int64_t{counter} + 1); }

std::size_t characterCount(std::string_view utf8)
{
    std::size_t count = 0;
    for (const char c : utf8) {
        // Continuation bytes belong to the character before them.
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80)
            ++count;
    }
    return count;
}

} // namespace qi
