// The scanner file reader gives exactly the records and fields that the text helpers
// FieldCount and GetField give for the separator ",".

#include "ScannerFile.h"

#include "DbError.h"
#include "DbErrorOf.h"
#include "FileSystem.h"
#include "TestSupport.h"
#include "bGeneral.h"

#include <random>
#include <sys/stat.h>

namespace qi::test {
namespace {

TEST(ScannerFile, RecordsAndFieldsAreThoseOfFieldCountAndGetField)
{
    TempDir dir;
    std::mt19937 random(7);
    const std::string pieces[] = {"", " ", "0", "00012", " 012", "INV-1", "a b", "x", "x;y"};
    std::vector<std::string> lines;
    for (int i = 0; i < 400; ++i) {
        const int fields = int(random() % 12);
        std::string line;
        for (int f = 0; f < fields; ++f)
            line += (f ? "," : "") + pieces[random() % std::size(pieces)];
        lines.push_back(line);
    }
    std::string bytes;
    for (const std::string& l : lines)
        bytes += l + "\r\n";
    writeFile(dir.file("f.dat"), bytes);

    ScannerFile file(dir.file("f.dat"));
    std::size_t next = 0;
    int records = 0;
    while (file.nextRecord()) {
        while (next < lines.size() && FieldCount(lines[next], ",") < 8)
            ++next;
        ASSERT_LT(next, lines.size());
        for (std::int16_t n = -1; n <= 13; ++n)
            if (n > 0) {
                EXPECT_EQ(file.field(n), GetField(lines[next], ",", n)) << lines[next] << " field " << n;
            }
        ++next;
        ++records;
    }
    while (next < lines.size() && FieldCount(lines[next], ",") < 8)
        ++next;
    EXPECT_EQ(next, lines.size());
    EXPECT_GT(records, 50);
}

TEST(ScannerFile, ALineOfTooManyFieldsOverflowsLikeFieldCount)
{
    TempDir dir;
    writeFile(dir.file("f.dat"), "1,2,3,4,5,6,7,8\r\n" + std::string(40000, ',') + "\r\n");
    ScannerFile file(dir.file("f.dat"));
    EXPECT_TRUE(file.nextRecord());
    try {
        file.nextRecord();
        FAIL() << "no overflow";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::Overflow);
    }
}

std::string notScannerText(const std::string& path, const std::string& why)
{
    return "Die Datei '" + displayPath(path) + "' ist keine Textdatei der Scanner (" + why + ").";
}

TEST(ScannerFile, AUtf16FileIsRefusedWhenOpened)
{
    TempDir dir;
    const std::string le = dir.file("le.dat");
    const std::string be = dir.file("be.dat");
    writeFile(le, std::string("\xFF\xFE" "M\0" "1\0" ",\0", 8));
    writeFile(be, std::string("\xFE\xFF" "\0M" "\0" "1", 6));
    EXPECT_EQ(errorOf([&] { ScannerFile file(le); }),
              std::make_pair(dberr::PathFileAccess, notScannerText(le, "sie ist in UTF-16 geschrieben")));
    EXPECT_EQ(errorOf([&] { ScannerFile file(be); }),
              std::make_pair(dberr::PathFileAccess, notScannerText(be, "sie ist in UTF-16 geschrieben")));
}

TEST(ScannerFile, NulBytesAreRefusedAtTheirLine)
{
    TempDir dir;
    const std::string f = dir.file("nul.dat");
    writeFile(f, "1,2,3,4,5,6,7,8\r\n" + std::string("1,2,3,4,5,I\0" "7,7,8\r\n", 20));
    ScannerFile file(f);
    EXPECT_TRUE(file.nextRecord());
    EXPECT_EQ(errorOf([&] { file.nextRecord(); }),
              std::make_pair(dberr::PathFileAccess, notScannerText(f, "sie enthält Nullzeichen")));
    // A NUL byte in a line too short to be a record refuses the file as well.
    writeFile(f, std::string("kurz\0\r\n", 7));
    EXPECT_EQ(errorOf([&] { ScannerFile::check(f); }).second, notScannerText(f, "sie enthält Nullzeichen"));
}

TEST(ScannerFile, AUtf8ByteOrderMarkIsNoPartOfTheFirstField)
{
    TempDir dir;
    const std::string f = dir.file("bom.dat");
    writeFile(f, "\xEF\xBB\xBF" "M1,4711,01.02.2015,10:00:00,1,I-1,X-1,E\r\n");
    ScannerFile file(f);
    ScanRecord r;
    ASSERT_TRUE(file.next(r));
    EXPECT_EQ(r.stMitarbNr, "M1");
    EXPECT_EQ(ScannerFile::check(f), "M1,4711,01.02.2015,10:00:00,1,I-1,X-1,E");
}

TEST(ScannerFile, TheCheckReadsTheWholeFileAndGivesTheFirstLine)
{
    TempDir dir;
    const std::string f = dir.file("a.dat");
    writeFile(f, "Kopf,x,07.07.2015\r\n1,2,3,4,5,6,7,8\r\n");
    EXPECT_EQ(ScannerFile::check(f), "Kopf,x,07.07.2015");
    writeFile(f, "Kopf\r\n" + std::string(kLongestTextLine + 1, 'x') + "\r\n");
    EXPECT_EQ(errorOf([&] { ScannerFile::check(f); }),
              std::make_pair(dberr::PathFileAccess, "Die Zeile 2 der Datei '" + displayPath(f) + "' ist länger als " +
                                                        std::to_string(kLongestTextLine) + " Zeichen."));
}

TEST(ScannerFile, AnEmptyFileIsCalledEmpty)
{
    TempDir dir;
    const std::string f = dir.file("leer.dat");
    writeFile(f, "");
    EXPECT_EQ(errorOf([&] { ScannerFile::check(f); }),
              std::make_pair(dberr::InputPastEnd, "Die Datei '" + displayPath(f) + "' ist leer."));
    writeFile(f, "\xEF\xBB\xBF");
    EXPECT_EQ(errorOf([&] { ScannerFile::check(f); }).second, "Die Datei '" + displayPath(f) + "' ist leer.");
}

TEST(ScannerFile, FoldersAndPipesAreNoFiles)
{
    TempDir dir;
    const std::string pipe = dir.file("pipe.dat");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { ScannerFile::check(dir.path()); }),
              std::make_pair(dberr::PathFileAccess, "'" + displayPath(dir.path()) + "' ist ein Ordner, keine Datei."));
    EXPECT_EQ(errorOf([&] { ScannerFile::check(pipe); }),
              std::make_pair(dberr::PathFileAccess, "'" + displayPath(pipe) + "' ist keine Datei."));
}

} // namespace
} // namespace qi::test
