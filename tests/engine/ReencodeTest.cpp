#include "FaultyMedia.h"
#include "ReencodeSupport.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <sched.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

/// What a re-encoding job is to make.
struct Target {
    const char* extension;
    AVCodecID video;
    AVCodecID audio;
    const char* videoName; ///< ffprobe's
    const char* audioName; ///< ffprobe's
};

std::string nameOf(const Target& made) {
    return std::string(made.videoName) + "_" + made.audioName + "_" + made.extension;
}

void PrintTo(const Target& made, std::ostream* out) {
    *out << nameOf(made);
}

class ReencodeTo : public Reencode, public testing::WithParamInterface<Target> {};

TEST_P(ReencodeTo, cut_hasTheSettingsAndDecodes) {
    const Target& target = GetParam();
    choose(target.video, target.audio);
    const std::string output = folder_ / (std::string("out.") + target.extension);

    EXPECT_EQ(cut(mediaPath("h264.mp4"), 0, 2000, output).states, std::vector{1});

    const auto video = fieldsOf(output, "v:0");
    EXPECT_EQ(video.at("codec_name"), target.videoName);
    EXPECT_EQ(video.at("width"), 160);
    EXPECT_EQ(video.at("height"), 120);
    const auto audio = fieldsOf(output, "a:0");
    EXPECT_EQ(audio.at("codec_name"), target.audioName);
    EXPECT_EQ(audio.at("sample_rate"), "44100");
    EXPECT_EQ(audio.at("channels"), 2);
    EXPECT_TRUE(ffmpegDecodesClean(output));
    EXPECT_NEAR(static_cast<double>(packetsOf(output, "v:0").size()), 60.0, 1.0);
    EXPECT_NEAR(endOf(output, "a:0"), 2.0, 0.12);
}

INSTANTIATE_TEST_SUITE_P(
    Targets, ReencodeTo,
    testing::Values(Target{"mp4", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"m4v", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"mov", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"mkv", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"flv", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"3gp", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"ts", AV_CODEC_ID_H264, AV_CODEC_ID_AAC, "h264", "aac"},
                    Target{"avi", AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3, "mpeg4", "mp3"},
                    Target{"mp4", AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3, "mpeg4", "mp3"},
                    Target{"wmv", AV_CODEC_ID_WMV2, AV_CODEC_ID_WMAV2, "wmv2", "wmav2"},
                    Target{"flv", AV_CODEC_ID_FLV1, AV_CODEC_ID_MP3, "flv1", "mp3"},
                    Target{"mkv", AV_CODEC_ID_H264, AV_CODEC_ID_VORBIS, "h264", "vorbis"}),
    [](const auto& tested) { return nameOf(tested.param); });

TEST_F(Reencode, pictures_areNumberedOneFrameApart) {
    const std::string output = folder_ / "out.mp4";
    engine_.videoFrameRate = 29.97;

    EXPECT_EQ(cut(mediaPath("h264.mp4"), 0, 2000, output).states, std::vector{1});

    const auto packets = packetsOf(output, "v:0");
    const Fraction timeBase = fractionOf(fieldsOf(output, "v:0").at("time_base"));
    const Numbering numbering(timeBase, {1001, 30000});
    for (std::size_t i = 0; i < packets.size(); ++i) {
        ASSERT_EQ(packets[i].dts, numbering.at(static_cast<std::int64_t>(i))) << i;
        ASSERT_EQ(packets[i].pts, packets[i].dts) << i;
    }
}

// The decoder holds two pictures of a stream with B-frames when the clock reaches the end; they are
// written, and the one that the encoder holds is not.
TEST_F(Reencode, cutOfReorderedPictures_isDrainedByTheCountWithoutPicture) {
    const std::string output = folder_ / "out.mp4";
    const auto delay = fieldsOf(mediaPath("h264-bframes.mp4"), "v:0").at("has_b_frames").get<int>();
    ASSERT_GT(delay, 0);

    EXPECT_EQ(cut(mediaPath("h264-bframes.mp4"), 0, 2000, output).states, std::vector{1});

    EXPECT_EQ(packetsOf(output, "v:0").size(), 60U + static_cast<std::size_t>(delay));
}

