#include "DisplaySize.h"

#include "MainWindowSupport.h"
#include "MediaOperations.h"
#include "Program.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

TEST(DisplaySizeTest, squareSamples_keepTheFrameSize) {
    EXPECT_EQ(displaySize({640, 360}, {1, 1}), QSize(640, 360));
}

TEST(DisplaySizeTest, wideSamples_widenThePicture) {
    EXPECT_EQ(displaySize({720, 576}, {64, 45}), QSize(1024, 576));
    EXPECT_EQ(displaySize({1440, 1080}, {4, 3}), QSize(1920, 1080));
}

TEST(DisplaySizeTest, narrowSamples_heightenThePicture) {
    EXPECT_EQ(displaySize({720, 480}, {8, 9}), QSize(720, 540));
}

TEST(DisplaySizeTest, absurdRatio_countsAsSquare) {
    EXPECT_EQ(displaySize({640, 360}, {1, 100000}), QSize(640, 360));
    EXPECT_EQ(displaySize({640, 360}, {2147483647, 1}), QSize(640, 360));
}

TEST(DisplaySizeTest, noFrameSize_givesNone) {
    EXPECT_TRUE(displaySize({}, {4, 3}).isEmpty());
}

/// The main window's preview of videos whose samples are not square.
class AnamorphicTest : public MainWindowTest {
protected:
    /// Loads a video of 320x240 samples, coded so that the ratio stands in `name`'s container or in
    /// its coded pictures.
    void load(const std::string& name, const std::string& ratio) {
        const std::string path = folder_ / name;
        runProgram({"ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                    "testsrc=duration=1:size=320x240:rate=10", "-vf", "setsar=" + ratio, path});
        dropOnPreview(QString::fromStdString(path));
    }
    double proportions() { return static_cast<double>(preview().width()) / preview().height(); }
};

constexpr double kSquare = 320.0 / 240;
constexpr double kRoundedToPixels = 0.01;

TEST_F(AnamorphicTest, wideVideo_fromItsContainer_isShownWide) {
    load("wide.mp4", "64/45");
    EXPECT_NEAR(proportions(), kSquare * 64 / 45, kRoundedToPixels);
}

TEST_F(AnamorphicTest, wideVideo_fromItsPictures_isShownWide) {
    load("wide.ts", "4/3");
    EXPECT_NEAR(proportions(), kSquare * 4 / 3, kRoundedToPixels);
}

TEST_F(AnamorphicTest, narrowVideo_isShownNarrow) {
    load("narrow.mkv", "8/9");
    EXPECT_NEAR(proportions(), kSquare * 8 / 9, kRoundedToPixels);
}

TEST_F(AnamorphicTest, unknownRatio_isShownInItsFrameSize) {
    load("unknown.mp4", "0/1");
    EXPECT_EQ(mediaOperations().sampleAspectRatio().width, 1);
    EXPECT_EQ(mediaOperations().sampleAspectRatio().height, 1);
    EXPECT_NEAR(proportions(), kSquare, kRoundedToPixels);
}

TEST_F(AnamorphicTest, absurdRatio_isShownInItsFrameSize) {
    load("absurd.mp4", "1/100000");
    EXPECT_NEAR(proportions(), kSquare, kRoundedToPixels);
}

TEST_F(AnamorphicTest, nextVideo_withSquareSamples_isShownInItsFrameSize) {
    load("wide.mp4", "64/45");
    load("square.mp4", "1/1");
    EXPECT_NEAR(proportions(), kSquare, kRoundedToPixels);
}

} // namespace
} // namespace velmora::test
