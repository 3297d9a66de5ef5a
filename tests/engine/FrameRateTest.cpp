#include "FrameRate.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

bool same(AVRational left, AVRational right) {
    return left.num == right.num && left.den == right.den;
}

TEST(FrameRate, Whole_is_divided_as_integers) {
    EXPECT_EQ(wholeFrameRate({25, 1}), 25);
    EXPECT_EQ(wholeFrameRate({30000, 1001}), 29);
    EXPECT_EQ(wholeFrameRate({24000, 1001}), 23);
    EXPECT_EQ(wholeFrameRate({25, 2}), 12);
    EXPECT_EQ(wholeFrameRate({1, 2}), 0);
    EXPECT_EQ(wholeFrameRate({0, 1}), 0);
}

TEST(FrameRate, ZeroDenominator_counts_zero) {
    EXPECT_EQ(wholeFrameRate({30, 0}), 0);
    EXPECT_EQ(wholeFrameRate({0, 0}), 0);
}

TEST(FrameRate, ZeroDenominator_is_not_corrected) {
    EXPECT_TRUE(same(correctedFrameRate({30000, 0}), {30000, 0}));
    EXPECT_TRUE(same(correctedFrameRate({0, 0}), {0, 0}));
}

TEST(FrameRate, UsualRates_stay_as_they_are) {
    for (const AVRational rate : {AVRational{25, 1}, AVRational{30000, 1001}, AVRational{60, 1},
                                  AVRational{19001, 317}, AVRational{0, 1}, AVRational{-25, 1}}) {
        EXPECT_TRUE(same(correctedFrameRate(rate), rate)) << rate.num << '/' << rate.den;
    }
}

TEST(FrameRate, ThirtyThousandPerSecond_means_29_97) {
    const AVRational rate = correctedFrameRate({30000, 1});
    EXPECT_TRUE(same(rate, {30000, 1001}));
    EXPECT_EQ(wholeFrameRate(rate), 29);
}

TEST(FrameRate, OneThousand_is_the_last_that_stays) {
    EXPECT_TRUE(same(correctedFrameRate({1000, 1}), {1000, 1}));
    EXPECT_TRUE(same(correctedFrameRate({2001, 2}), {2001, 2})); // 1000 as an integer
    EXPECT_TRUE(same(correctedFrameRate({1001, 1}), {1001, 1001}));
    EXPECT_TRUE(same(correctedFrameRate({2002, 2}), {2002, 1001}));
    EXPECT_TRUE(same(correctedFrameRate({90000, 1}), {90000, 1001}));
}

} // namespace
} // namespace velmora::test
