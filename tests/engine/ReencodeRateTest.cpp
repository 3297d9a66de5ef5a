// The rate of the pictures: the one asked for, the source's, or what stands in for it.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

struct Rate {
    double rate; ///< 0: the source's
    Fraction duration;
    std::int64_t timeBase; ///< that mp4 makes of it: at least 10000 to the second
};

void PrintTo(const Rate& rate, std::ostream* out) {
    *out << rate.rate;
}

class ReencodeRate : public ReencodeEncoder, public testing::WithParamInterface<Rate> {};

// 1001/25025 and 1/25 are the same duration, but not the same time base.
TEST_P(ReencodeRate, rate_hasItsTimeBaseInTheOutput) {
    engine_.videoFrameRate = GetParam().rate;

    const std::string output = made(smallSource(), "mp4");

    const Fraction timeBase = fractionOf(fieldsOf(output, "v:0").at("time_base"));
    EXPECT_EQ(timeBase.num, 1);
    EXPECT_EQ(timeBase.den, GetParam().timeBase);
    const auto packets = packetsOf(output, "v:0");
    ASSERT_GE(packets.size(), 10U);
    for (std::size_t i = 1; i < packets.size(); ++i) {
        ASSERT_EQ((packets[i].dts.value() - packets[i - 1].dts.value()) * GetParam().duration.den,
                  timeBase.den * GetParam().duration.num)
            << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rates, ReencodeRate,
    testing::Values(Rate{10.0, {1, 10}, 10240}, Rate{12.0, {1001, 12012}, 12012},
                    Rate{14.985, {1001, 15000}, 15000}, Rate{15.0, {1001, 15015}, 15015},
                    Rate{18.0, {1, 18}, 18432}, Rate{20.0, {1001, 20020}, 20020},
                    Rate{23.975, {1001, 24000}, 24000}, Rate{24.0, {1001, 24024}, 24024},
                    Rate{25.0, {1001, 25025}, 25025}, Rate{29.97, {1001, 30000}, 30000},
                    Rate{30.0, {1001, 30030}, 30030}, Rate{50.0, {1, 50}, 12800},
                    Rate{60.0, {1, 60}, 15360},
                    Rate{48.0, {1, 25}, 12800},        // not offered: the source's
                    Rate{0.0, {1001, 25025}, 25025})); // the source's is one that is offered

struct SourceRate {
    const char* name;
    const char* rate;
    AVCodecID encoder;
    Fraction duration;
    double setting; ///< that becomes of it
};

void PrintTo(const SourceRate& rate, std::ostream* out) {
    *out << rate.name;
}

class ReencodeSourceRate : public ReencodeEncoder,
                           public testing::WithParamInterface<SourceRate> {};

TEST_P(ReencodeSourceRate, output_hasItOrItsSubstitute) {
    const std::string source =
        mediaMadeBy(std::string("-f lavfi -i testsrc2=size=64x48:rate=25:duration=2 -c:v mjpeg "
                                "-r ") +
                        GetParam().rate,
                    "rate.avi");
    ASSERT_EQ(fieldsOf(source, "v:0").at("r_frame_rate"), GetParam().rate);
    choose(GetParam().encoder, AV_CODEC_ID_AAC);
    engine_.videoFrameRate = 0.0;

    const std::string output = made(source, "mp4");

    EXPECT_EQ(engine_.videoFrameRate, GetParam().setting);
    const Fraction timeBase = fractionOf(fieldsOf(output, "v:0").at("time_base"));
    const auto packets = packetsOf(output, "v:0");
    const Numbering numbering(timeBase, GetParam().duration);
    ASSERT_GE(packets.size(), 20U);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        ASSERT_EQ(packets[i].dts, numbering.at(static_cast<std::int64_t>(i))) << i;
    }
    EXPECT_EQ(timeBase.den % GetParam().duration.den, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, ReencodeSourceRate,
    testing::Values(
        SourceRate{"film_MPEG4", "785645/32768", AV_CODEC_ID_MPEG4, {1001, 24000}, 23.0},
        SourceRate{"film_H264", "785645/32768", AV_CODEC_ID_H264, {32768, 785645}, 23.0},
        SourceRate{"television_MPEG4", "982057/32768", AV_CODEC_ID_MPEG4, {100, 2997}, 29.0},
        SourceRate{"television_H264", "982057/32768", AV_CODEC_ID_H264, {32768, 982057}, 29.0}),
    [](const auto& tested) { return std::string(tested.param.name); });

// Muxers may ask for it, also where the output has another rate.
TEST_F(ReencodeEncoder, sourceRate_isToldToTheMuxer) {
    for (const double setting : {0.0, 30.0}) {
        engine_.videoFrameRate = setting;
        std::vector<AVRational> rates;
        const FaultyMedia observed({.begin = [&rates](const AVFormatContext& output) {
            rates.push_back(output.streams[0]->r_frame_rate);
            return false;
        }});

        made(smallSource(), "mp4");

        ASSERT_EQ(rates.size(), 1U);
        EXPECT_EQ(rates[0].num, 25) << setting;
        EXPECT_EQ(rates[0].den, 1) << setting;
    }
}

TEST_F(Reencode, sourceRate_isPutIntoTheSettings) {
    EXPECT_EQ(cut(mediaPath("h264-2997.mp4"), 0, 500, folder_ / "out.mp4").states, std::vector{1});

    EXPECT_EQ(engine_.videoFrameRate, 29.0);
}

} // namespace
} // namespace velmora::test
