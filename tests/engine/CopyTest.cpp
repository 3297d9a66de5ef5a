#include "CopySupport.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace velmora::test {
namespace {

using testing::Combine;
using testing::Values;

struct Coding {
    const char* name;
    const char* encoder; ///< arguments of ffmpeg; every group of pictures is closed
};

// The name first, for failures.
void PrintTo(const Coding& coding, std::ostream* out) {
    *out << coding.name;
}

constexpr Coding kH264{"H264", "libx264 -preset ultrafast -bf 0 -g 25"};
constexpr Coding kH264Reordered{"H264Reordered", "libx264 -preset ultrafast -bf 3 -g 25"};
// The headers are in the packets too: containers without a place for them need that.
constexpr Coding kMpeg4{"Mpeg4", "mpeg4 -q:v 5 -g 25 -bsf:v dump_extra"};
constexpr Coding kMpeg4Reordered{"Mpeg4Reordered", "mpeg4 -q:v 5 -bf 2 -g 25 -flags +cgop "
                                                   "-sc_threshold 1000000000 -bsf:v dump_extra"};
constexpr Coding kHevc{"Hevc", "libx265 -preset ultrafast -tag:v hvc1 -x265-params "
                               "log-level=error:pools=none:frame-threads=1:bframes=3:keyint=25:"
                               "min-keyint=25:scenecut=0:open-gop=0"};

/// Three seconds of pictures at 25 a second, a key picture each second, and sound.
std::string sourceOf(const Coding& coding, const std::string& extension) {
    // Of the sounds used here, the program stream takes only this one.
    const std::string sound = extension == "mpg" ? "mp2" : "aac";
    return mediaMadeBy("-f lavfi -i testsrc2=size=128x72:rate=25:duration=3 -f lavfi -i "
                       "sine=frequency=440:sample_rate=44100:duration=3 -pix_fmt yuv420p -c:v " +
                           std::string(coding.encoder) + " -ac 2 -b:a 96k -c:a " + sound,
                       std::string(coding.name) + "-" + sound + ".mp4");
}

class CopyMatrix : public JobTest,
                   public testing::WithParamInterface<std::tuple<Coding, std::string>> {
protected:
    std::string output_ = folder_ / ("out." + std::get<1>(GetParam()));
    Source source_{sourceOf(std::get<0>(GetParam()), std::get<1>(GetParam()))};
};

TEST_P(CopyMatrix, cut_copiesFromTheKeyPictureForTheLengthOfTheSpan) {
    const JobResult result = cut(source_.path, 1500, 2500, output_);

    EXPECT_EQ(result.states, std::vector{1});
    EXPECT_EQ(result.index, 1);
    expectVideo(output_, {{&source_, source_.keyBefore(1.5), 25}});
}

TEST_P(CopyMatrix, join_copiesEveryPacketOfAllInputsWithoutAGap) {
    const JobResult result = join({source_.path, source_.path, source_.path}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 1, 1}));
    EXPECT_EQ(result.index, 3);
    expectVideo(output_, {wholeOf(source_), wholeOf(source_), wholeOf(source_)});
}

std::string nameOfCopy(const testing::TestParamInfo<CopyMatrix::ParamType>& info) {
    return std::string(std::get<0>(info.param).name) + "_to_" + std::get<1>(info.param);
}

INSTANTIATE_TEST_SUITE_P(H264, CopyMatrix,
                         Combine(Values(kH264, kH264Reordered),
                                 Values("mp4", "mov", "m4v", "3gp", "mkv", "flv", "avi", "wmv",
                                        "ts", "mpg")),
                         nameOfCopy);
INSTANTIATE_TEST_SUITE_P(Mpeg4, CopyMatrix,
                         Combine(Values(kMpeg4, kMpeg4Reordered),
                                 Values("mp4", "mov", "m4v", "3gp", "mkv", "avi", "wmv", "ts",
                                        "mpg")),
                         nameOfCopy);
INSTANTIATE_TEST_SUITE_P(Hevc, CopyMatrix,
                         Combine(Values(kHevc), Values("mp4", "mov", "mkv", "avi", "ts", "mpg")),
                         nameOfCopy);

/// Containers that do not take the codec, or of which nobody could tell it again.
class CopyRefused : public CopyMatrix {};

TEST_P(CopyRefused, input_failsAndNoOutputIsLeft) {
    const JobResult result = join({source_.path, source_.path}, output_);

    EXPECT_EQ(result.states, (std::vector{2, 2}));
    EXPECT_EQ(result.index, 2);
    EXPECT_FALSE(std::filesystem::exists(output_));
}

INSTANTIATE_TEST_SUITE_P(Mpeg4, CopyRefused,
                         Combine(Values(kMpeg4, kMpeg4Reordered), Values("flv")), nameOfCopy);
INSTANTIATE_TEST_SUITE_P(Hevc, CopyRefused,
                         Combine(Values(kHevc), Values("m4v", "3gp", "flv", "wmv")), nameOfCopy);

/// Sources as they are, joined into a container of the same kind.
class CopyOwnContainer : public JobTest, public testing::WithParamInterface<std::string> {};

TEST_P(CopyOwnContainer, join_copiesEveryPacketOfAllInputsWithoutAGap) {
    const Source source(mediaPath(GetParam()));
    const std::string output =
        folder_ / ("out" + std::filesystem::path(GetParam()).extension().string());

    const JobResult result = join({source.path, source.path}, output);

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    expectVideo(output, {wholeOf(source), wholeOf(source)});
}

