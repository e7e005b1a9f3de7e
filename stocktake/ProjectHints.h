#pragma once
// The sentences of the project result's L_Hinweis rows: what of the project needs attention,
// and where.

#include <string>

namespace qi::hinweis {

/// An order whose database is not at the place the register names.
std::string auftragFehlt(const std::string& order, const std::string& file);
/// An order without a difference list although rooms of it are to be evaluated; `fresh` when
/// the overview's figures come from an evaluation of its own.
std::string nieAusgewertet(const std::string& order, bool fresh);
/// An order whose data changed after its difference list was made; `fresh` as above.
std::string veraltet(const std::string& order, bool fresh);
/// An order with `rooms` rooms still without scan data ("N").
std::string raeumeN(const std::string& order, int rooms);
/// A scanner file of an order that is no longer at its place.
std::string dateiFehlt(const std::string& order, const std::string& file);
/// An order that could not be read or evaluated, and why.
std::string nichtLesbar(const std::string& order, const std::string& why);
/// A kept copy of an order's database in "Inventur\Gesichert".
std::string gesichert(const std::string& order, const std::string& keptAt, const std::string& fileName);
/// An order database in "Inventur" that no row of the register names.
std::string ohneAuftrag(const std::string& fileName);

} // namespace qi::hinweis
