// What the encoders and the numbering are set to, as the files tell it.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

/// Small pictures at 25 per second, and sound.
std::string smallSource() {
    return mediaMadeBy("-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -f lavfi -i "
                       "sine=sample_rate=44100:duration=1 -c:v mpeg4 -c:a aac -ac 2",
                       "small.mkv");
}

/// The bytes of all the packets of the pictures, without what the container keeps of them.
std::string codedPictures(const std::string& path) {
    return runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-map", "0:v", "-c", "copy",
                       "-f", "data", "-"})
        .output;
}

class ReencodeEncoder : public Reencode {
protected:
    ReencodeEncoder() {
        engine_.videoWidth = 64;
        engine_.videoHeight = 48;
    }

    /// A second of the source; the path of the output.
    std::string made(const std::string& source, const std::string& extension) {
        std::string output = folder_ / ("out." + extension);
        EXPECT_EQ(cut(source, 0, 1000, output).states, std::vector{1});
        return output;
    }
};

class ReencodeX264 : public ReencodeEncoder, public testing::WithParamInterface<const char*> {};

// The encoder writes its options into the stream.
TEST_P(ReencodeX264, Option_is_in_the_stream) {
    engine_.videoWidth = 320; // enough for four slices
    engine_.videoHeight = 256;

    const std::string coded = codedPictures(made(smallSource(), "avi"));

    EXPECT_NE(coded.find(std::string(" ") + GetParam() + " "), std::string::npos)
        << coded.substr(coded.find("options:"), 1000);
}

INSTANTIATE_TEST_SUITE_P(
    Options, ReencodeX264,
    // The first three are of the preset "superfast". The least distance of key pictures, 25, is
    // limited to 7 by their greatest, 12; without it there would be 1.
    testing::Values("subme=1", "me=dia", "trellis=0", "me_range=16", "qpmin=10", "qpmax=51",
                    "qpstep=4", "qcomp=0.60", "keyint=12", "keyint_min=7", "bframes=0",
                    "sliced_threads=1", "slices=4", "rc=abr", "bitrate=400"),
    [](const auto& tested) { return asTestName(tested.param); });

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
TEST_P(ReencodeRate, Rate_has_its_time_base_in_the_output) {
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

TEST_P(ReencodeSourceRate, Output_has_it_or_its_substitute) {
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
TEST_F(ReencodeEncoder, SourceRate_is_told_to_the_muxer) {
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

struct Headers {
    const char* extension;
    bool inPictures;
};

void PrintTo(const Headers& headers, std::ostream* out) {
    *out << headers.extension;
}

class ReencodeHeaders : public ReencodeEncoder, public testing::WithParamInterface<Headers> {};

// Containers that keep the headers of the pictures themselves get pictures without.
TEST_P(ReencodeHeaders, Headers_are_where_the_container_wants_them) {
    constexpr std::string_view layerHeader("\0\0\1\x20", 4); // of MPEG-4
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3);

    const std::string coded = codedPictures(made(smallSource(), GetParam().extension));

    ASSERT_FALSE(coded.empty());
    EXPECT_EQ(coded.find(layerHeader) != std::string::npos, GetParam().inPictures);
}

INSTANTIATE_TEST_SUITE_P(Containers, ReencodeHeaders,
                         testing::Values(Headers{"mp4", false}, Headers{"mov", false},
                                         Headers{"mkv", false}, Headers{"wmv", false},
                                         Headers{"avi", true}, Headers{"ts", true}),
                         [](const auto& tested) { return std::string(tested.param.extension); });

class ReencodeUnoffered : public ReencodeEncoder, public testing::WithParamInterface<AVCodecID> {};

// There are encoders of these, and all but the first would take the settings.
TEST_P(ReencodeUnoffered, Encoder_fails_the_input) {
    choose(GetParam(), AV_CODEC_ID_AAC);
    const AtLogLine line(": set up streams: ", [](int) {});
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(cut(smallSource(), 0, 1000, output).states, std::vector{2});

    EXPECT_GE(line.seen(), 1);
    EXPECT_FALSE(std::filesystem::exists(output));
}

INSTANTIATE_TEST_SUITE_P(Codecs, ReencodeUnoffered,
                         testing::Values(AV_CODEC_ID_DVVIDEO, AV_CODEC_ID_MPEG1VIDEO,
                                         AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MJPEG,
                                         AV_CODEC_ID_FFV1, AV_CODEC_ID_NONE),
                         [](const auto& tested) {
                             return std::string(avcodec_get_name(tested.param));
                         });

std::string smallSilentSource() {
    return mediaMadeBy("-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -c:v mpeg4",
                       "small-silent.mkv");
}

// The first picture is stamped 1, each one after it a picture's length later, later inputs too.
TEST_F(ReencodeEncoder, JoinOfPicturesAlone_is_numbered_from_the_first_tick) {
    const std::string source = smallSilentSource();
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(join({source, source}, output).states, std::vector(2, 1));

    const auto packets = packetsOf(output, "v:0");
    ASSERT_EQ(packets.size(), 50U);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        ASSERT_EQ(packets[i].pts, 1 + 40 * static_cast<std::int64_t>(i)) << i; // milliseconds
    }
}

// Without sound to catch up with, the numbering goes on by one tick for each picture.
TEST_F(ReencodeEncoder, JoinOfPicturesAlone_gives_each_the_duration_of_a_tick) {
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    std::vector<std::int64_t> durations;
    const FaultyMedia observed({.write = [&durations](const AVPacket& packet) {
        durations.push_back(packet.duration);
        return false;
    }});

    EXPECT_EQ(join({smallSilentSource(), smallSilentSource()}, folder_ / "out.mp4").states,
              std::vector(2, 1));

    EXPECT_EQ(durations, std::vector<std::int64_t>(50, 1));
}

TEST_F(ReencodeEncoder, SecondCutInput_stops_at_once) {
    const std::string once = folder_ / "once.mp4";
    const std::string twice = folder_ / "twice.mp4";
    ASSERT_EQ(cut(smallSource(), 0, 500, once).states, std::vector{1});
    fillPaths({smallSource(), smallSource()}, twice);
    for (std::size_t i = 0; i < 2; ++i) {
        engine_.startTimes[i] = 0.0;
        engine_.spans[i] = 0.5;
    }
    engine_.joinMode = 0;
    engine_.reencode = 1;

    EXPECT_EQ(run().states, std::vector(2, 1));

    EXPECT_TRUE(readFile(twice) == readFile(once));
}

TEST_F(ReencodeEncoder, Percent_of_a_join_without_length_is_all_once_something_is_written) {
    const std::string output = folder_ / "out.mp4";
    fillJoin({smallSource(), smallSource()}, output);
    choose(AV_CODEC_ID_H264, AV_CODEC_ID_AAC);
    engine_.joinTotalMs = 0;
    engine_.reencode = 1;

    const JobResult result = run();

    EXPECT_EQ(result.states, std::vector(2, 1));
    EXPECT_EQ(result.percent, 100);
    EXPECT_EQ(engine_.spans[0], 0.0);
}

// Pictures without which the output would be no video.
TEST_F(ReencodeEncoder, PicturesThatCannotBeScaled_fail_the_input) {
    const std::string source =
        mediaMadeBy("-f rawvideo -pixel_format uyyvyy411 -video_size 64x48 -framerate 25 -t 1 -i "
                    "/dev/zero -c:v copy",
                    "unusual.avi");

    EXPECT_EQ(cut(source, 0, 1000, folder_ / "out.mkv").states, std::vector{2});
}

} // namespace
} // namespace velmora::test
