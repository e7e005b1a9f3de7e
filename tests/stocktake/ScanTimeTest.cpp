#include "ScanTime.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

TEST(ScanTime, TheScannersDateAndTimeBecomeOneSortableStamp)
{
    EXPECT_EQ(scanTime("14.03.2025", "08:05:09"), "2025-03-14 08:05:09");
    EXPECT_EQ(scanTime(" 01.12.2024 ", "23:59:59 "), "2024-12-01 23:59:59");
    EXPECT_LT(scanTime("31.12.2024", "23:00:00"), scanTime("01.01.2025", "01:00:00"));
}

TEST(ScanTime, TextsNotOfTheScannersFormStayAsTheyAre)
{
    EXPECT_EQ(scanTime("2025-03-14", "08:05:09"), "2025-03-14 08:05:09");
    EXPECT_EQ(scanTime("14.3.2025", "08:05"), "14.3.2025 08:05");
    EXPECT_EQ(scanTime("gestern", ""), "gestern");
    EXPECT_EQ(scanTime("14.03.2025", ""), "2025-03-14");
    EXPECT_EQ(scanTime("", "08:05:09"), "08:05:09");
    EXPECT_EQ(scanTime("", ""), "");
}

} // namespace
} // namespace qi
