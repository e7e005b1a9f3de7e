// Code page conversion, the UTF-8 check that decides how a profile file is read, and
// a writer on a full disk.

#include "TextFile.h"

#include "DbError.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

TEST(IsUtf8, AsciiAndGermanLettersAreWellFormed)
{
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("Raum 101"));
    EXPECT_TRUE(isUtf8("Bürostuhl Größe"));
    EXPECT_TRUE(isUtf8("\xF0\x9F\x93\xA6")); // a four-byte character
}

TEST(IsUtf8, Windows1252BytesAreNotUtf8)
{
    EXPECT_FALSE(isUtf8("B\xFCrostuhl")); // "ü" in Windows-1252
    EXPECT_FALSE(isUtf8("\x80"));
}

TEST(IsUtf8, CutAndMalformedSequencesAreRefused)
{
    EXPECT_FALSE(isUtf8("\xC3"));         // lead byte at the end
    EXPECT_FALSE(isUtf8("\xE2\x82"));     // three-byte form cut short
    EXPECT_FALSE(isUtf8("\xC3\x41"));     // continuation byte missing
    EXPECT_FALSE(isUtf8("\xC0\xAF"));     // overlong "/"
    EXPECT_FALSE(isUtf8("\xF5\x80\x80\x80")); // beyond U+10FFFF
    EXPECT_FALSE(isUtf8("\xF4\x90\x80\x80")); // beyond U+10FFFF with a valid lead byte
    EXPECT_FALSE(isUtf8("a\xE0\x80\xAF"));     // overlong in three bytes
    EXPECT_FALSE(isUtf8("\xF0\x80\x80\xAF")); // overlong in four bytes
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));      // a surrogate
}

TEST(ReadTextFile, WholeFilesAreReadAsUtf8OrWindows1252)
{
    test::TempDir dir;
    std::string text;
    test::writeFile(dir.file("utf8.txt"), "\xEF\xBB\xBF" "101\r\n102:L\r\nB\xC3\xBCro\r\n");
    ASSERT_TRUE(readTextFile(dir.file("utf8.txt"), text));
    EXPECT_EQ(text, "101\r\n102:L\r\nBüro\r\n");
    test::writeFile(dir.file("ansi.txt"), "B\xFCro\n");
    ASSERT_TRUE(readTextFile(dir.file("ansi.txt"), text));
    EXPECT_EQ(text, "Büro\n");
    EXPECT_FALSE(readTextFile(dir.file("fehlt.txt"), text));
}

TEST(FromWindows1252, EveryByteBecomesWellFormedUtf8)
{
    std::string all;
    for (int b = 1; b < 256; ++b)
        all += char(b);
    EXPECT_TRUE(isUtf8(fromWindows1252(all)));
    EXPECT_EQ(fromWindows1252("B\xFCro \x80"), "Büro €");
}

TEST(TextFileWriter, AFullDiskSaysSo)
{
    // The system's device that is always full.
    TextFileWriter out("/dev/full");
    try {
        // More than the writer keeps before it writes.
        for (int i = 0; i < 10000; ++i)
            out.writeLine("7,4711,01.02.2015,10:00:00,101,INV-001,X-1,I");
        out.close();
        FAIL() << "nothing failed";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DiskFull);
        EXPECT_EQ(e.description(), "Datenträger voll");
    }
}

} // namespace
} // namespace qi
