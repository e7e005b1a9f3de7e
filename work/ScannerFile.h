#pragma once
// The scanner data file (*.dat): one record per line, fields separated by a
// comma, no quoting. A line is a record only with at least 8 fields; shorter
// lines are skipped by every reader. Fields after the eighth are ignored.

#include "DbError.h"
#include "TextFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qi {

/// Fields a line needs to be a record.
inline constexpr int kScanFieldCount = 8;

/// The room number as every comparison uses it: leading "0" characters removed
/// one by one, then blanks trimmed (so " 012" stays "012", "000" becomes "").
std::string normaliseRoom(const std::string& field);
/// Blanks removed at both ends (tabs and other characters stay).
std::string trimBlanks(const std::string& text);

/// The eight fields of one record as read (nothing trimmed or normalised).
struct ScanRecord {
    std::string stMitarbNr;   ///< field 1
    std::string stAuftragsNr; ///< field 2
    std::string Datum;        ///< field 3
    std::string Uhrzeit;      ///< field 4
    std::string stRaum;       ///< field 5, as read; see normaliseRoom
    std::string stInvNr;      ///< field 6, as read
    std::string stArtNr;      ///< field 7, as read
    std::string stTaet;       ///< field 8
};

/// Reads the records of a scanner data file (Windows-1252 text) from the start.
/// A file that is no text of the scanners is refused with DbError 75: one in UTF-16 ("Die
/// Datei '…' ist keine Textdatei der Scanner (sie ist in UTF-16 geschrieben).") when it is
/// opened, one holding NUL bytes ("… (sie enthält Nullzeichen).") at the line that holds them,
/// one with a line longer than kLongestTextLine at that line. The file is closed when the
/// reader goes away.
class ScannerFile {
public:
    /// Opens the file; DbError 53 when it is not there, 75 when it is no file or no text of the scanners.
    explicit ScannerFile(const std::string& path);
    /// Reads the whole file once, before anything is taken from it, and returns its first line
    /// (for the date of a data file). The refusals of the reader, and DbError 62 "Die Datei '…'
    /// ist leer." for a file without a line.
    static std::string check(const std::string& path);
    /// The next record, skipping lines with fewer than 8 fields; false at the end.
    /// DbError 6 "Überlauf" for a line of more than 32767 fields.
    bool next(ScanRecord& record);
    /// Moves to the next record without picking its fields; false at the end.
    bool nextRecord();
    /// Field n (from 1) of the current record, as read.
    std::string field(std::int16_t n) const;
    /// The next line without the check of its fields (for the date of a data file); false at the end.
    bool nextLine(std::string& line);
    /// Lines read so far, records and skipped lines alike.
    std::int64_t linesRead() const { return reader_.linesRead(); }

private:
    /// "Die Datei '…' ist keine Textdatei der Scanner (<why>)."
    DbError notScannerText(const char* why) const;
    std::string path_;
    TextFileReader reader_;
    std::string line_;
    /// Positions of the commas of line_.
    std::vector<std::size_t> commas_;
};

} // namespace qi
