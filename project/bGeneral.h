#pragma once
// Text fields separated by a separator text, as the scanner files and paths use them.

#include <cstdint>
#include <string>

namespace qi {

/// Number of fields: 0 for an empty text, else 1 + the separator's occurrences
/// (searched each time from one past the previous hit, so overlapping hits count).
/// Throws DbError "Überlauf" beyond 32767.
std::int16_t FieldCount(const std::string& text, const std::string& separator);

/// The n-th field, counted from 1; n < 0 counts from the end (-1 is the last).
/// "" for an empty text, n = 0, or |n| beyond the field count.
std::string GetField(const std::string& text, const std::string& separator, std::int16_t n);

} // namespace qi
