#pragma once
// Which texts can name an order. An order's database is the file
// "Inventur\<name>.mdb" of the project, and its journal "<name>.mdb-journal" lies
// beside it, so a name must be one plain file name on every system a project may
// live on: no path separators or drive, no "." or "..", none of the characters or
// device names that Windows refuses, no trailing dot or blank, and short enough
// for the journal's name. Any other name is accepted, dots and umlauts included
// ("Lager..Süd").

#include <cstddef>
#include <string>

namespace qi {

/// Longest file name in bytes that the file systems of the projects hold.
inline constexpr std::size_t kMaxFileNameBytes = 255;
/// Longest order name in bytes (UTF-8): "<name>.mdb-journal" must fit a file name.
inline constexpr std::size_t kMaxOrderNameBytes = kMaxFileNameBytes - std::char_traits<char>::length(".mdb-journal");

/// Why `name` can't name an order, as a German sentence for the user; empty when it can.
std::string orderNameProblem(const std::string& name);

} // namespace qi
