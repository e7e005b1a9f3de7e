#pragma once
// A field value as the database layer hands it around: Null, a whole number,
// a floating-point number or a text (UTF-8).

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace qi {

using Value = std::variant<std::monostate, std::int64_t, double, std::string>;

inline bool isNull(const Value& v) { return std::holds_alternative<std::monostate>(v); }

/// Text of a value: Null gives "", numbers their decimal form.
std::string toText(const Value& v);
/// Whole number of a value: Null gives 0, text is parsed (0 when it is no number).
std::int64_t toLong(const Value& v);
/// Whole number checked against the 32-bit range (a Long); throws DbError "Überlauf" outside.
std::int32_t toInt32(const Value& v);
/// Whole number checked against the 16-bit range (an Integer); throws DbError "Überlauf" outside.
std::int16_t toInt16(const Value& v);
/// The 16-bit range check on its own.
std::int16_t checkedInt16(std::int64_t n);
/// Adds one to a 16-bit counter; throws DbError "Überlauf" past 32767.
void incrementInt16(std::int16_t& counter);
/// Characters of a UTF-8 text: its code points (the bytes that continue a character don't count).
std::size_t characterCount(std::string_view utf8);

} // namespace qi
