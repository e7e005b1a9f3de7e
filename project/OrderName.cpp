#include "OrderName.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <vector>

namespace qi {

namespace {

/// Code points of a UTF-8 text; false when the bytes are no UTF-8.
bool decodeUtf8(std::string_view s, std::vector<char32_t>& out)
{
    for (std::size_t i = 0; i < s.size();) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        int extra = 0;
        char32_t cp = 0;
        if (c < 0x80) {
            cp = c;
        } else if (c >= 0xC2 && c <= 0xDF) {
            extra = 1;
            cp = c & 0x1F;
        } else if (c >= 0xE0 && c <= 0xEF) {
            extra = 2;
            cp = c & 0x0F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            extra = 3;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (i + std::size_t(extra) >= s.size())
            return false;
        for (int k = 1; k <= extra; ++k) {
            const unsigned char cc = static_cast<unsigned char>(s[i + std::size_t(k)]);
            if ((cc & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (cc & 0x3F);
        }
        // Overlong forms, surrogates and values past the last code point are no UTF-8.
        if ((extra == 2 && cp < 0x800) || (extra == 3 && (cp < 0x10000 || cp > 0x10FFFF)) ||
            (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        out.push_back(cp);
        i += std::size_t(extra) + 1;
    }
    return true;
}

bool isControl(char32_t cp) { return cp < 0x20 || cp == 0x7F || (cp >= 0x80 && cp <= 0x9F); }

std::string upperAscii(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return s;
}

/// True when Windows takes the name for one of its devices: the part before the first dot,
/// without trailing blanks, is CON, PRN, AUX, NUL, COM0..9, LPT0..9 (also with the
/// superscript digits ¹ ² ³), CONIN$ or CONOUT$, in any letter case.
bool isDeviceName(const std::string& name)
{
    std::string base = name.substr(0, name.find('.'));
    while (!base.empty() && base.back() == ' ')
        base.pop_back();
    base = upperAscii(base);
    static constexpr std::array<std::string_view, 6> plain = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    if (std::find(plain.begin(), plain.end(), base) != plain.end())
        return true;
    for (std::string_view port : {"COM", "LPT"}) {
        if (base.compare(0, 3, port) != 0)
            continue;
        const std::string_view digit = std::string_view(base).substr(3);
        if (digit.size() == 1 && digit[0] >= '0' && digit[0] <= '9')
            return true;
        if (digit == "\u00B9" || digit == "\u00B2" || digit == "\u00B3")
            return true;
    }
    return false;
}

} // namespace

std::string orderNameProblem(const std::string& name)
{
    if (name.empty())
        return "Der Auftrag braucht einen Namen.";
    std::vector<char32_t> cps;
    if (!decodeUtf8(name, cps))
        return "Der Auftragsname enthält Bytes, die kein Zeichen ergeben.";
    if (std::any_of(cps.begin(), cps.end(), isControl))
        return "Der Auftragsname darf keine Steuerzeichen (wie Tabulator oder Zeilenumbruch) enthalten.";
    if (name == "." || name == "..")
        return "Der Auftragsname '" + name + "' bezeichnet einen Ordner und kann kein Dateiname sein.";
    if (name.find_first_of("<>:\"/\\|?*") != std::string::npos)
        return "Der Auftragsname darf keines der Zeichen < > : \" / \\ | ? * enthalten.";
    if (name.back() == '.' || name.back() == ' ')
        return "Der Auftragsname darf nicht mit einem Punkt oder einem Leerzeichen enden.";
    if (isDeviceName(name))
        return "Der Auftragsname '" + name + "' ist ein Gerätename des Systems und kann kein Dateiname sein.";
    if (name.size() > kMaxOrderNameBytes)
        return "Der Auftragsname ist zu lang: Er darf höchstens " + std::to_string(kMaxOrderNameBytes) +
               " Bytes haben (Umlaute und andere Sonderzeichen zählen doppelt oder mehrfach), hat aber " +
               std::to_string(name.size()) + ".";
    return {};
}

} // namespace qi
