#include "PictureTiming.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(PictureTiming, roundedTimes_getTheirConstantRateBack) {
    const PictureTiming timing(
        {.sourceTimeBase = {1, 1000}, .sourceRate = {30000, 1001}, .outputTimeBase = {1, 30000}});
    EXPECT_EQ(timing.at(0), 0);
    EXPECT_EQ(timing.at(33), 1001);
    EXPECT_EQ(timing.at(67), 2002);
    EXPECT_EQ(timing.at(100), 3003);
}

TEST(PictureTiming, otherTimes_stayWhatTheyAre) {
    const PictureTiming timing(
        {.sourceTimeBase = {1, 1000}, .sourceRate = {25, 1}, .outputTimeBase = {1, 90000}});
    EXPECT_EQ(timing.at(41), 3600);
    EXPECT_EQ(timing.at(42), 42 * 90);
    EXPECT_EQ(timing.at(60), 60 * 90);
}

TEST(PictureTiming, rateIsUnknownOrFinerThanTheTicks_timesStay) {
    const PictureTiming unknown(
        {.sourceTimeBase = {1, 1000}, .sourceRate = {0, 1}, .outputTimeBase = {1, 90000}});
    EXPECT_EQ(unknown.at(41), 41 * 90);
    const PictureTiming fine(
        {.sourceTimeBase = {1, 100}, .sourceRate = {60, 1}, .outputTimeBase = {1, 90000}});
    EXPECT_EQ(fine.at(3), 3 * 900);
}

TEST(PictureTiming, usualRate_leavesOutWhatIsATimeBase) {
    const auto expectRate = [](AVRational rate, int num, int den) {
        EXPECT_EQ(rate.num, num);
        EXPECT_EQ(rate.den, den);
    };
    expectRate(usualRate({30000, 1001}, {25, 1}), 30000, 1001);
    expectRate(usualRate({600, 1}, {25, 1}), 25, 1);
    expectRate(usualRate({600, 1}, {0, 0}), 0, 1);
    // A phone's intervals are all different; only in the mean there is a rate, about.
    expectRate(usualRate({90'000, 1}, {720'000, 24'013}), 30'000, 1001);
    expectRate(usualRate({90'000, 1}, {719'000, 36'017}), 539, 27);
}

TEST(PictureTiming, commonTimeBase_hasTheTicksOfBoth) {
    EXPECT_EQ(commonTimeBase({1, 1000}, {25, 1}, 1, 1'000'000).den, 1000);
    EXPECT_EQ(commonTimeBase({1, 1000}, {30000, 1001}, 1, 1'000'000).den, 30000);
    EXPECT_EQ(commonTimeBase({1, 25}, {25, 1}, 90'000, 1'000'000).den, 90'000);
    EXPECT_EQ(commonTimeBase({1, 90'000}, {25, 1}, 1, 65'535).den, 65'525);
    EXPECT_EQ(commonTimeBase({1, 90'000}, {720'000, 24'013}, 1, 65'535).den, 65'535);
}

} // namespace
} // namespace velmora::test
