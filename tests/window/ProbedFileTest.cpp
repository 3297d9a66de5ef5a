#include "ProbedFile.h"

#include "ConversionEngine.h"
#include "MainWindowSupport.h"

namespace velmora::test {
namespace {

/// "odd-size.avi" has 321x241.
class ProbedFileTest : public ::testing::Test {
protected:
    const QString video_ = QString::fromStdString(mediaPath("video-only.mp4"));
    const QString odd_ = QString::fromStdString(mediaPath("odd-size.avi"));
    ConversionEngine& engine_ = ConversionEngine::instance();
};

TEST_F(ProbedFileTest, item_isAllOfTheFileThatWasProbedLast) {
    ASSERT_EQ(probeFile(odd_), 0);
    ASSERT_EQ(probeFile(video_), 0);
    const auto item = probedItem(video_);
    EXPECT_EQ(item->inputFile, video_);
    EXPECT_EQ(item->outFromat, "mp4");
    EXPECT_EQ(item->inFromat, "");
    EXPECT_EQ(item->resolution, "320x180");
    EXPECT_EQ(item->width, 320);
    EXPECT_EQ(item->height, 180);
    EXPECT_EQ(item->frame_rate, 30.0F);
    EXPECT_EQ(item->duration, 4.0F);
    EXPECT_EQ(item->startTime, 0.0F);
    EXPECT_EQ(item->endTime, 4.0F);
    EXPECT_EQ(item->converteState, Ready);
    EXPECT_EQ(item->isSeleted, 1);
}

TEST_F(ProbedFileTest, item_ofARateWithoutDenominator_hasNoRate) {
    ASSERT_EQ(probeFile(video_), 0);
    engine_.sourceFrameRateDen = 0;
    EXPECT_EQ(probedItem(video_)->frame_rate, 0.0F);
}

TEST_F(ProbedFileTest, probeThatFound_isAcceptedWithoutAnAlert) {
    const std::int32_t code = probeFile(video_);
    EXPECT_EQ(alertsOf([code] { EXPECT_TRUE(acceptProbe(code)); }), std::vector<SeenAlert>());
}

TEST_F(ProbedFileTest, probeThatFailed_isRefusedWithAnAlert) {
    probeFile(video_);
    const std::int32_t code = probeFile("/nowhere.mp4");
    EXPECT_LT(code, 0);
    const auto alerts = alertsOf([code] { EXPECT_FALSE(acceptProbe(code)); });
    ASSERT_EQ(alerts, std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(alerts[0].sentence, "“nowhere.mp4” is no longer in its folder. Put it back, or add "
                                  "it from where it is now.");
}

TEST_F(ProbedFileTest, fileOfUnknownLength_isRefusedWithAnAlert) {
    ASSERT_EQ(probeFile(video_), 0);
    engine_.durationFloor = -1;
    const auto alerts = alertsOf([] { EXPECT_FALSE(acceptProbe(0)); });
    ASSERT_EQ(alerts, std::vector{plainAlert("File is invalid!")});
    EXPECT_TRUE(alerts[0].sentence.contains("does not tell how long it is"));
    ASSERT_EQ(probeFile(video_), 0);
    engine_.durationSeconds = -1;
    EXPECT_EQ(alertsOf([] { EXPECT_FALSE(acceptProbe(0)); }),
              std::vector{plainAlert("File is invalid!")});
}

} // namespace
} // namespace velmora::test
