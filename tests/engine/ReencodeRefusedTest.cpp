// Settings and sources that cannot be encoded, which fail the input.

#include "ReencodeSupport.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

class ReencodeRefused : public Reencode, public testing::WithParamInterface<const char*> {
protected:
    void spoil(const std::string& setting) {
        if (setting == "videoCodec") {
            engine_.videoCodecId = AV_CODEC_ID_MPEG2VIDEO;
        } else if (setting == "audioCodec") {
            engine_.audioCodecId = AV_CODEC_ID_FLAC;
        } else if (setting == "width") {
            engine_.videoWidth = 161;
        } else if (setting == "height") {
            engine_.videoHeight = 0;
        } else if (setting == "sampleRate") {
            engine_.audioSampleRate = 12345;
        } else if (setting == "channels") {
            engine_.audioChannels = 0;
        } else if (setting == "mp3Channels") {
            choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3);
            engine_.audioChannels = 6;
        }
    }
};

TEST_P(ReencodeRefused, setting_failsTheInputAndSaysSo) {
    spoil(GetParam());
    const std::string output = folder_ / "out.mp4";
    const AtLogLine line(": set up streams: ", [](int) {});

    EXPECT_EQ(cut(mediaPath("h264.mp4"), 0, 1000, output).states, std::vector{2});

    EXPECT_GE(line.seen(), 1);
    EXPECT_FALSE(std::filesystem::exists(output));
}

INSTANTIATE_TEST_SUITE_P(Settings, ReencodeRefused,
                         testing::Values("videoCodec", "audioCodec", "width", "height",
                                         "sampleRate", "channels", "mp3Channels"),
                         [](const auto& made) { return std::string(made.param); });

class ReencodeUnoffered : public ReencodeEncoder, public testing::WithParamInterface<AVCodecID> {};

// There are encoders of these, and all but the first would take the settings.
TEST_P(ReencodeUnoffered, encoder_failsTheInput) {
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

TEST_F(Reencode, soundThatCannotBeEncoded_failsTheInput) {
    const std::string source =
        mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=1 -f lavfi -i "
                    "aevalsrc=0/0:sample_rate=44100:duration=1 -c:v mpeg4 -c:a pcm_f32le",
                    "nan.mkv");

    EXPECT_EQ(cut(source, 0, 1000, folder_ / "out.mp4").states, std::vector{2});
}

// Pictures without which the output would be no video.
TEST_F(ReencodeEncoder, picturesThatCannotBeScaled_failTheInput) {
    const std::string source =
        mediaMadeBy("-f rawvideo -pixel_format uyyvyy411 -video_size 64x48 -framerate 25 -t 1 -i "
                    "/dev/zero -c:v copy",
                    "unusual.avi");

    EXPECT_EQ(cut(source, 0, 1000, folder_ / "out.mkv").states, std::vector{2});
}

} // namespace
} // namespace velmora::test
