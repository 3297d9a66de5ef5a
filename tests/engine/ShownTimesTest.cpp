// When the pictures of a part of a source are shown.

#include "ShownTimes.h"
#include "MediaReader.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

/// As ffprobe decodes them, from the container's start.
std::vector<std::int64_t> decodedTimes(const std::string& path, std::int64_t begin,
                                       std::int64_t end) {
    const auto probed =
        ffprobeJson(path, {"-select_streams", "v:0", "-show_frames", "-show_entries",
                           "frame=best_effort_timestamp_time:format=start_time", "-show_format"});
    const double start = std::stod(probed.at("format").value("start_time", "0"));
    std::vector<std::int64_t> times;
    for (const auto& frame : probed.at("frames")) {
        const double seconds =
            std::stod(frame.at("best_effort_timestamp_time").get<std::string>()) - start;
        const auto us = static_cast<std::int64_t>(std::llround(seconds * 1e6));
        if (us >= begin && us <= end) {
            times.push_back(us);
        }
    }
    return times;
}

TEST(ShownTimes, part_hasThoseOfItsPictures) {
    for (const char* const name :
         {"h264-bframes.mp4", "h264-bframes.mkv", "h264-vfr.mp4", "h264-gop250.ts", "vp9.webm"}) {
        const std::string path = mediaPath(name);
        const auto expected = decodedTimes(path, 1'210'000, 2'290'000);
        const auto found = readShownTimes(path, 1'210'000, 2'290'000, nullptr);
        ASSERT_EQ(found.size(), expected.size()) << name;
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(static_cast<double>(found[i]), static_cast<double>(expected[i]), 600)
                << name;
        }
    }
}

TEST(ShownTimes, nothingToShow_isEmpty) {
    EXPECT_TRUE(readShownTimes("/nowhere.mp4", 0, 1'000'000, nullptr).empty());
    EXPECT_TRUE(readShownTimes(mediaPath("audio-only.m4a"), 0, 1'000'000, nullptr).empty());
    EXPECT_TRUE(readShownTimes(mediaPath("h264.mp4"), 90'000'000, 91'000'000, nullptr).empty());
    const StopFlag stop{1};
    EXPECT_TRUE(readShownTimes(mediaPath("h264.mp4"), 0, 1'000'000, &stop).empty());
}

} // namespace
} // namespace velmora::test
