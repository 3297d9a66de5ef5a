// Lengths are kept in single precision; where they are divided tells which millisecond they show.

#include "ConversionEngine.h"
#include "MainWindowSupport.h"
#include "Program.h"
#include "SharedState.h"

namespace velmora::test {
namespace {

/// Sound of 134.225 s. Its microseconds are more than a number of single precision can tell apart:
/// divided as such they give a little less than the quotient, and less than its milliseconds.
class LengthsTest : public MainWindowTest {
protected:
    void SetUp() override {
        const ProgramResult made =
            runProgram({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "anullsrc=r=8000:cl=mono",
                        "-af", "atrim=end_sample=1073800", "-c:a", "pcm_u8", sound_.toStdString()});
        ASSERT_EQ(made.status, 0) << made.errors;
    }

    const QString sound_ = QString::fromStdString(folder_ / "sound.wav");
    const QString asDouble_ = "00:02:14.225";
    const QString asSingle_ = "00:02:14.224";
};

TEST_F(LengthsTest, drop_endIsOfTheFirstLoadAndLengthOfTheSingleDivision) {
    dropOnPreview(sound_);
    ASSERT_EQ(ConversionEngine::instance().durationUs, 134'225'000);
    EXPECT_EQ(text("mLabelEnd"), asDouble_);
    EXPECT_EQ(text("mLabelDuration"), asSingle_);
    EXPECT_EQ(text("mLabelDrag"), "00:00:00.000/" + asSingle_);
    EXPECT_EQ(controller_.duration(), 134'225'000.0F / 1'000'000.0F);
}

TEST_F(LengthsTest, drop_itemAndMarksHaveTheDoubleDivision) {
    dropOnPreview(sound_);
    EXPECT_EQ(cutterFileList->front()->duration, 134.225F);
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 134'225);
    EXPECT_EQ(currentSetting->cutEndTime, 134'225.0F);
}

TEST_F(LengthsTest, load_alone_showsTheDoubleDivision) {
    controller_.firstLoadVideo(sound_);
    EXPECT_EQ(controller_.duration(), 134.225F);
    EXPECT_EQ(text("mLabelDuration"), asDouble_);
}

TEST_F(LengthsTest, join_itemHasTheDoubleDivision) {
    controller_.joinerAddFile(sound_);
    EXPECT_EQ(joinerFileList->front()->duration, 134.225F);
    EXPECT_EQ(controller_.getStringTime(joinerFileList->front()->endTime), asDouble_);
}

TEST_F(LengthsTest, scrub_previewIsTakenAtTheSinglePrecisionPosition) {
    dropOnPreview(media("video-only.mp4"));
    bar().moveByUser(33.9);
    const double position = ConversionEngine::instance().startTimes[0];
    EXPECT_EQ(position, static_cast<double>(1.356F));
    EXPECT_NE(position, 33.9 * 4 / 100);
}

} // namespace
} // namespace velmora::test
