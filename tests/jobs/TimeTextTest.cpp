#include "TimeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

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

TEST(TimeText, wholeSeconds_haveNoFraction) {
    EXPECT_EQ(wholeSecondsText(3661), "01:01:01");
    EXPECT_EQ(wholeSecondsText(-3661), "-1:-1:-1");
}

TEST(TimeText, textThatIsShown_isReadBack) {
    EXPECT_EQ(parsedMilliseconds(timeText(3661.5F)), 3661500);
    EXPECT_EQ(parsedMilliseconds(timeText(0)), 0);
    EXPECT_EQ(parsedMilliseconds(timeText(86399.0F)), 86399000);
}

TEST(TimeText, lastField_isACountOfMilliseconds) {
    EXPECT_EQ(parsedMilliseconds("0:0:1.5"), 1005);
}

TEST(TimeText, fieldsLeftOut_count0) {
    EXPECT_EQ(parsedMilliseconds(""), 0);
    EXPECT_EQ(parsedMilliseconds("1"), 3600000);
    EXPECT_EQ(parsedMilliseconds("::.7"), 7);
}

TEST(TimeText, textThatIsNoTime_isNotRead) {
    for (const char* const text : {"100:0:0.0", "0:0:100.0", "0:0:0.1000", "-1", "0:a", "soon"}) {
        EXPECT_EQ(parsedMilliseconds(text), std::nullopt) << text;
    }
}

TEST(TimeText, textOfANegativeTime_isNotRead) {
    EXPECT_EQ(parsedMilliseconds(timeText(-5.0F)), std::nullopt);
}

TEST(Milliseconds, fractionOfOne_isCutOff) {
    EXPECT_EQ(toMilliseconds(1.5F), 1500);
    EXPECT_EQ(toMilliseconds(0.0019F), 1);
    EXPECT_EQ(toMilliseconds(-0.0019F), -1);
}

TEST(Milliseconds, secondsInSinglePrecision_areMultipliedInDouble) {
    // The nearest number of single precision lies a little below 1.356.
    EXPECT_EQ(toMilliseconds(1.356F), 1355);
}

TEST(Milliseconds, secondsBeyond64Bits_giveTheirEnd) {
    EXPECT_EQ(toMilliseconds(1e30F), 9200000000000000000);
    EXPECT_EQ(toMilliseconds(-1e30F), -9200000000000000000);
    EXPECT_EQ(toMilliseconds(std::nanf("")), 0);
}

TEST(Milliseconds, toSeconds_keepTheirFraction) {
    EXPECT_EQ(toSeconds(1250), 1.25F);
    EXPECT_EQ(toSeconds(-1), -0.001F);
}

} // namespace
} // namespace velmora::test
