#include "OrderName.h"

#include "TextFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace qi {

namespace {

/// True when the UTF-8 text holds a control character: C0 (below the blank), DEL or C1 (U+0080..U+009F).
bool hasControl(std::string_view s)
{
    for (std::size_t i = 0; i < s.size(); ++i) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c < 0x20 || c == 0x7F)
            return true;
        if (c == 0xC2 && i + 1 < s.size() && static_cast<unsigned char>(s[i + 1]) <= 0x9F)
            return true;
    }
    return false;
}

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
    if (!isUtf8(name))
        return "Der Auftragsname enthält Bytes, die kein Zeichen ergeben.";
    if (hasControl(name))
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
