// What is told of an exact copy before it starts.

#include "CopyForecast.h"
#include "ExactCopySources.h"
#include "Job.h"
#include "MediaOperations.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

CopyForecast forecast(const std::string& path, Window window, const std::string& output) {
    const StopFlag stop{0};
    return mediaOperations().forecastCopy(path, window, output, stop);
}

constexpr Window kInside{1300, 7080};

TEST(ExactCopyForecast, window_betweenKeyFrames_encodesWhatIsAroundItsEnds) {
    for (const char* name : {"plain.mp4", "plain.mov", "plain.mkv", "plain.ts"}) {
        const CopyForecast told = forecast(copySource(name), kInside, name);

        EXPECT_EQ(told.refusal, "") << name;
        EXPECT_GE(told.encoded, 17) << name; // up to the one at 2.00
        EXPECT_LE(told.encoded, 21) << name;
        EXPECT_NEAR(static_cast<double>(told.pictures), 144, 1) << name; // sound may begin first
        EXPECT_FALSE(told.isEstimate) << name;
    }
}

TEST(ExactCopyForecast, window_onKeyFrames_encodesNothing) {
    EXPECT_EQ(forecast(copySource("plain.mp4"), {2000, 6000}, "o.mp4").encoded, 0);
}

TEST(ExactCopyForecast, longWindow_indexed_isCountedElseEstimated) {
    const CopyForecast counted = forecast(copySource("long.mp4"), {1300, 58'080}, "o.mp4");
    const CopyForecast estimated = forecast(copySource("long.mkv"), {1300, 58'080}, "o.mkv");

    EXPECT_EQ(counted.pictures, 1419);
    EXPECT_FALSE(counted.isEstimate);
    EXPECT_NEAR(static_cast<double>(estimated.pictures), 1419, 2);
    EXPECT_TRUE(estimated.isEstimate);
}

TEST(ExactCopyForecast, openGroups_areRefused) {
    EXPECT_EQ(forecast(copySource("open.mp4"), {1300, 45'000}, "o.mp4").refusal,
              "This video cannot be cut exactly without encoding it again: its groups are open (no "
              "IDR picture within 20 s).");
}

TEST(ExactCopyForecast, codecWithoutMatchingEncoder_isRefusedUnlessItsEndsAreKeyFrames) {
    EXPECT_EQ(
        forecast(copySource("asp.mp4"), kInside, "o.mp4").refusal,
        "This video cannot be cut exactly without encoding it again: there is no encoder that "
        "matches its pictures (mpeg4), and its ends are not at key frames.");
    EXPECT_EQ(forecast(copySource("asp.mp4"), {2000, 6000}, "o.mp4").refusal, "");
}

TEST(ExactCopyForecast, containerThatCannotHoldIt_isRefused) {
    EXPECT_EQ(forecast(copySource("plain.mp4"), kInside, "o.avi").refusal,
              "Files of this kind (avi) cannot hold this video's pictures (h264) exactly.");
    EXPECT_EQ(forecast(copySource("pcm.mov"), kInside, "o.mp4").refusal,
              "Files of this kind (mp4) cannot hold this video's sound (pcm_s16le) exactly.");
    EXPECT_EQ(forecast(copySource("plain.mp4"), kInside, "o.unknown").refusal,
              "There is no kind of file with this output's name.");
}

TEST(ExactCopyForecast, settingsThatChange_areRefused) {
    EXPECT_EQ(forecast(copySource("changing.ts"), {1300, 7080}, "o.mp4").refusal,
              "This video cannot be cut exactly without encoding it again: its decoder settings "
              "change on the way.");
}

TEST(ExactCopyForecast, fieldsOrTimelessPictures_areRefused) {
    EXPECT_EQ(forecast(copySource("plain.avi"), kInside, "o.mp4").refusal,
              "This video cannot be cut exactly without encoding it again: its pictures have no "
              "times of their own.");
}

TEST(ExactCopyForecast, windowWithoutPictures_isRefused) {
    EXPECT_EQ(forecast(copySource("plain.mp4"), {1325, 1355}, "o.mp4").refusal,
              "There is no picture between both times.");
}

TEST(ExactCopyForecast, fileThatIsNone_isRefused) {
    EXPECT_EQ(forecast("/nowhere/at/all.mp4", kInside, "o.mp4").refusal,
              "The video cannot be opened.");
}

} // namespace
} // namespace velmora::test
