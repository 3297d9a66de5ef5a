// Track and knob: where they stand, how they are rounded, and how much of them is drawn.

#include "LogLines.h"
#include "SliderDrawing.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

// Outside of all namespaces, as the resources' names are.
static void takeImagesAway() {
    Q_CLEANUP_RESOURCE(velmora_images);
}
static void giveImagesBack() {
    Q_INIT_RESOURCE(velmora_images);
}

namespace velmora::test {
namespace {

TEST_F(CustomSliderDrawingTest, ratio_isTheOneAskedFor) {
    const bool scaled = qEnvironmentVariable("QT_SCALE_FACTOR") == "2";
    EXPECT_EQ(bar_.devicePixelRatioF(), scaled ? 2 : 1);
}

TEST_F(CustomSliderDrawingTest, images_tracksAreEquallyHighAndKnobsEquallyLarge) {
    EXPECT_EQ(NamedImage(kKept).size().height(), 6);
    EXPECT_EQ(NamedImage(kCut).size().height(), 6);
    EXPECT_EQ(NamedImage(kKnob).size(), QSize(18, 18));
    EXPECT_EQ(NamedImage(kPressedKnob).size(), QSize(18, 18));
}

TEST_F(CustomSliderDrawingTest, images_areReadOnceAndKept) {
    makeBar(400);
    const QImage before = drawn();
    takeImagesAway();
    const bool away = NamedImage(kKept).isNull();
    const QImage after = drawn();
    giveImagesBack();
    EXPECT_TRUE(away);
    EXPECT_EQ(after, before);
}

TEST_F(CustomSliderDrawingTest, noAnchors_wholeTrackIsKeptAndTheKnobStandsAtTheStart) {
    makeBar(400);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, unevenWidths_piecesAreRoundedOutward) {
    makeBar(401);
    bar_.setAnchorLeft(25);  // 100.25
    bar_.setAnchorRight(75); // 300.75
    bar_.setDoubleValue(50); // 200.5, the knob from 191.5 to 209.5
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 401, 6}},
                                 {kCut, {0, 10, 101, 6}},
                                 {kCut, {300, 10, 101, 6}},
                                 {kKnob, {191, 4, 19, 18}}}));
}

TEST_F(CustomSliderDrawingTest, widthOf333_piecesAreRoundedOutward) {
    makeBar(333);
    bar_.setAnchorLeft(33);  // 109.89
    bar_.setAnchorRight(66); // 219.78
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 333, 6}},
                                 {kCut, {0, 10, 110, 6}},
                                 {kCut, {219, 10, 114, 6}},
                                 {kKnob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, unevenHeight_piecesAreRoundedOutward) {
    makeBar(400, 27);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 7}}, {kKnob, {0, 4, 18, 19}}}));
}

TEST_F(CustomSliderDrawingTest, rangeThatStartsAbove0_isDrawnAsIfItStartedAt0) {
    makeBar(400);
    bar_.setMinValue(50);
    bar_.setAnchorLeft(50);
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {0, 10, 200, 6}}, {kKnob, {191, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, rangeThatEndsAt0_drawsTheKnobAtTheStart) {
    makeBar(400);
    bar_.setMaxValue(0);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, knobAtTheEnd_endsWhereTheBarEnds) {
    makeBar(400);
    bar_.setDoubleValue(100);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {382, 4, 18, 18}}}));
    bar_.setDoubleValue(98); // 392 - 9 + 18 = 401
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {382, 4, 18, 18}}}));
    bar_.setDoubleValue(97);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {379, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, knobNearTheStart_isNotHalfOutside) {
    makeBar(400);
    bar_.setDoubleValue(1); // 4 - 9
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {0, 4, 18, 18}}}));
    bar_.setDoubleValue(3); // 12 - 9
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {3, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, mouseDown_showsThePressedKnobUntilItIsUp) {
    makeBar(400);
    press(200);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kPressedKnob, {191, 4, 18, 18}}}));
    send(QEvent::MouseButtonRelease, 200);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {191, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, dirtyRectangle_onlyThatPartIsDrawnOnTheControl) {
    makeBar(400);
    bar_.setAnchorLeft(30);
    bar_.setDoubleValue(30);
    const QImage all =
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {0, 10, 120, 6}}, {kKnob, {111, 4, 18, 18}}});
    const QRect dirty(100, 3, 20, 12);
    QImage wanted = blank(Qt::white);
    const double ratio = all.devicePixelRatio();
    QPainter(&wanted).drawImage(
        dirty, all, QRectF(dirty.topLeft() * ratio, QSizeF(dirty.size()) * ratio).toRect());
    EXPECT_EQ(drawn(dirty), wanted);
}

TEST_F(CustomSliderDrawingTest, severalDirtyRectangles_leaveNothingOfEarlierKnobs) {
    makeBar(400);
    for (const int value : {10, 20, 30, 40}) {
        bar_.setDoubleValue(value);
        drawn(QRect(value * 4 - 9, 0, 18, 26));
    }
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {151, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, beforeTheBarAwakes_nothingIsDrawn) {
    bar_.initWithFrame(QRect(0, 0, 400, 26));
    EXPECT_EQ(drawn(), blank(Qt::white));
}

TEST_F(CustomSliderDrawingTest, awakeFromNib_barDoesNotGrowBeyondItsCanvas) {
    const LogLines lines;
    makeBar(400);
    EXPECT_EQ(lines.all(), QStringList("canvas w:400.000000 h:26.000000"));
    bar_.resize(500, 40);
    EXPECT_EQ(bar_.size(), QSize(400, 26));
    bar_.resize(200, 26);
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 200, 6}}, {kKnob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, onScreen_looksAsItDrawsItself) {
    makeBar(400);
    bar_.setAttribute(Qt::WA_TranslucentBackground);
    bar_.setAnchorLeft(30);
    bar_.setDoubleValue(30);
    bar_.show();
    QImage screen = blank(Qt::white);
    bar_.render(&screen, {}, {}, {});
    EXPECT_EQ(screen, drawn());
}

} // namespace
} // namespace velmora::test
