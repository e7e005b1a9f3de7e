#pragma once
// Text comparison as the order databases expect it.
//
// Equality: letter case ignored (Unicode case folding), trailing blanks ignored,
// accents kept ('Müller' = 'MÜLLER  ', 'Müller' <> 'Muller').
//
// Order: as a German reader expects it. Letters are compared first without their
// accents ("Äpfel" stands with the A words, "ß" as "ss"), accents decide only
// between texts that are otherwise equal, and texts that still tie are ordered by
// their case-folded code points. Texts compare as equal exactly when they are equal
// under the rule above, so the order is a total order that unique indexes, GROUP BY
// and ORDER BY can rely on.

#include <string>
#include <string_view>

struct sqlite3;

namespace qi {

/// Name under which the comparison is registered on every connection and
/// declared on every text column.
inline constexpr const char* kJetCollation = "JET";

/// <0, 0 or >0 as `a` sorts before, equal to or after `b`.
int jetCompare(std::string_view a, std::string_view b);

/// True when the two texts are equal under the comparison.
bool jetEqual(std::string_view a, std::string_view b);

/// The text as the comparison's equality sees it: trailing blanks removed, every character
/// case-folded. Two texts are equal under the comparison exactly when their keys are the same
/// bytes, so a hash map of keys finds what an equality join on a JET column finds.
std::string jetFoldKey(std::string_view text);

/// Registers the collation on a connection (returns the SQLite result code).
int registerJetCollation(sqlite3* db);

namespace detail {
/// The comparison without the shortcut for plain ASCII texts; jetCompare must
/// always agree with it in sign (the tests hold the two together).
int jetCompareUnicode(std::string_view a, std::string_view b);
} // namespace detail

} // namespace qi
