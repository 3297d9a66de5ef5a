// What an exact cut that copies writes, and what it leaves alone. Windows of many sources:
// scripts/exact-copy-matrix.

#include "ExactCopySources.h"
#include "ExactCopySupport.h"
#include "ReencodeSupport.h"

#include <algorithm>
#include <filesystem>

namespace velmora::test {
namespace {

/// How many of the output's packets are the source's, to the byte.
std::ptrdiff_t copiedPackets(const std::string& source, const std::string& output) {
    const auto from = packetsOf(source, "v:0");
    return std::ranges::count_if(packetsOf(output, "v:0"), [&](const PacketFacts& packet) {
        return std::ranges::find(from, packet.hash, &PacketFacts::hash) != from.end();
    });
}

/// How many of the output's pictures are those of the source from number `first` on.
std::ptrdiff_t equalPictures(const std::string& source, std::size_t first,
                             const std::string& output) {
    const auto from = frameMd5s(source, "v:0");
    const auto shown = frameMd5s(output, "v:0");
    std::ptrdiff_t equal = 0;
    for (std::size_t i = 0; i < shown.size() && first + i < from.size(); ++i) {
        equal += shown[i] == from[first + i] ? 1 : 0;
    }
    return equal;
}

std::vector<double> secondsOfPictures(const std::string& path) {
    const Fraction timeBase = fractionOf(fieldsOf(path, "v:0").at("time_base"));
    const double tick = static_cast<double>(timeBase.num) / static_cast<double>(timeBase.den);
    std::vector<double> seconds;
    for (const std::int64_t time : pictureTimes(path)) {
        seconds.push_back(static_cast<double>(time) * tick);
    }
    return seconds;
}

TEST_F(ExactCopy, cut_betweenKeyFrames_copiesAllButItsEnds) {
    const std::string source = copySource("plain.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(copy(source, 1300, 7080, output).states, kDone);

    EXPECT_EQ(report_.finding, "");
    const auto times = pictureTimes(output);
    ASSERT_EQ(times.size(), 144U); // 1.32 to 7.04
    for (std::size_t i = 0; i < times.size(); ++i) {
        EXPECT_EQ(times[i], times[1] * static_cast<std::int64_t>(i));
    }
    EXPECT_EQ(fieldsOf(output, "v:0").at("duration"), "5.760000");
    EXPECT_GE(copiedPackets(source, output), 144 - 17 - 3);
    EXPECT_EQ(copiedPackets(source, output), equalPictures(source, 33, output));
    EXPECT_TRUE(ffmpegDecodesClean(output));
    expectFiles(1);
}

TEST_F(ExactCopy, cut_onKeyFrames_copiesAll) {
    const std::string source = copySource("plain.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(copy(source, 2000, 6000, output).states, kDone);

    EXPECT_EQ(copiedPackets(source, output), 100);
    EXPECT_EQ(equalPictures(source, 50, output), 100);
}

TEST_F(ExactCopy, cut_refused_saysWhyAndWritesNothing) {
    EXPECT_EQ(copy(copySource("asp.mp4"), 1300, 7080, folder_ / "out.mp4").states, kFailed);

    EXPECT_NE(report_.finding.find("there is no encoder that matches"), std::string::npos);
    expectFiles(0);
}

/// A window of a source and the pictures in it, by their numbers in the source.
struct Tried {
    const char* name;
    const char* source;
    const char* output;
    std::int64_t startMs;
    std::int64_t endMs;
    std::size_t first;
    std::size_t count;
    std::ptrdiff_t leastCopied;
};

class ExactCopyWindow : public ExactCopy, public ::testing::WithParamInterface<Tried> {};

TEST_P(ExactCopyWindow, cut_itsPictures_areThereAtTheirTimes) {
    const Tried& tried = GetParam();
    const std::string source = copySource(tried.source);
    const std::string output = folder_ / tried.output;

    EXPECT_EQ(copy(source, tried.startMs, tried.endMs, output).states, kDone) << report_.finding;

    EXPECT_EQ(frameMd5s(output, "v:0").size(), tried.count);
    EXPECT_GE(equalPictures(source, tried.first, output), tried.leastCopied);
    const auto times = secondsOfPictures(output);
    const auto wanted = secondsOfPictures(source);
    ASSERT_EQ(times.size(), tried.count);
    for (std::size_t i = 0; i < times.size(); ++i) {
        EXPECT_NEAR(times[i] - times[0], wanted[tried.first + i] - wanted[tried.first], 0.0011);
    }
    EXPECT_TRUE(ffmpegDecodesClean(output));
}

INSTANTIATE_TEST_SUITE_P(
    Windows, ExactCopyWindow,
    ::testing::Values(Tried{"insideOneGroup", "plain.mp4", "o.mp4", 2400, 3600, 60, 30, 0},
                      Tried{"onePicture", "plain.mp4", "o.mp4", 2400, 2440, 60, 1, 0},
                      Tried{"oneKeyFrame", "plain.mp4", "o.mkv", 2000, 2040, 50, 1, 1},
                      Tried{"onePictureInTheTail", "plain.mp4", "o.mp4", 2000, 6040, 50, 101, 100},
                      Tried{"twoPicturesInTheTail", "plain.mp4", "o.mov", 2000, 6080, 50, 102, 100},
                      Tried{"startOnAKeyFrame", "plain.mp4", "o.mp4", 2000, 7080, 50, 127, 120},
                      Tried{"toTheEnd", "plain.mp4", "o.mp4", 1300, 90'000, 33, 217, 200},
                      Tried{"theWhole", "plain.mp4", "o.mkv", 0, 90'000, 0, 250, 250},
                      Tried{"noSound", "silent.mp4", "o.mp4", 1300, 7080, 33, 144, 120},
                      Tried{"pcm", "pcm.mov", "o.mov", 1300, 7080, 33, 144, 120},
                      Tried{"lateSound", "late.mp4", "o.mp4", 300, 7080, 8, 169, 120},
                      Tried{"soundAfterTheWindow", "late.mp4", "o.mkv", 300, 2800, 8, 62, 20},
                      Tried{"varyingIntervals", "gaps.mp4", "o.mp4", 1500, 9400, 20, 80, 40},
                      Tried{"setsBeforeEachKeyFrame", "repeated.ts", "o.mp4", 1321, 7101, 33, 144,
                            120},
                      Tried{"intra", "intra.mov", "o.mov", 1300, 7080, 33, 144, 144}),
    [](const auto& tried) { return tried.param.name; });

TEST_F(ExactCopy, cut_soundThatStartsLate_keepsItsDistance) {
    const auto soundStart = [](const std::string& path) {
        return std::stod(fieldsOf(path, "a:0").at("start_time").get<std::string>());
    };
    const std::string source = copySource("late.mp4");
    const std::string output = folder_ / "out.mp4";

    copy(source, 300, 7080, output); // the first picture is that at 0.32

    EXPECT_GT(soundStart(source), 2.9);
    EXPECT_NEAR(soundStart(output), soundStart(source) - 0.32, 0.001);
}

TEST_F(ExactCopy, cut_endInAGap_theLastPictureLastsUntilThere) {
    const std::string output = folder_ / "out.mp4";

    copy(copySource("gaps0.mp4"), 2000, 8700, output); // the last one is that at 8.36

    EXPECT_NEAR(endOf(output, "v:0"), 6.7, 0.001);
}

TEST_F(ExactCopy, cut_pcm_isCutToTheSample) {
    const std::string output = folder_ / "out.mov";

    copy(copySource("pcm.mov"), 1300, 7080, output);

    const std::string samples = runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", output,
                                            "-map", "0:a", "-f", "s16le", "-"})
                                    .output;
    EXPECT_EQ(samples.size(), 2U * 2 * 48 * 5760); // from 1.32 on
}

TEST_F(ExactCopy, cut_aacInMp4_startsToTheSampleAndEndsThere) {
    const std::string output = folder_ / "out.mp4";

    copy(copySource("plain.mp4"), 1300, 7080, output);

    EXPECT_EQ(fieldsOf(output, "a:0").at("start_time"), "0.000000");
    EXPECT_EQ(fieldsOf(output, "a:0").at("duration"), "5.760000");
}

TEST_F(ExactCopy, cut_header_holdsTheSetsOfBothAndNoEncoderSettings) {
    const std::string output = folder_ / "out.mp4";

    copy(copySource("plain.mp4"), 1300, 7080, output);

    const auto stream = fieldsOf(output, "v:0");
    EXPECT_EQ(stream.at("codec_tag_string"), "avc1");
    const std::string units =
        runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", output, "-map", "0:v", "-c", "copy",
                    "-t", "0.2", "-bsf:v", "h264_mp4toannexb", "-f", "data", "-"})
            .output;
    EXPECT_EQ(units.find("x264"), std::string::npos);
}

} // namespace
} // namespace velmora::test
