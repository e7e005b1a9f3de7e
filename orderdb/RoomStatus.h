#pragma once
// The status codes of an order's rooms (T_Raum.ststatus) and what they tell a person.

#include <string>
#include <string_view>

namespace qi::roomstatus {

/// No scan data taken over for the room; the evaluation leaves it out.
inline constexpr std::string_view New = "N";
/// Scan data of the room were read.
inline constexpr std::string_view Scanned = "E";
/// Marked by the user in the room selection: evaluated although nothing was scanned.
inline constexpr std::string_view Marked = "L";

/// A sentence that explains the code to a person; empty for an unknown code.
inline std::string hint(std::string_view code)
{
    if (code == New)
        return "N: keine Scandaten übernommen; der Raum wird nicht ausgewertet";
    if (code == Scanned)
        return "E: Scandaten des Raums sind eingelesen";
    if (code == Marked)
        return "L: ohne Scandaten markiert; der Raum wird ausgewertet";
    return {};
}

} // namespace qi::roomstatus
