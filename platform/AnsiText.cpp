#include "AnsiText.h"

#include <array>
#include <cstdint>

namespace qi {

namespace {

/// Code points of the bytes 0x80..0x9F; 0 where the code page defines none.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

/// Decodes one UTF-8 sequence at `i`; answers false (and leaves `i`) when malformed.
bool decodeUtf8(std::string_view s, std::size_t& i, char32_t& c)
{
    const auto b0 = static_cast<unsigned char>(s[i]);
    int len = 0;
    if (b0 < 0x80) {
        c = b0;
        len = 1;
    } else if ((b0 & 0xE0) == 0xC0 && b0 >= 0xC2) {
        c = b0 & 0x1F;
        len = 2;
    } else if ((b0 & 0xF0) == 0xE0) {
        c = b0 & 0x0F;
        len = 3;
    } else if ((b0 & 0xF8) == 0xF0 && b0 <= 0xF4) {
        c = b0 & 0x07;
        len = 4;
    } else {
        return false;
    }
    if (i + std::size_t(len) > s.size())
        return false;
    for (int k = 1; k < len; ++k) {
        const auto b = static_cast<unsigned char>(s[i + std::size_t(k)]);
        if ((b & 0xC0) != 0x80)
            return false;
        c = (c << 6) | (b & 0x3F);
    }
    if ((len == 3 && c < 0x800) || (len == 4 && (c < 0x10000 || c > 0x10FFFF)) || (c >= 0xD800 && c <= 0xDFFF))
        return false;
    i += std::size_t(len);
    return true;
}

} // namespace

std::string ansiToUtf8(std::string_view ansi)
{
    std::string out;
    out.reserve(ansi.size() + ansi.size() / 8);
    for (const char ch : ansi) {
        const auto b = static_cast<unsigned char>(ch);
        if (b < 0x80)
            out += ch;
        else if (b < 0xA0)
            appendUtf8(out, kHigh[b - 0x80] ? kHigh[b - 0x80] : char32_t(0xFFFD));
        else
            appendUtf8(out, b);
    }
    return out;
}

std::string utf8ToAnsi(std::string_view utf8)
{
    std::string out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        char32_t c = 0;
        if (!decodeUtf8(utf8, i, c)) {
            out += '?';
            ++i;
            continue;
        }
        if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
            out += char(c);
            continue;
        }
        char mapped = '?';
        for (std::size_t k = 0; k < kHigh.size(); ++k)
            if (kHigh[k] == c && c != 0)
                mapped = char(0x80 + k);
        out += mapped;
    }
    return out;
}

bool isValidUtf8(std::string_view bytes)
{
    std::size_t i = 0;
    char32_t c = 0;
    while (i < bytes.size())
        if (!decodeUtf8(bytes, i, c))
            return false;
    return true;
}

} // namespace qi
