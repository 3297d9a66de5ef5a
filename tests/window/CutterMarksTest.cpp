#include "CustomSlider.h"
#include "MainWindowSupport.h"
#include "SharedState.h"
#include "customImageView.h"

#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QTest>

namespace velmora::test {
namespace {

/// Scrubbing and marking in a video of 4 s.
class CutterMarksTest : public MainWindowTest {
protected:
    void SetUp() override {
        dropOnPreview(media("video-only.mp4"));
        log_.clear();
    }

    QImage shown() {
        QImage picture(320, 240, QImage::Format_RGB32);
        QPainter painter(&picture);
        preview().image().draw(painter, picture.rect());
        return picture;
    }
};

TEST_F(CutterMarksTest, scrub_showsPositionAndPictureThere) {
    dropOnPreview(media("h264.mp4")); // a key picture each second
    const QImage first = shown();
    scrubTo(50);
    EXPECT_NEAR(controller_.labelValue(), 2.0F, 0.05F);
    EXPECT_FALSE(text("mLabelDrag").startsWith("00:00:00.000"));
    EXPECT_NE(shown(), first);
    EXPECT_EQ(shown(), QImage("/tmp/pic.bmp").convertToFormat(QImage::Format_RGB32));
}

TEST_F(CutterMarksTest, scrub_back_showsTheFirstPictureAgain) {
    dropOnPreview(media("h264.mp4"));
    const QImage first = shown();
    bar().moveByUser(50);
    EXPECT_NE(shown(), first);
    bar().moveByUser(0);
    EXPECT_EQ(shown(), first);
}

TEST_F(CutterMarksTest, scrub_logsTheAction) {
    bar().moveByUser(25);
    EXPECT_EQ(log_.count("get slider:25.000000"), 1);
}

TEST_F(CutterMarksTest, sliderDrag_alone_showsThePositionButNoOtherPicture) {
    const QImage first = shown();
    bar().setDoubleValue(50);
    controller_.slider_drag(bar());
    EXPECT_EQ(text("mLabelDrag"), "00:00:02.000/00:00:04.000");
    EXPECT_EQ(controller_.labelValue(), 2.0F);
    EXPECT_EQ(shown(), first);
}

TEST_F(CutterMarksTest, pictureFileGoneWhileScrubbing_leavesThePreviewEmpty) {
    bar().moveByUser(50);
    ASSERT_TRUE(QFile::remove("/tmp/pic.bmp"));
    ASSERT_TRUE(QDir().mkdir("/tmp/pic.bmp")); // nothing can be written there
    bar().moveByUser(60);
    EXPECT_TRUE(preview().image().isNull());
    ASSERT_TRUE(QDir().rmdir("/tmp/pic.bmp"));
    bar().moveByUser(70);
    EXPECT_FALSE(preview().image().isNull());
}

TEST_F(CutterMarksTest, startPoint_set_marksTextSettingAndBar) {
    markStart(25);
    EXPECT_EQ(text("mLabelStart"), "00:00:01.000");
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 1000);
    EXPECT_EQ(currentSetting->cutStartTime, 1000.0F);
    EXPECT_EQ(bar().anchorLeft(), 25);
    EXPECT_EQ(bar().butIndex(), 1);
    EXPECT_EQ(text("mLabelDuration"), "00:00:03.000");
    EXPECT_EQ(text("mLabelEnd"), "00:00:04.000");
}

TEST_F(CutterMarksTest, endPoint_set_marksTextSettingAndBar) {
    markEnd(75);
    EXPECT_EQ(text("mLabelEnd"), "00:00:03.000");
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 3000);
    EXPECT_EQ(currentSetting->cutEndTime, 3000.0F);
    EXPECT_EQ(bar().anchorRight(), 75);
    EXPECT_EQ(bar().butIndex(), 2);
    EXPECT_EQ(text("mLabelDuration"), "00:00:03.000");
    EXPECT_EQ(text("mLabelStart"), "00:00:00.000");
}

TEST_F(CutterMarksTest, anchors_areWholePercents) {
    markStart(12);
    bar().moveByUser(33.9);
    press("mButtonRight");
    EXPECT_EQ(bar().anchorRight(), 33);
    // The nearest number of single precision lies a little below 1.356 s.
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 1355);
}

TEST_F(CutterMarksTest, startPoint_atOrAfterTheEnd_movesTextAndMillisecondsOfTheEndOnly) {
    markEnd(50);
    markStart(50);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 2000);
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 4000);
    EXPECT_EQ(text("mLabelEnd"), "00:00:04.000");
    EXPECT_EQ(text("mLabelDuration"), "00:00:02.000");
    EXPECT_EQ(currentSetting->cutEndTime, 2000.0F);
    EXPECT_EQ(bar().anchorLeft(), 50);
}

TEST_F(CutterMarksTest, startPoint_atTheEnd_leavesTheBarsEndToTheNextDrawing) {
    markEnd(50);
    bar().moveByUser(50);
    controller_.button_left_anchor(); // unlike a press, lets nothing be drawn afterwards
    EXPECT_EQ(bar().anchorLeft(), 50);
    EXPECT_EQ(bar().anchorRight(), 50);
}