TEST_F(Reencode, everyTwelfthPicture_atMostIsAKeyPicture) {
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(cut(mediaPath("h264.mp4"), 0, 3000, output).states, std::vector{1});

    const auto packets = packetsOf(output, "v:0");
    for (std::size_t i = 0; i < packets.size(); i += 12) {
        EXPECT_EQ(packets[i].flags.front(), 'K') << i;
    }
    EXPECT_EQ(fieldsOf(output, "v:0").at("has_b_frames"), 0);
}

// A new scene may begin with a further key picture, which a still has not. Looked at on the way
// into the muxer, since readers find key pictures by themselves.
TEST_F(Reencode, everyTwelfthPictureOfAStill_aloneIsAKeyPicture) {
    const std::string still =
        mediaMadeBy("-f lavfi -i color=gray:size=64x48:rate=25:duration=2 -c:v mpeg4", "still.mkv");
    for (const AVCodecID codec : {AV_CODEC_ID_H264, AV_CODEC_ID_MPEG4}) {
        choose(codec, AV_CODEC_ID_AAC);
        std::vector<bool> isKey;
        const FaultyMedia observed({.write = [&isKey](const AVPacket& packet) {
            isKey.push_back((packet.flags & AV_PKT_FLAG_KEY) != 0);
            return false;
        }});

        EXPECT_EQ(cut(still, 0, 2000, folder_ / "out.mkv").states, std::vector{1});

        ASSERT_GT(isKey.size(), 40U);
        for (std::size_t i = 0; i < isKey.size(); ++i) {
            EXPECT_EQ(isKey[i], i % 12 == 0) << avcodec_get_name(codec) << " " << i;
        }
    }
}

TEST_F(Reencode, aacBelowItsLeastBitRate_getsThat) {
    engine_.audioBitRate = 96'000;
    const std::string output = folder_ / "out.mp4";
    const std::string noise = mediaMadeBy("-f lavfi -i testsrc2=size=64x36:rate=25:duration=4 -f "
                                          "lavfi -i anoisesrc=duration=4:sample_rate=44100 -c:v "
                                          "mpeg4 -c:a pcm_s16le -ac 2",
                                          "noise.mkv");

    EXPECT_EQ(cut(noise, 0, 4000, output).states, std::vector{1});

    const double bitRate = std::stod(fieldsOf(output, "a:0").at("bit_rate").get<std::string>());
    EXPECT_NEAR(bitRate, 128'000.0, 10'000.0);
}

TEST_F(Reencode, result_doesNotDependOnTheCores) {
    const std::string free = folder_ / "free.mp4";
    const std::string bound = folder_ / "bound.mp4";
    EXPECT_EQ(cut(mediaPath("h264-bframes.mp4"), 500, 2500, free).states, std::vector{1});
    cpu_set_t all;
    ASSERT_EQ(sched_getaffinity(0, sizeof(all), &all), 0);
    cpu_set_t one;
    CPU_ZERO(&one);
    for (std::size_t cpu = 0; cpu < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++cpu) {
        if (CPU_ISSET(cpu, &all)) {
            CPU_SET(cpu, &one);
        }
    }
    ASSERT_EQ(sched_setaffinity(0, sizeof(one), &one), 0);

    EXPECT_EQ(cut(mediaPath("h264-bframes.mp4"), 500, 2500, bound).states, std::vector{1});

    sched_setaffinity(0, sizeof(all), &all);
    EXPECT_EQ(readFile(free), readFile(bound));
}

TEST_F(Reencode, sourceWithoutSound_givesPicturesAlone) {
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(mediaPath("video-only.mp4"), 0, 1000, output).states, std::vector{1});

    EXPECT_TRUE(fieldsOf(output, "a:0").is_null());
    EXPECT_TRUE(ffmpegDecodesClean(output));
}

TEST_F(Reencode, rotatedSource_staysUpright) {
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(mediaPath("tagged-rotated.mp4"), 0, 1000, output).states, std::vector{1});

    const auto rotationOf = [](const std::string& path) {
        return fieldsOf(path, "v:0").at("side_data_list").at(0).at("rotation");
    };
    EXPECT_EQ(rotationOf(output), rotationOf(mediaPath("tagged-rotated.mp4")));
}

TEST_F(Reencode, threads_andDescriptorsAreGoneAfterwards) {
    cut(mediaPath("h264.mp4"), 0, 500, folder_ / "first.mp4");
    const Resources before = Resources::now();

    cut(mediaPath("h264.mp4"), 0, 500, folder_ / "second.mp4");

    expectNothingLeftSince(before);
}

} // namespace
} // namespace velmora::test
