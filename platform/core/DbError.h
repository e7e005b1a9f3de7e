#pragma once
// The error the database layer raises: the engine's error number and its description.

#include <stdexcept>
#include <string>

namespace qi {

/// Error numbers in the engine's numbering, so that callers can test for them.
namespace dberr {
inline constexpr int Overflow = 6;              ///< a value or counter beyond its range
inline constexpr int FileNotFound = 3024;       ///< database file missing
inline constexpr int DuplicateKey = 3022;       ///< unique index or primary key violated
inline constexpr int ReadOnly = 3027;           ///< database or object is read-only
inline constexpr int NoCurrentRecord = 3021;    ///< no current row
inline constexpr int InputTableNotFound = 3078; ///< table or query unknown
inline constexpr int ItemNotFound = 3265;       ///< no such field or table definition
inline constexpr int UnrecognizedFormat = 3343; ///< not a database file
inline constexpr int Locked = 3260;             ///< file locked by another user
inline constexpr int NumericOverflow = 3349;    ///< numeric field overflow
inline constexpr int UpdateWithoutEdit = 3020;  ///< Update without AddNew or Edit
inline constexpr int SyntaxError = 3075;        ///< statement the engine cannot run
inline constexpr int General = 3000;            ///< anything else
inline constexpr int DiskFull = 61;             ///< no room left on the disk
inline constexpr int DiskOrNetwork = 3043;      ///< the disk or the network failed while reading or writing
inline constexpr int FieldTooSmall = 3163;      ///< a text longer than its field holds
inline constexpr int InputPastEnd = 62;         ///< a file to read holds nothing
inline constexpr int PathFileAccess = 75;       ///< a file that can't be read as asked (no file, not readable, no text)
} // namespace dberr

/// Descriptions of the errors of the disk itself.
namespace dbtext {
inline constexpr const char* DiskFull = "Datenträger voll";
inline constexpr const char* DiskOrNetwork = "Datenträger- oder Netzwerkfehler.";
} // namespace dbtext

class DbError : public std::runtime_error {
public:
    DbError(int number, const std::string& description)
        : std::runtime_error(description), number_(number) {}
    /// The engine's error number (never 0).
    int number() const { return number_; }
    /// The engine's description, as callers append it to their own text.
    std::string description() const { return what(); }

private:
    int number_;
};

} // namespace qi