TEST_F(CutterMarksTest, endPoint_atOrBeforeTheStart_movesTextAndMillisecondsOfTheStartOnly) {
    markStart(75);
    markEnd(50);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 0);
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 2000);
    EXPECT_EQ(text("mLabelStart"), "00:00:00.000");
    EXPECT_EQ(text("mLabelDuration"), "00:00:02.000");
    EXPECT_EQ(currentSetting->cutStartTime, 3000.0F);
}

TEST_F(CutterMarksTest, endPoint_atTheStart_movesTheStart) {
    markStart(50);
    markEnd(50);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 0);
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 2000);
    EXPECT_EQ(text("mLabelStart"), "00:00:00.000");
    EXPECT_EQ(text("mLabelDuration"), "00:00:02.000");
}

TEST_F(CutterMarksTest, anchorThatWasCrossed_isDroppedWhenTheBarIsDrawn) {
    markStart(60);
    markEnd(40);
    bar().grab();
    EXPECT_EQ(bar().anchorLeft(), -1);
    EXPECT_EQ(bar().anchorRight(), 40);
    EXPECT_TRUE(log_.contains("need reset"));
}

TEST_F(CutterMarksTest, textFieldValue_unknownField_isMinus1) {
    EXPECT_EQ(controller_.getTextFieldValueMs(3), -1);
    EXPECT_EQ(controller_.getTextFieldValueMs(0), -1);
}

TEST_F(CutterMarksTest, typedTimes_changeTheLengthOnly) {
    type("mLabelStart", "00:00:01.500");
    EXPECT_EQ(text("mLabelDuration"), "00:00:02.500");
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 0);
    EXPECT_EQ(currentSetting->cutStartTime, 0.0F);
    EXPECT_EQ(bar().anchorLeft(), -1);
}

TEST_F(CutterMarksTest, typedEndBeforeStart_givesANegativeLength) {
    type("mLabelStart", "00:00:03.000");
    type("mLabelEnd", "00:00:01.500");
    EXPECT_EQ(text("mLabelDuration"), "00:00:-1.-500");
}

TEST_F(CutterMarksTest, typedTextThatIsNoTime_keepsTheLength) {
    type("mLabelStart", "00:00:01.000");
    type("mLabelEnd", "soon");
    EXPECT_EQ(text("mLabelDuration"), "00:00:03.000");
}

TEST_F(CutterMarksTest, setInfoParameter_knownKeys_setTheirFields) {
    controller_.setInfoParameter("width", "640px");
    controller_.setInfoParameter("height", " 480");
    controller_.setInfoParameter("cutStartTime", "12.5");
    controller_.setInfoParameter("cutEndTime", "16777217");
    EXPECT_EQ(currentSetting->width, 640);
    EXPECT_EQ(currentSetting->height, 480);
    EXPECT_EQ(currentSetting->cutStartTime, 12.5F);
    EXPECT_EQ(currentSetting->cutEndTime, 16777216.0F);
}

TEST_F(CutterMarksTest, setInfoParameter_otherKeys_changeNothing) {
    const NodeSetting before = *currentSetting;
    controller_.setInfoParameter("duration", "7");
    controller_.setInfoParameter("Width", "7");
    EXPECT_EQ(currentSetting->width, before.width);
    EXPECT_EQ(currentSetting->cutStartTime, before.cutStartTime);
    EXPECT_EQ(currentSetting->cutEndTime, before.cutEndTime);
}

TEST_F(CutterMarksTest, timeTexts_areWrittenIntoTheirFields) {
    auto& field = outlet<QLineEdit>("mLabelDrag");
    EXPECT_EQ(controller_.getStringTime(3661.5F), "01:01:01.500");
    controller_.textSetTime(field, 1.25F);
    EXPECT_EQ(field.text(), "00:00:01.250");
    controller_.testSetTimeDuration(field, 1.25F, 2);
    EXPECT_EQ(field.text(), "00:00:01.250/00:00:02.000");
}

TEST_F(CutterMarksTest, viewValueReset_zeroesFieldsAndBar) {
    markStart(25);
    controller_.viewValueReset();
    EXPECT_EQ(bar().doubleValue(), 0);
    for (const char* const field : {"mLabelStart", "mLabelEnd", "mLabelDuration"}) {
        EXPECT_EQ(text(field), "00:00:00.000") << field;
    }
    EXPECT_EQ(text("mLabelDrag"), "00:00:00.000/00:00:00.000");
}

class EmptyCutterTest : public MainWindowTest {};

TEST_F(EmptyCutterTest, pointButtons_withoutVideo_doNothing) {
    press("mButtonLeft");
    press("mButtonRight");
    EXPECT_EQ(bar().anchorLeft(), -1);
    EXPECT_EQ(bar().anchorRight(), -1);
    EXPECT_EQ(bar().butIndex(), 0);
}

TEST_F(EmptyCutterTest, bar_withoutVideo_doesNotMove) {
    scrubTo(50);
    EXPECT_EQ(bar().doubleValue(), 0);
    EXPECT_TRUE(log_.contains("slider disabled"));
}

} // namespace
} // namespace velmora::test
