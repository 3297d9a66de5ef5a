#include "FrameRate.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

bool same(AVRational left, AVRational right) {
    return left.num == right.num && left.den == right.den;
}

TEST(FrameRate, whole_isDividedAsIntegers) {
    EXPECT_EQ(wholeFrameRate({25, 1}), 25);
    EXPECT_EQ(wholeFrameRate({30000, 1001}), 29);
    EXPECT_EQ(wholeFrameRate({24000, 1001}), 23);
    EXPECT_EQ(wholeFrameRate({25, 2}), 12);
    EXPECT_EQ(wholeFrameRate({1, 2}), 0);
    EXPECT_EQ(wholeFrameRate({0, 1}), 0);
}

TEST(FrameRate, zeroDenominator_countsZero) {
    EXPECT_EQ(wholeFrameRate({30, 0}), 0);
    EXPECT_EQ(wholeFrameRate({0, 0}), 0);
}

TEST(FrameRate, zeroDenominator_isNotCorrected) {
    EXPECT_TRUE(same(correctedFrameRate({30000, 0}), {30000, 0}));
    EXPECT_TRUE(same(correctedFrameRate({0, 0}), {0, 0}));
}

TEST(FrameRate, usualRates_stayAsTheyAre) {
    for (const AVRational rate : {AVRational{25, 1}, AVRational{30000, 1001}, AVRational{60, 1},
                                  AVRational{19001, 317}, AVRational{0, 1}, AVRational{-25, 1}}) {
        EXPECT_TRUE(same(correctedFrameRate(rate), rate)) << rate.num << '/' << rate.den;
    }
}

TEST(FrameRate, thirtyThousandPerSecond_means2997) {
    const AVRational rate = correctedFrameRate({30000, 1});
    EXPECT_TRUE(same(rate, {30000, 1001}));
    EXPECT_EQ(wholeFrameRate(rate), 29);
}

TEST(FrameRate, oneThousand_isTheLastThatStays) {
    EXPECT_TRUE(same(correctedFrameRate({1000, 1}), {1000, 1}));
    EXPECT_TRUE(same(correctedFrameRate({2001, 2}), {2001, 2})); // 1000 as an integer
    EXPECT_TRUE(same(correctedFrameRate({1001, 1}), {1001, 1001}));
    EXPECT_TRUE(same(correctedFrameRate({2002, 2}), {2002, 1001}));
    EXPECT_TRUE(same(correctedFrameRate({90000, 1}), {90000, 1001}));
}

struct OfferedRate {
    double rate;
    AVRational duration;
};

class FrameRateOffered : public testing::TestWithParam<OfferedRate> {};

TEST_P(FrameRateOffered, rate_hasItsDuration) {
    const double rate = GetParam().rate;
    EXPECT_TRUE(same(encodedFrameDuration(rate, {25, 1}, AV_CODEC_ID_H264), GetParam().duration));
    EXPECT_EQ(encodedFrameRate(rate, {25, 1}), rate);
}

INSTANTIATE_TEST_SUITE_P(
    Rates, FrameRateOffered,
    testing::Values(OfferedRate{10.0, {1, 10}}, OfferedRate{12.0, {1001, 12012}},
                    OfferedRate{14.985, {1001, 15000}}, OfferedRate{15.0, {1001, 15015}},
                    OfferedRate{18.0, {1, 18}}, OfferedRate{20.0, {1001, 20020}},
                    OfferedRate{23.975, {1001, 24000}}, OfferedRate{24.0, {1001, 24024}},
                    OfferedRate{25.0, {1001, 25025}}, OfferedRate{29.97, {1001, 30000}},
                    OfferedRate{30.0, {1001, 30030}}, OfferedRate{50.0, {1, 50}},
                    OfferedRate{60.0, {1, 60}}));

TEST(FrameRate, rateThatIsNotOffered_keepsTheSourceDuration) {
    EXPECT_TRUE(same(encodedFrameDuration(48.0, {25, 2}, AV_CODEC_ID_H264), {2, 25}));
    EXPECT_EQ(encodedFrameRate(48.0, {25, 2}), 48.0);
}

TEST(FrameRate, sourceRate_becomesItsWholeNumber) {
    EXPECT_TRUE(same(encodedFrameDuration(0.0, {19001, 317}, AV_CODEC_ID_H264), {317, 19001}));
    EXPECT_EQ(encodedFrameRate(0.0, {19001, 317}), 59.0);
}

TEST(FrameRate, sourceRatesThatMpeg4CannotExpress_areReplaced) {
    EXPECT_TRUE(same(encodedFrameDuration(0.0, {785645, 32768}, AV_CODEC_ID_MPEG4), {1001, 24000}));
    EXPECT_TRUE(same(encodedFrameDuration(0.0, {982057, 32768}, AV_CODEC_ID_MPEG4), {100, 2997}));
    EXPECT_TRUE(
        same(encodedFrameDuration(0.0, {785645, 32768}, AV_CODEC_ID_H264), {32768, 785645}));
}

} // namespace
} // namespace velmora::test
