#pragma once
// Plain text files in the system's single-byte code page (Windows-1252), as the
// scanner data files and the archive of scan data use it. Text in the program is
// UTF-8; the reader converts each line, the writer converts back.

#include "AtomicFile.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace qi {

/// Windows-1252 bytes as UTF-8. Never fails: the five bytes that the code page
/// leaves unassigned become the control characters of the same number.
std::string fromWindows1252(std::string_view bytes);
/// UTF-8 text as Windows-1252 bytes; a character the code page lacks (or an
/// invalid UTF-8 sequence) becomes "?".
std::string toWindows1252(std::string_view utf8);

/// True when the bytes are well-formed UTF-8 (plain ASCII included): no overlong forms,
/// surrogates or values past U+10FFFF.
bool isUtf8(std::string_view bytes);

/// A whole text file as UTF-8: a file in UTF-8 (with or without byte-order mark) as it is,
/// any other as Windows-1252. False when it can't be read.
bool readTextFile(const std::string& path, std::string& text);

/// The longest line a text reader hands out, in bytes (characters of the code page).
inline constexpr std::size_t kLongestTextLine = 64 * 1024;

/// Reads a text file line by line. A line ends at CR LF, at LF or at a lone CR;
/// a last line without end counts. Any byte is accepted. A UTF-8 byte-order mark at the
/// start is skipped, and the lines of such a file that are well-formed UTF-8 are taken as
/// they are. Memory stays bounded by the longest line allowed, whatever the file holds.
/// The file is closed when the reader goes away.
class TextFileReader {
public:
    /// Opens the file: DbError 53 "Datei nicht gefunden" when it is not there, 75 naming the
    /// path and the reason when it is no regular file ("'…' ist ein Ordner, keine Datei.",
    /// "'…' ist keine Datei.") or can't be read ("Zugriff auf '…' verweigert.").
    explicit TextFileReader(const std::string& path, std::size_t longestLine = kLongestTextLine);
    ~TextFileReader();
    TextFileReader(const TextFileReader&) = delete;
    TextFileReader& operator=(const TextFileReader&) = delete;

    /// The next line as UTF-8 without its end; false at the end of the file. DbError 75
    /// "Die Zeile <n> der Datei '…' ist länger als <m> Zeichen." for a longer line, found
    /// without holding more of it than the limit.
    bool readLine(std::string& line);
    /// Lines handed out so far.
    std::int64_t linesRead() const { return lines_; }
    /// True when the file begins with a UTF-16 byte-order mark (FF FE or FE FF).
    bool startsAsUtf16() const { return utf16_; }

private:
    bool fill();
    std::string path_;
    std::size_t longestLine_;
    std::FILE* file_ = nullptr;
    std::string buffer_;
    std::size_t pos_ = 0;
    bool eof_ = false;
    bool utf8_ = false;
    bool utf16_ = false;
    std::int64_t lines_ = 0;
    std::string raw_;
};

/// Writes a text file anew, line by line with CR LF, converting to Windows-1252. The file
/// replaces an existing one only when close() has written all of it (see AtomicFile.h); a
/// writer that goes away before, or fails, leaves the earlier file as it was.
class TextFileWriter {
public:
    /// Begins the file; DbError 76 "Pfad nicht gefunden" when it can't be created.
    explicit TextFileWriter(const std::string& path);
    ~TextFileWriter();
    TextFileWriter(const TextFileWriter&) = delete;
    TextFileWriter& operator=(const TextFileWriter&) = delete;

    /// Writes the text and CR LF; DbError 75 on a write failure, 61 "Datenträger voll" when
    /// the disk is full, 3043 on a failure of the disk itself.
    void writeLine(std::string_view utf8);
    /// Writes the rest and puts the file in place; DbError as writeLine when that fails.
    void close();
    /// After writeLine or close failed: puts the lines that reached the file until then in the
    /// file's place, for a file that keeps what was written before a failure (a full disk).
    /// Never throws; when even that fails the
    /// earlier file stays.
    void keepWrittenLines();

private:
    std::unique_ptr<AtomicFile> file_;
};

} // namespace qi
