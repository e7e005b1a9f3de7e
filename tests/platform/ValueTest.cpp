#include "DbError.h"
#include "Value.h"

#include <gtest/gtest.h>

using namespace qi;

TEST(Value, TextOfValues)
{
    EXPECT_EQ(toText(Value{}), "");
    EXPECT_EQ(toText(Value{std::int64_t{-12}}), "-12");
    EXPECT_EQ(toText(Value{2.0}), "2");
    EXPECT_EQ(toText(Value{std::string("x")}), "x");
}

TEST(Value, SixteenBitRangeIsChecked)
{
    EXPECT_EQ(toInt16(Value{std::int64_t{32767}}), 32767);
    EXPECT_EQ(toInt16(Value{std::int64_t{-32768}}), -32768);
    try {
        toInt16(Value{std::int64_t{32768}});
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::Overflow);
        EXPECT_EQ(e.description(), "Überlauf");
    }
    std::int16_t c = 32766;
    incrementInt16(c);
    EXPECT_EQ(c, 32767);
    EXPECT_THROW(incrementInt16(c), DbError);
    EXPECT_EQ(c, 32767);
}

TEST(Value, LongRangeIsChecked)
{
    EXPECT_THROW(toInt32(Value{std::int64_t{1} << 40}), DbError);
    EXPECT_EQ(toInt32(Value{std::string("42")}), 42);
}
