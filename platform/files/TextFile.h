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

/// Reads a text file line by line. A line ends at CR LF, at LF or at a lone CR;
/// a last line without end counts. Any byte is accepted; lines may be of any length.
/// The file is closed when the reader goes away.
class TextFileReader {
public:
    /// Opens the file; DbError 53 "Datei nicht gefunden" when it can't be opened.
    explicit TextFileReader(const std::string& path);
    ~TextFileReader();
    TextFileReader(const TextFileReader&) = delete;
    TextFileReader& operator=(const TextFileReader&) = delete;

    /// The next line as UTF-8 without its end; false at the end of the file.
    bool readLine(std::string& line);
    /// Lines handed out so far.
    std::int64_t linesRead() const { return lines_; }

private:
    bool fill();
    std::FILE* file_ = nullptr;
    std::string buffer_;
    std::size_t pos_ = 0;
    bool eof_ = false;
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

private:
    std::unique_ptr<AtomicFile> file_;
};

} // namespace qi
