#pragma once
// The schema of an empty order database ("QAuftrag.mdb").

#include "Database.h"

namespace qi {

/// Creates the order tables, their unique indexes and the indexes on the join columns.
void createOrderSchema(Database& db);

/// Column types of the order and register files, in SQLite terms.
namespace coltype {
/// Text: Jet comparison, empty text by default.
inline constexpr const char* Text = "TEXT COLLATE JET DEFAULT ''";
/// Text that stays Null unless written.
inline constexpr const char* NullableText = "TEXT COLLATE JET";
/// Long: 32-bit integer.
inline constexpr const char* Long = "INTEGER DEFAULT 0";
/// The AutoNumber key under the index "PrimaryKey"; numbers are never reused.
inline constexpr const char* AutoNumber = "INTEGER PRIMARY KEY AUTOINCREMENT";
/// Date/time, stored as "YYYY-MM-DD HH:MM:SS".
inline constexpr const char* Date = "DATETIME";
/// Integer: 16-bit; values outside the range are refused.
std::string integer(const char* column);
} // namespace coltype

} // namespace qi
