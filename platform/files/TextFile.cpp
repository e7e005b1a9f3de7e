#include "TextFile.h"

#include "DbError.h"
#include "FileSystem.h"
#include "SystemError.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <unordered_map>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qi {

namespace {

constexpr int kFileNotFound = 53;
constexpr int kPathFileAccess = 75;
constexpr int kPathNotFound = 76;

constexpr std::size_t kChunk = 64 * 1024;

/// Code points of the bytes 0x80..0x9F; the unassigned ones keep their own number.
constexpr std::array<char32_t, 32> kHigh{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

/// Byte of Windows-1252 for a code point, or 0 when the code page lacks it.
unsigned char toByte(char32_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<unsigned char>(c);
    static const std::unordered_map<char32_t, unsigned char> high = [] {
        std::unordered_map<char32_t, unsigned char> m;
        for (std::size_t i = 0; i < kHigh.size(); ++i)
            m.emplace(kHigh[i], static_cast<unsigned char>(0x80 + i));
        return m;
    }();
    const auto it = high.find(c);
    return it == high.end() ? 0 : it->second;
}

} // namespace

std::string fromWindows1252(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        if (b < 0x80)
            out += ch;
        else if (b < 0xA0)
            appendUtf8(out, kHigh[b - 0x80]);
        else
            appendUtf8(out, b);
    }
    return out;
}

std::string toWindows1252(std::string_view utf8)
{
    std::string out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        if (b < 0x80) {
            out += char(b);
            ++i;
            continue;
        }
        int len = 0;
        char32_t c = 0;
        if ((b & 0xE0) == 0xC0) {
            len = 2;
            c = b & 0x1F;
        } else if ((b & 0xF0) == 0xE0) {
            len = 3;
            c = b & 0x0F;
        } else if ((b & 0xF8) == 0xF0) {
            len = 4;
            c = b & 0x07;
        }
        bool valid = len > 0 && i + std::size_t(len) <= utf8.size();
        for (int k = 1; valid && k < len; ++k) {
            const auto cont = static_cast<unsigned char>(utf8[i + std::size_t(k)]);
            if ((cont & 0xC0) != 0x80)
                valid = false;
            else
                c = (c << 6) | (cont & 0x3F);
        }
        if (!valid) {
            out += '?';
            ++i;
            continue;
        }
        const unsigned char byte = toByte(c);
        out += byte ? char(byte) : '?';
        i += std::size_t(len);
    }
    return out;
}

bool isUtf8(std::string_view s)
{
    for (std::size_t i = 0; i < s.size();) {
        const auto b = static_cast<unsigned char>(s[i]);
        const std::size_t len = b < 0x80                             ? 1
                                : b >= 0xC2 && b <= 0xDF             ? 2
                                : (b & 0xF0) == 0xE0                 ? 3
                                : b >= 0xF0 && b <= 0xF4             ? 4
                                                                     : 0;
        if (len == 0 || i + len > s.size())
            return false;
        for (std::size_t k = 1; k < len; ++k)
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80)
                return false;
        if (len > 2) {
            // The second byte rules out overlong forms, surrogates and values past U+10FFFF.
            const auto second = static_cast<unsigned char>(s[i + 1]);
            if ((b == 0xE0 && second < 0xA0) || (b == 0xED && second >= 0xA0) || (b == 0xF0 && second < 0x90) ||
                (b == 0xF4 && second >= 0x90))
                return false;
        }
        i += len;
    }
    return true;
}

bool readTextFile(const std::string& path, std::string& text)
{
    if (!fileExists(path))
        return false;
    std::ifstream in(nativePath(path), std::ios::binary);
    if (!in)
        return false;
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0)
        bytes.erase(0, 3);
    text = isUtf8(bytes) ? std::move(bytes) : fromWindows1252(bytes);
    return true;
}

// ---------------------------------------------------------------- reader

