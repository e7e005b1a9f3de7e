// The Windows-1252 text reader on any bytes. The lines it hands out must be the
// file's lines (ended by CR LF, LF or a lone CR; a last line without end counts)
// converted to UTF-8, and converting them back must give the bytes again. An
// input whose first byte b is below 8 is read a second time behind a first line
// of 64 KiB less 1 + b bytes: its byte b is then the last of the reader's first
// chunk, so that line ends (CR LF above all) fall on the edge between two chunks.

#include "FuzzSupport.h"

#include "DbError.h"
#include "TextFile.h"

#include <vector>

using namespace qi;

namespace {

constexpr std::size_t kReaderChunk = 64 * 1024;

std::vector<std::string_view> linesOf(std::string_view bytes)
{
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    while (start < bytes.size()) {
        std::size_t end = start;
        while (end < bytes.size() && bytes[end] != '\r' && bytes[end] != '\n')
            ++end;
        lines.push_back(bytes.substr(start, end - start));
        if (end < bytes.size() && bytes[end] == '\r' && end + 1 < bytes.size() && bytes[end + 1] == '\n')
            ++end;
        start = end + 1;
    }
    return lines;
}

void readBack(std::string_view bytes)
{
    const std::string path = fuzz::scratchFile("text.txt");
    fuzz::writeBytes(path, bytes);
    // A UTF-8 byte-order mark is no part of the first line; the lines after it that are
    // UTF-8 are taken as they are.
    const bool utf8 = bytes.substr(0, 3) == "\xEF\xBB\xBF";
    const std::vector<std::string_view> expected = linesOf(utf8 ? bytes.substr(3) : bytes);
    TextFileReader reader(path);
    std::string line;
    std::size_t n = 0;
    for (;;) {
        try {
            if (!reader.readLine(line))
                break;
        } catch (const DbError&) {
            fuzz::require(n < expected.size() && expected[n].size() > kLongestTextLine,
                          "only a line longer than the limit is refused");
            return;
        }
        fuzz::require(n < expected.size(), "the reader hands out no more lines than the file has");
        fuzz::require(expected[n].size() <= kLongestTextLine, "a line longer than the limit is refused");
        if (utf8 && isUtf8(expected[n])) {
            fuzz::require(line == expected[n], "a line of a UTF-8 file is taken as it is");
        } else {
            fuzz::require(line == fromWindows1252(expected[n]), "each line is the file's line in UTF-8");
            fuzz::require(toWindows1252(line) == expected[n], "each line converts back to its bytes");
        }
        ++n;
    }
    fuzz::require(n == expected.size(), "the reader hands out every line");
    fuzz::require(reader.linesRead() == std::int64_t(n), "the reader counts the lines it handed out");
    fuzz::require(!reader.readLine(line), "the end of the file stays the end");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view in = fuzz::bytesOf(data, size);

    // The conversions alone, on bytes that need not be UTF-8.
    const std::string utf8 = fromWindows1252(in);
    fuzz::require(isUtf8(utf8), "Windows-1252 bytes become well-formed UTF-8");
    fuzz::require(toWindows1252(utf8) == in, "Windows-1252 bytes survive the way to UTF-8 and back");
    fuzz::require(toWindows1252(in).size() <= in.size(), "converting to Windows-1252 never lengthens");

    readBack(in);
    if (!in.empty() && static_cast<unsigned char>(in[0]) < 8) {
        std::string padded(kReaderChunk - 1 - static_cast<unsigned char>(in[0]), 'x');
        padded.append(in);
        readBack(padded);
    }
    return 0;
}
