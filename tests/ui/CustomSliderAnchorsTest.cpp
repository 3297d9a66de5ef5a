// The stretch between the anchors: what is grey outside of it, and anchors that clash.

#include "LogLines.h"
#include "SliderDrawing.h"

#include <QColor>
#include <QImage>
#include <QStringList>
#include <gtest/gtest.h>

#include <vector>

namespace velmora::test {
namespace {

TEST_F(CustomSliderDrawingTest, bothAnchors_outsideIsGrey) {
    makeBar(400);
    bar_.setAnchorLeft(25);
    bar_.setAnchorRight(75);
    bar_.setDoubleValue(50);
    const QImage image = drawn();
    EXPECT_EQ(image, expected({{kKept, {0, 10, 400, 6}},
                               {kCut, {0, 10, 100, 6}},
                               {kCut, {300, 10, 100, 6}},
                               {kKnob, {191, 4, 18, 18}}}));
    const QColor accent(0x1f, 0x6f, 0xb2);
    const QColor grey(0xb4, 0xbf, 0xc9);
    for (const int x : {0, 50, 99, 300, 399}) {
        EXPECT_EQ(colourAt(image, x, 13), grey) << x;
    }
    for (const int x : {100, 150, 250, 299}) {
        EXPECT_EQ(colourAt(image, x, 13), accent) << x;
    }
}

TEST_F(CustomSliderDrawingTest, leftAnchorOnly_greysWhatIsBeforeIt) {
    makeBar(400);
    bar_.setAnchorLeft(30);
    bar_.setDoubleValue(30);
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {0, 10, 120, 6}}, {kKnob, {111, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, rightAnchorOnly_greysWhatIsAfterIt) {
    makeBar(400);
    bar_.setAnchorRight(30);
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {120, 10, 280, 6}}, {kKnob, {0, 4, 18, 18}}}));
}

TEST_F(CustomSliderDrawingTest, rightSetBeforeLeft_greysFromTheKnobAndDropsLeft) {
    makeBar(400);
    bar_.setAnchorLeft(60);
    bar_.setAnchorRight(40);
    bar_.setButIndex(2);
    bar_.setDoubleValue(40.5); // 162, the knob from 153
    const LogLines lines;
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {162, 10, 238, 6}}, {kKnob, {153, 4, 18, 18}}}));
    EXPECT_EQ(lines.all(), QStringList("need reset"));
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.anchorRight(), 40);
    // From now on the anchor counts, no longer the knob.
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {160, 10, 240, 6}}, {kKnob, {153, 4, 18, 18}}}));
    EXPECT_EQ(lines.all().size(), 1);
}

TEST_F(CustomSliderDrawingTest, leftSetAfterRight_greysUpToTheKnobAndDropsRight) {
    makeBar(400);
    bar_.setAnchorLeft(60);
    bar_.setAnchorRight(40);
    bar_.setButIndex(1);
    bar_.setDoubleValue(60.5); // 242
    const LogLines lines;
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {0, 10, 242, 6}}, {kKnob, {233, 4, 18, 18}}}));
    EXPECT_EQ(lines.all(), QStringList("need reset"));
    EXPECT_EQ(bar_.anchorLeft(), 60);
    EXPECT_EQ(bar_.anchorRight(), -1);
}

TEST_F(CustomSliderDrawingTest, anchorsAtTheSamePlace_dropTheOneSetFirst) {
    makeBar(400);
    bar_.setAnchorLeft(40);
    bar_.setAnchorRight(40);
    bar_.setButIndex(2);
    drawn();
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.anchorRight(), 40);
}

TEST_F(CustomSliderDrawingTest, crossedAndNoneSetLast_greysNothingAndKeepsBoth) {
    makeBar(400);
    bar_.setAnchorLeft(60);
    bar_.setAnchorRight(40);
    const LogLines lines;
    const std::vector<Piece> pieces{{kKept, {0, 10, 400, 6}}, {kKnob, {0, 4, 18, 18}}};
    EXPECT_EQ(drawn(), expected(pieces));
    EXPECT_EQ(drawn(), expected(pieces));
    EXPECT_EQ(lines.all(), QStringList({"need reset", "need reset"}));
    EXPECT_EQ(bar_.anchorLeft(), 60);
    EXPECT_EQ(bar_.anchorRight(), 40);
}

TEST_F(CustomSliderDrawingTest, leftAt0_isNoClashAndGreysNothing) {
    makeBar(400);
    bar_.setAnchorLeft(0);
    const LogLines lines;
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}}, {kKnob, {0, 4, 18, 18}}}));
    bar_.setAnchorRight(0);
    bar_.setButIndex(2);
    EXPECT_EQ(
        drawn(),
        expected({{kKept, {0, 10, 400, 6}}, {kCut, {0, 10, 400, 6}}, {kKnob, {0, 4, 18, 18}}}));
    EXPECT_TRUE(lines.all().isEmpty());
    EXPECT_EQ(bar_.anchorLeft(), 0);
    EXPECT_EQ(bar_.anchorRight(), 0);
}

TEST_F(CustomSliderDrawingTest, rightAt0AndLeftAbove_isNoClashAndGreysAll) {
    makeBar(400);
    bar_.setAnchorLeft(20);
    bar_.setAnchorRight(0);
    bar_.setButIndex(2);
    const LogLines lines;
    EXPECT_EQ(drawn(), expected({{kKept, {0, 10, 400, 6}},
                                 {kCut, {0, 10, 80, 6}},
                                 {kCut, {0, 10, 400, 6}},
                                 {kKnob, {0, 4, 18, 18}}}));
    EXPECT_TRUE(lines.all().isEmpty());
    EXPECT_EQ(bar_.anchorLeft(), 20);
}

} // namespace
} // namespace velmora::test
