// FieldCount and GetField of bGeneral.

#include "bGeneral.h"

#include "DbError.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

TEST(FieldCount, EmptyTextHasNoField) { EXPECT_EQ(FieldCount("", ";"), 0); }

TEST(FieldCount, TextWithoutSeparatorHasOneField) { EXPECT_EQ(FieldCount("abc", ";"), 1); }

TEST(FieldCount, CountsSeparatorsPlusOne)
{
    EXPECT_EQ(FieldCount("a;b;c", ";"), 3);
    EXPECT_EQ(FieldCount(";", ";"), 2);
    EXPECT_EQ(FieldCount("a,,", ","), 3);
}

TEST(FieldCount, OverlappingHitsOfAMultiCharacterSeparatorCount)
{
    // "aaa" holds "aa" at positions 1 and 2; the second search starts one past the first hit.
    EXPECT_EQ(FieldCount("aaa", "aa"), 3);
    EXPECT_EQ(FieldCount("x;;;y", ";;"), 3);
    EXPECT_EQ(FieldCount("a::b", "::"), 2);
}

TEST(FieldCount, MoreThan32767FieldsOverflow)
{
    const std::string ok(32766, ';'); // 32767 fields
    EXPECT_EQ(FieldCount(ok, ";"), 32767);
    try {
        FieldCount(ok + ";", ";");
        FAIL() << "no overflow";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::Overflow);
    }
}

TEST(GetField, PicksFieldsCountedFromOne)
{
    EXPECT_EQ(GetField("a;b;c", ";", 1), "a");
    EXPECT_EQ(GetField("a;b;c", ";", 2), "b");
    EXPECT_EQ(GetField("a;b;c", ";", 3), "c");
}

TEST(GetField, BeyondTheLastFieldIsEmpty) { EXPECT_EQ(GetField("a;b;c", ";", 4), ""); }

TEST(GetField, MinusOneIsTheLastField)
{
    EXPECT_EQ(GetField("a;b;c", ";", -1), "c");
    EXPECT_EQ(GetField("a;b;c", ";", -2), "b");
    EXPECT_EQ(GetField("a;b;c", ";", -3), "a");
    EXPECT_EQ(GetField("a;b;c", ";", -4), "");
}

TEST(GetField, EmptyTextOrZeroIsEmpty)
{
    EXPECT_EQ(GetField("", ";", 1), "");
    EXPECT_EQ(GetField("", ";", -1), "");
    EXPECT_EQ(GetField("a;b", ";", 0), "");
}

TEST(GetField, EmptyFieldsStayEmpty)
{
    EXPECT_EQ(GetField("a;;c", ";", 2), "");
    EXPECT_EQ(GetField("a;b;", ";", 3), "");
    EXPECT_EQ(GetField(";b", ";", 1), "");
}

TEST(GetField, TextWithoutSeparatorIsItsOnlyField)
{
    EXPECT_EQ(GetField("abc", ";", 1), "abc");
    EXPECT_EQ(GetField("abc", ";", -1), "abc");
    EXPECT_EQ(GetField("abc", ";", 2), "");
}

TEST(GetField, MultiCharacterSeparator)
{
    EXPECT_EQ(GetField("eins::zwei::drei", "::", 2), "zwei");
    EXPECT_EQ(GetField("eins::zwei::drei", "::", -1), "drei");
}

TEST(GetField, OverlappingHitsGiveEmptyFieldsBetweenThem)
{
    // Hits of ";;" in "x;;;y" at 2 and 3: field 2 would start after the first hit but end at the second.
    EXPECT_EQ(GetField("x;;;y", ";;", 1), "x");
    EXPECT_EQ(GetField("x;;;y", ";;", 2), "");
    EXPECT_EQ(GetField("x;;;y", ";;", 3), "y");
    EXPECT_EQ(GetField("x;;;y", ";;", -1), "y");
}

TEST(GetField, ScannerLine)
{
    const std::string line = "4711,A1,12.03.2024,09:15:02,0105,INV-1,ART-17,1";
    EXPECT_EQ(FieldCount(line, ","), 8);
    EXPECT_EQ(GetField(line, ",", 5), "0105");
    EXPECT_EQ(GetField(line, ",", 8), "1");
    EXPECT_EQ(GetField(line, ",", 9), "");
}

TEST(GetField, CountsBeyond32767Overflow)
{
    const std::string text(40000, ';');
    EXPECT_THROW(GetField(text, ";", 1), DbError);
    EXPECT_THROW(GetField(text, ";", -1), DbError);
}

} // namespace
} // namespace qi
