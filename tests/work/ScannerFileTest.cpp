// The scanner file reader gives exactly the records and fields that the text helpers
// FieldCount and GetField give for the separator ",".

#include "ScannerFile.h"

#include "DbError.h"
#include "TestSupport.h"
#include "bGeneral.h"

#include <random>

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

} // namespace
} // namespace qi::test
