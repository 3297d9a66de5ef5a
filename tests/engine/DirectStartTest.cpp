// Where a direct cut would begin and end, held against what such a cut then writes.

#include "DirectStart.h"
#include "CopySupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace velmora::test {
namespace {

constexpr double kUs = 1'000'000.0;
constexpr int kLengthMs = 1600; // has a key picture wherever it begins

class DirectStart : public JobTest, public testing::WithParamInterface<const char*> {
protected:
    /// Where ffprobe says that the container begins, seconds.
    static double containerStart(const std::string& path) {
        const auto format = ffprobeJson(path, {"-show_format"}).at("format");
        return std::stod(format.value("start_time", "0"));
    }
    /// When the first key packet that a cut has copied is shown in its source, microseconds.
    double writtenBegin(const std::string& path, const std::string& output) {
        const StreamFacts source = streamOf(path, "v:0");
        const StreamFacts written = streamOf(output, "v:0");
        const auto isKey = [](const PacketFacts& packet) { return packet.flags.starts_with('K'); };
        const auto key = std::ranges::find_if(written.packets, isKey);
        EXPECT_NE(key, written.packets.end());
        const auto copied = std::ranges::find(source.packets, key->hash, &PacketFacts::hash);
        EXPECT_NE(copied, source.packets.end());
        const auto ticks = static_cast<double>(copied->pts ? *copied->pts : copied->dts.value());
        const double unit =
            static_cast<double>(source.timeBase.num) / static_cast<double>(source.timeBase.den);
        return (ticks * unit - containerStart(path)) * kUs;
    }
};

TEST_P(DirectStart, isWhereTheCutBegins) {
    const std::string path = mediaPath(GetParam());
    // Only in the same form can packets be compared.
    const std::string extension = path.ends_with(".ts") ? ".ts" : ".mkv";
    for (const int startMs : {0, 1300, 2500}) {
        const std::string output = folder_ / ("cut" + std::to_string(startMs) + extension);
        const JobResult result =
            cut(path, static_cast<float>(startMs), static_cast<float>(startMs + kLengthMs), output);
        ASSERT_EQ(result.states, std::vector{1});
        const double start = startMs / 1000.0;
        const auto told = directStretch(path, start, start + kLengthMs / 1000.0, nullptr);
        ASSERT_TRUE(told.has_value()) << startMs;
        EXPECT_NEAR(static_cast<double>(told->beginUs), writtenBegin(path, output), 1000)
            << startMs;
    }
}

std::string nameOfMedia(const testing::TestParamInfo<const char*>& media) {
    return asTestName(media.param);
}

INSTANTIATE_TEST_SUITE_P(Media, DirectStart,
                         testing::Values("h264-bframes.mp4", "h264-bframes.mkv", "h264-bframes.flv",
                                         "h264-open-gop.mp4", "h264-vfr.mp4", "mpeg4.avi",
                                         "vp9.webm", "h264-open-gop.ts", "mpeg2.ts",
                                         "h264-fragmented.mp4", "edit-list.mp4"),
                         nameOfMedia);

class DirectEnd : public JobTest {};

TEST_F(DirectEnd, lengthIsKept) {
    const std::string path = mediaPath("h264.mp4"); // a key picture each 30
    const auto told = directStretch(path, 1.5, 2.5, nullptr);
    ASSERT_TRUE(told.has_value());
    EXPECT_LT(told->beginUs, 1'500'000);
    EXPECT_EQ(told->endUs - told->beginUs, 1'000'000);
}

TEST_F(DirectEnd, beyondTheVideo_isItsEnd) {
    const auto told = directStretch(mediaPath("h264.mp4"), 0, 1000, nullptr);
    ASSERT_TRUE(told.has_value());
    EXPECT_EQ(told->beginUs, 0);
    EXPECT_NEAR(static_cast<double>(told->endUs), 4'000'000, 200'000);
}

TEST_F(DirectEnd, whatCannotBeCut_isNotTold) {
    const std::string path = mediaPath("h264.mp4");
    EXPECT_FALSE(directStretch(path, 2, 2, nullptr).has_value());
    EXPECT_FALSE(directStretch(path, 2, 1, nullptr).has_value());
    EXPECT_FALSE(directStretch(path, 0, std::nan(""), nullptr).has_value());
    EXPECT_FALSE(directStretch("/nowhere.mp4", 0, 1, nullptr).has_value());
    EXPECT_FALSE(directStretch(mediaPath("audio-only.m4a"), 0, 1, nullptr).has_value());
    EXPECT_FALSE(directStretch(mediaPath("truncated.mp4"), 0, 1, nullptr).has_value());
}

TEST_F(DirectEnd, raisedFlag_givesItUp) {
    const StopFlag stop{1};
    EXPECT_FALSE(directStretch(mediaPath("h264.mp4"), 1, 2, &stop).has_value());
}

} // namespace
} // namespace velmora::test
