#pragma once
// The six categories of a difference list (stTyp), as the evaluation of an order writes them
// (the statements keep them as literals in their text; code that binds or compares one uses these).

namespace qi::category {

inline constexpr const char* k1 = "1 OK";
inline constexpr const char* k2a = "2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)";
inline constexpr const char* k2b = "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)";
inline constexpr const char* k2c = "2c Nicht in Quarn erfasst";
inline constexpr const char* k3a = "3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)";
inline constexpr const char* k3b =
    "3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.";

} // namespace qi::category

namespace qi {

/// The inventory number the import gives a scanned object that has none: found, but no number
/// to print on a label or to look up in Quarn.
inline constexpr const char* kObjectWithoutNumber = "Obj. ohne Nr.";

} // namespace qi
