#include "JetCollation.h"

#include <QChar>
#include <sqlite3.h>

namespace qi {

namespace {

std::string_view trimTrailingBlanks(std::string_view s)
{
    while (!s.empty() && s.back() == ' ')
        s.remove_suffix(1);
    return s;
}

/// Decodes one UTF-8 sequence at `i`; invalid bytes stand for themselves.
char32_t decode(std::string_view s, std::size_t& i)
{
    const auto b0 = static_cast<unsigned char>(s[i]);
    auto cont = [&](std::size_t k) -> int {
        if (i + k >= s.size()) return -1;
        const auto b = static_cast<unsigned char>(s[i + k]);
        return (b & 0xC0) == 0x80 ? (b & 0x3F) : -1;
    };
    if (b0 < 0x80) { ++i; return b0; }
    if ((b0 & 0xE0) == 0xC0) {
        const int c1 = cont(1);
        if (c1 >= 0) { i += 2; return char32_t((b0 & 0x1F) << 6 | c1); }
    } else if ((b0 & 0xF0) == 0xE0) {
        const int c1 = cont(1), c2 = c1 >= 0 ? cont(2) : -1;
        if (c2 >= 0) { i += 3; return char32_t((b0 & 0x0F) << 12 | c1 << 6 | c2); }
    } else if ((b0 & 0xF8) == 0xF0) {
        const int c1 = cont(1), c2 = c1 >= 0 ? cont(2) : -1, c3 = c2 >= 0 ? cont(3) : -1;
        if (c3 >= 0) { i += 4; return char32_t((b0 & 0x07) << 18 | c1 << 12 | c2 << 6 | c3); }
    }
    ++i;
    return 0xDC00 + b0; // a lone byte keeps a stable place of its own
}

char32_t fold(char32_t c)
{
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    return QChar::toCaseFolded(c);
}

int collate(void*, int lenA, const void* a, int lenB, const void* b)
{
    return jetCompare(std::string_view(static_cast<const char*>(a), std::size_t(lenA)),
                      std::string_view(static_cast<const char*>(b), std::size_t(lenB)));
}

} // namespace

int jetCompare(std::string_view a, std::string_view b)
{
    a = trimTrailingBlanks(a);
    b = trimTrailingBlanks(b);
    std::size_t i = 0, j = 0;
    // Plain ASCII needs no decoding: fold the letters and compare byte by byte.
    while (i < a.size() && j < b.size()) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[j]);
        if ((ca | cb) & 0x80)
            break;
        const char32_t fa = fold(ca), fb = fold(cb);
        if (fa != fb)
            return fa < fb ? -1 : 1;
        ++i;
        ++j;
    }
    while (i < a.size() && j < b.size()) {
        const char32_t ca = fold(decode(a, i));
        const char32_t cb = fold(decode(b, j));
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

int registerJetCollation(sqlite3* db)
{
    return sqlite3_create_collation_v2(db, kJetCollation, SQLITE_UTF8, nullptr, &collate, nullptr);
}

} // namespace qi
