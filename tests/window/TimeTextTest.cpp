#include "TimeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace velmora::test {
namespace {

TEST(TimeText, zero_givesZeros) {
    EXPECT_EQ(timeText(0), "00:00:00.000");
}

TEST(TimeText, hoursMinutesSecondsMilliseconds_giveTheirFields) {
    EXPECT_EQ(timeText(3661.5F), "01:01:01.500");
    EXPECT_EQ(timeText(59.999F), "00:00:59.999");
    EXPECT_EQ(timeText(3600.0F), "01:00:00.000");
}

TEST(TimeText, partOfAMillisecond_isCutOff) {
    EXPECT_EQ(timeText(0.0005F), "00:00:00.000");
    EXPECT_EQ(timeText(0.0019F), "00:00:00.001");
}

TEST(TimeText, millisecond_isCountedInSinglePrecision) {
    // The nearest number of single precision lies a little below 1.356. A thousand times that is
    // rounded to 1356 in single precision, but stays below it in double precision.
    EXPECT_EQ(timeText(1.356F), "00:00:01.356");
}

TEST(TimeText, hundredHours_giveThreeDigits) {
    EXPECT_EQ(timeText(360000.0F), "100:00:00.000");
}

TEST(TimeText, negativeTime_givesNegativeFields) {
    EXPECT_EQ(timeText(-5.0F), "00:00:-5.000");
    EXPECT_EQ(timeText(-3661.5F), "-1:-1:-1.-500");
}

TEST(TimeText, timeBeyond32Bits_staysAtTheirEnd) {
    EXPECT_EQ(timeText(1e30F), "596523:14:07.647");
    EXPECT_EQ(timeText(std::numeric_limits<float>::infinity()), "596523:14:07.647");
    EXPECT_EQ(timeText(-1e30F), "-596523:-14:-8.-648");
    EXPECT_EQ(timeText(std::nanf("")), "00:00:00.000");
}

TEST(TimeText, positionAndLength_areParted) {
    EXPECT_EQ(positionText(1.5F, 4), "00:00:01.500/00:00:04.000");
}

} // namespace
} // namespace velmora::test