TextFileReader::TextFileReader(const std::string& path, std::size_t longestLine)
    : path_(path), longestLine_(longestLine)
{
    // Opened without waiting, so that a pipe without a writer is refused rather than waited for.
    const int fd = ::open(nativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        const int error = errno;
        if (error == ENOENT)
            throw DbError(kFileNotFound, "Datei nicht gefunden");
        throw DbError(kPathFileAccess, systemErrorMessage(error, path, PathKind::File));
    }
    struct stat status {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        const bool folder = S_ISDIR(status.st_mode);
        ::close(fd);
        throw DbError(kPathFileAccess, notAFileMessage(path, folder));
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    file_ = ::fdopen(fd, "rb");
    if (!file_) {
        const int error = errno;
        ::close(fd);
        throw DbError(kPathFileAccess, systemErrorMessage(error, path, PathKind::File));
    }
    fill();
    if (buffer_.rfind("\xEF\xBB\xBF", 0) == 0) {
        utf8_ = true;
        pos_ = 3;
    } else {
        utf16_ = buffer_.rfind("\xFF\xFE", 0) == 0 || buffer_.rfind("\xFE\xFF", 0) == 0;
    }
}

TextFileReader::~TextFileReader()
{
    if (file_)
        std::fclose(file_);
}

bool TextFileReader::fill()
{
    if (eof_)
        return false;
    buffer_.erase(0, pos_);
    pos_ = 0;
    const std::size_t old = buffer_.size();
    buffer_.resize(old + kChunk);
    errno = 0;
    const std::size_t got = std::fread(buffer_.data() + old, 1, kChunk, file_);
    buffer_.resize(old + got);
    if (got < kChunk) {
        if (std::ferror(file_))
            throw DbError(kPathFileAccess, systemErrorMessage(errno, path_, PathKind::File));
        eof_ = true;
    }
    return got > 0;
}

bool TextFileReader::readLine(std::string& line)
{
    raw_.clear();
    bool any = false;
    for (;;) {
        if (pos_ >= buffer_.size() && !fill()) {
            if (!any)
                return false;
            break;
        }
        any = true;
        const char* begin = buffer_.data() + pos_;
        const std::size_t avail = buffer_.size() - pos_;
        std::size_t n = 0;
        while (n < avail && begin[n] != '\n' && begin[n] != '\r')
            ++n;
        if (raw_.size() + n > longestLine_)
            throw DbError(kPathFileAccess, "Die Zeile " + std::to_string(lines_ + 1) + " der Datei '" +
                                               displayPath(path_) + "' ist länger als " +
                                               std::to_string(longestLine_) + " Zeichen.");
        raw_.append(begin, n);
        pos_ += n;
        if (n == avail)
            continue; // the line goes on in the next chunk
        const char end = buffer_[pos_++];
        if (end == '\r') {
            if (pos_ >= buffer_.size())
                fill();
            if (pos_ < buffer_.size() && buffer_[pos_] == '\n')
                ++pos_;
        }
        break;
    }
    line = utf8_ && isUtf8(raw_) ? raw_ : fromWindows1252(raw_);
    ++lines_;
    return true;
}

// ---------------------------------------------------------------- writer

namespace {
/// The error of a write that failed with the system's error number `error`.
DbError writeError(int error)
{
    if (error == ENOSPC || error == EDQUOT)
        return DbError(dberr::DiskFull, dbtext::DiskFull);
    if (error == EIO)
        return DbError(dberr::DiskOrNetwork, dbtext::DiskOrNetwork);
    return DbError(kPathFileAccess, "Fehler beim Zugriff auf Pfad/Datei");
}
} // namespace

TextFileWriter::TextFileWriter(const std::string& path)
{
    try {
        file_ = std::make_unique<AtomicFile>(path);
    } catch (const FileError&) {
        throw DbError(kPathNotFound, "Pfad nicht gefunden");
    }
}

TextFileWriter::~TextFileWriter() = default;

void TextFileWriter::writeLine(std::string_view utf8)
{
    if (!file_)
        throw DbError(kPathFileAccess, "Fehler beim Zugriff auf Pfad/Datei");
    std::string bytes = toWindows1252(utf8);
    bytes += "\r\n";
    try {
        file_->write(bytes);
    } catch (const FileError& e) {
        throw writeError(e.error());
    }
}

void TextFileWriter::close()
{
    if (!file_)
        return;
    try {
        file_->commit();
    } catch (const FileError& e) {
        throw writeError(e.error());
    }
    file_.reset();
}

void TextFileWriter::keepWrittenLines()
{
    if (!file_)
        return;
    const std::unique_ptr<AtomicFile> file = std::move(file_);
    try {
        file->commitWritten();
    } catch (const FileError&) {
        // The earlier file stays; the failure that ended the writing has been told already.
    }
}

} // namespace qi
