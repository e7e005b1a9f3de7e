// The text reader on what a person may hand it instead of a text file: folders, pipes,
// devices, byte-order marks and lines of any length, read with bounded memory.

#include "TextFile.h"

#include "DbError.h"
#include "DbErrorOf.h"
#include "FileSystem.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>

namespace qi {
namespace {

using test::errorOf;

std::string quoted(const std::string& path) { return "'" + displayPath(path) + "'"; }

TEST(TextFileReader, AMissingFileIsNotFound)
{
    test::TempDir dir;
    const auto error = errorOf([&] { TextFileReader reader(dir.file("fehlt.dat")); });
    EXPECT_EQ(error, std::make_pair(53, std::string("Datei nicht gefunden")));
}

TEST(TextFileReader, AFolderIsNamedAFolder)
{
    test::TempDir dir;
    const auto error = errorOf([&] { TextFileReader reader(dir.path()); });
    EXPECT_EQ(error, std::make_pair(dberr::PathFileAccess, quoted(dir.path()) + " ist ein Ordner, keine Datei."));
}

TEST(TextFileReader, APipeIsRefusedWithoutWaitingForAWriter)
{
    test::TempDir dir;
    const std::string pipe = dir.file("pipe.dat");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    // Opening a pipe without a writer for reading would wait for ever; the reader refuses it at once.
    const auto error = errorOf([&] { TextFileReader reader(pipe); });
    EXPECT_EQ(error, std::make_pair(dberr::PathFileAccess, quoted(pipe) + " ist keine Datei."));
}

TEST(TextFileReader, ADeviceIsNoFile)
{
    const auto error = errorOf([] { TextFileReader reader("/dev/zero"); });
    EXPECT_EQ(error, std::make_pair(dberr::PathFileAccess, std::string("'/dev/zero' ist keine Datei.")));
}

TEST(TextFileReader, AUtf8ByteOrderMarkIsNoPartOfTheFirstLine)
{
    test::TempDir dir;
    test::writeFile(dir.file("a.txt"), "\xEF\xBB\xBF" "M1,B\xC3\xBCro\r\nx\xFC\r\n");
    TextFileReader reader(dir.file("a.txt"));
    EXPECT_FALSE(reader.startsAsUtf16());
    std::string line;
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line, "M1,Büro"); // UTF-8 after the mark is taken as it is
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line, "xü"); // a line that is no UTF-8 is read in the code page
    EXPECT_FALSE(reader.readLine(line));
}

TEST(TextFileReader, WithoutAByteOrderMarkUtf8BytesAreCodePageCharacters)
{
    test::TempDir dir;
    test::writeFile(dir.file("a.txt"), "B\xC3\xBCro\r\n");
    TextFileReader reader(dir.file("a.txt"));
    std::string line;
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line, "BÃ¼ro");
}

TEST(TextFileReader, Utf16ByteOrderMarksAreTold)
{
    test::TempDir dir;
    test::writeFile(dir.file("le.txt"), std::string("\xFF\xFE" "M\0" "1\0", 6));
    test::writeFile(dir.file("be.txt"), std::string("\xFE\xFF" "\0M" "\0" "1", 6));
    test::writeFile(dir.file("ansi.txt"), "\xFF" "a\r\n");
    EXPECT_TRUE(TextFileReader(dir.file("le.txt")).startsAsUtf16());
    EXPECT_TRUE(TextFileReader(dir.file("be.txt")).startsAsUtf16());
    EXPECT_FALSE(TextFileReader(dir.file("ansi.txt")).startsAsUtf16());
}

TEST(TextFileReader, ALineAtTheLimitIsReadAndOneLongerIsRefused)
{
    test::TempDir dir;
    const std::string f = dir.file("a.txt");
    test::writeFile(f, "kurz\r\n" + std::string(kLongestTextLine, 'x') + "\r\n" + std::string(kLongestTextLine + 1, 'y') +
                           "\r\nz\r\n");
    TextFileReader reader(f);
    std::string line;
    ASSERT_TRUE(reader.readLine(line));
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line.size(), kLongestTextLine);
    const auto error = errorOf([&] { reader.readLine(line); });
    EXPECT_EQ(error, std::make_pair(dberr::PathFileAccess, "Die Zeile 3 der Datei " + quoted(f) + " ist länger als " +
                                                               std::to_string(kLongestTextLine) + " Zeichen."));
}

TEST(TextFileReader, ASmallerLimitCountsBytesOfTheLineWithoutItsEnd)
{
    test::TempDir dir;
    test::writeFile(dir.file("a.txt"), "1234\r\n12345\n");
    TextFileReader reader(dir.file("a.txt"), 4);
    std::string line;
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line, "1234");
    EXPECT_EQ(errorOf([&] { reader.readLine(line); }).first, dberr::PathFileAccess);
}

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(TextFileReader, AFiftyMegabyteLineIsRefusedWithoutBeingHeldInMemory)
{
    test::TempDir dir;
    const std::string f = dir.file("gross.dat");
    {
        std::ofstream out(f, std::ios::binary);
        out << "M1,4711,01.02.2015,10:00:00,1,";
        const std::string block(1 << 20, 'A');
        for (int i = 0; i < 50; ++i)
            out << block;
        out << ",X-1,E\r\n";
    }
    const long before = peakKilobytes();
    std::string line;
    TextFileReader reader(f);
    const auto error = errorOf([&] { reader.readLine(line); });
    EXPECT_EQ(error.first, dberr::PathFileAccess);
    EXPECT_EQ(error.second, "Die Zeile 1 der Datei " + quoted(f) + " ist länger als " + std::to_string(kLongestTextLine) +
                                " Zeichen.");
    // The peak of the process grew by far less than the line (it holds a chunk and the limit).
    EXPECT_LT(peakKilobytes() - before, 8 * 1024);
}

} // namespace
} // namespace qi