INSTANTIATE_TEST_SUITE_P(Media, CopyOwnContainer,
                         Values("h264-16-references.mp4", "h264-interlaced.mp4", "h264-vfr.mp4",
                                "h264-open-gop.mp4", "h264-fragmented.mp4", "h264-bframes.mov",
                                "h264-bframes.mkv", "h264-bframes.flv", "h264-bframes.ts",
                                "h264-open-gop.ts", "h264-intra-refresh.ts", "hevc.mp4", "hevc.mkv",
                                "hevc.ts", "mpeg2.ts", "mpeg2.mpg", "mpeg1.mpg", "mpeg4.avi",
                                "mpeg4-bframes.avi", "flv1.flv", "wmv2.wmv", "mjpeg.mov",
                                "video-only.mp4", "one-picture.mkv"),
                         [](const auto& parameter) { return asTestName(parameter.param); });

class CopyOwnContainerCut : public CopyOwnContainer {};

TEST_P(CopyOwnContainerCut, begins_atAKeyPictureBeforeTheStartAndKeepsTheOrder) {
    const Source source(mediaPath(GetParam()));
    const std::string output =
        folder_ / ("out" + std::filesystem::path(GetParam()).extension().string());

    EXPECT_EQ(cut(source.path, 2500, 3500, output).states, std::vector{1});

    const std::size_t first = source.indexOf(packetsOf(output, "v:0").at(0));
    EXPECT_GT(first, 0U);
    EXPECT_LE(first, source.keyBefore(source.startSeconds() + 2.5));
    EXPECT_TRUE(source.video.packets.at(first).flags.starts_with('K'));
    expectVideo(output, {{&source, first, 30}});
}

INSTANTIATE_TEST_SUITE_P(Media, CopyOwnContainerCut,
                         Values("h264-bframes.mp4", "h264-bframes.mov", "h264-bframes.mkv",
                                "h264-bframes.flv", "h264-fragmented.mp4", "mpeg4.avi", "flv1.flv",
                                "wmv2.wmv"),
                         [](const auto& parameter) { return asTestName(parameter.param); });

/// Thirty seconds at rates that no tick of the containers divides evenly.
class CopyRates : public JobTest,
                  public testing::WithParamInterface<std::tuple<std::string, std::string>> {};

TEST_P(CopyRates, every_packetLastsExactlyOneFrame) {
    const auto& [rate, extension] = GetParam();
    const Source source(mediaMadeBy("-f lavfi -i testsrc2=size=64x36:duration=30:rate=" + rate +
                                        " -pix_fmt yuv420p -c:v libx264 -preset ultrafast -bf 2",
                                    "rate.mp4"));
    const std::string output = folder_ / ("out." + extension);

    const JobResult result = join({source.path, source.path}, output);

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    expectVideo(output, {wholeOf(source), wholeOf(source)});
}

INSTANTIATE_TEST_SUITE_P(Rates, CopyRates,
                         Combine(Values("30000/1001", "24000/1001"),
                                 Values("mp4", "mkv", "ts", "flv", "avi")),
                         [](const auto& parameter) {
                             return asTestName(std::get<0>(parameter.param)) + "_to_" +
                                    std::get<1>(parameter.param);
                         });

TEST_F(Copy, span_betweenTwoFramesEndsWithTheFrameThatReachesIt) {
    const Source source(mediaPath("h264-2997.mp4"));
    for (const char* name : {"out.mp4", "out.mkv", "out.ts"}) {
        for (const float endMs : {1.0F, 33.0F, 34.0F, 100.0F, 1001.0F, 1002.0F, 2500.0F}) {
            const std::string output = folder_ / name;

            cut(source.path, 0, endMs, output);

            const StreamFacts video = streamOf(output, "v:0");
            const Numbering numbering(video.timeBase, source.frameDuration);
            EXPECT_EQ(video.packets.size(), numbering.unitsUntil(engine_.spans[0]))
                << name << " " << endMs;
        }
    }
}

TEST_F(Copy, cutStart_anywhereBeginsWithTheKeyPictureAtOrBeforeIt) {
    const Source source(sourceOf(kH264Reordered, "mp4"));
    const std::string output = folder_ / "out.mp4";
    // The key pictures are shown at 0, 1 and 2 s; the decoder needs them 80 ms before.
    for (const float startMs :
         {40.0F, 880.0F, 930.0F, 990.0F, 1000.0F, 1001.0F, 1999.0F, 2990.0F}) {
        cut(source.path, startMs, startMs + 400, output);

        const StreamFacts video = streamOf(output, "v:0");
        const std::size_t first = source.keyBefore(startMs / 1000.0);
        EXPECT_EQ(video.packets.at(0).hash, source.video.packets.at(first).hash) << startMs;
    }
}

TEST_F(Copy, cutByBytes_keepsEveryPacketInPlace) {
    const Source source(mediaPath("h264-bframes.ts"));
    const std::string output = folder_ / "out.ts";

    cut(source.path, 1500, 2500, output);

    const std::size_t first = source.indexOf(packetsOf(output, "v:0").at(0));
    EXPECT_NEAR(static_cast<double>(first), 45.0, 20.0); // as far in the file as in the time
    expectPackets(output, {{&source, first, 30}});
}

// Its times are in milliseconds, too coarse for most rates, so it has a field for how long a
// picture lasts.
TEST_F(Copy, matroska_tellsHowLongAPictureLasts) {
    const std::string source = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x48:rate=24000/1001 -frames:v 5 -c:v mpeg4", "film.mp4");
    const std::string output = folder_ / "out.mkv";
    ASSERT_EQ(cut(source, 0, 1000, output).states, std::vector{1});
    // DefaultDuration, four bytes, 41,708,333 ns
    const Bytes field{0x23, 0xE3, 0x83, 0x84, 0x02, 0x7C, 0x6B, 0x2D};
    const Bytes file = readFile(output);
    EXPECT_NE(std::ranges::search(file, field).begin(), file.end());
}

} // namespace
} // namespace velmora::test
