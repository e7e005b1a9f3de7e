#pragma once
// Text comparison as the order databases expect it: letter case ignored
// (Unicode case folding), trailing blanks ignored, accents kept.

#include <string_view>

struct sqlite3;

namespace qi {

/// Name under which the comparison is registered on every connection and
/// declared on every text column.
inline constexpr const char* kJetCollation = "JET";

/// <0, 0 or >0 as `a` sorts before, equal to or after `b`.
int jetCompare(std::string_view a, std::string_view b);

/// True when the two texts are equal under the comparison.
inline bool jetEqual(std::string_view a, std::string_view b) { return jetCompare(a, b) == 0; }

/// Registers the collation on a connection (returns the SQLite result code).
int registerJetCollation(sqlite3* db);

} // namespace qi
