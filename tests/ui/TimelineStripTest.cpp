// The timeline under the user's hand, and as assistive technology sees it.

#include "TimelineStrip.h"

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

constexpr std::int64_t kOneSecond = 1'000'000;

/// A strip 600 wide, of ten minutes.
class TimelineStripTest : public ::testing::Test {
protected:
    TimelineStripTest() {
        strip_.resize(600, 40);
        strip_.show();
        strip_.setVideo(600 * kOneSecond, 40'000);
        viewed_.clear();
    }
    void wheel(int delta, Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(QPointF(10, 10), QPointF(10, 10), QPoint(), QPoint(0, delta),
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&strip_, &event);
        accepted_ = event.isAccepted();
    }
    void drag(int from, int to) {
        QTest::mousePress(&strip_, Qt::LeftButton, {}, QPoint(from, 20));
        for (int x = from; x != to; x += to > from ? 1 : -1) {
            QTest::mouseMove(&strip_, QPoint(x, 20));
        }
        QTest::mouseMove(&strip_, QPoint(to, 20));
        QTest::mouseRelease(&strip_, Qt::LeftButton, {}, QPoint(to, 20));
    }
    std::int64_t viewUs() const {
        return strip_.model().viewEndUs() - strip_.model().viewBeginUs();
    }

    TimelineStrip strip_;
    QSignalSpy chosen_{&strip_, &TimelineStrip::positionChosen};
    QSignalSpy viewed_{&strip_, &TimelineStrip::viewChanged};
    bool accepted_ = false;
};

TEST_F(TimelineStripTest, height_isFixed) {
    EXPECT_EQ(strip_.minimumHeight(), 40);
    EXPECT_EQ(strip_.maximumHeight(), 40);
}

TEST_F(TimelineStripTest, click_goesThere) {
    QTest::mouseClick(&strip_, Qt::LeftButton, {}, QPoint(150, 20));
    ASSERT_EQ(chosen_.size(), 1);
    EXPECT_EQ(chosen_.at(0).at(0).toLongLong(), 150 * kOneSecond);
    QTest::mouseClick(&strip_, Qt::RightButton, {}, QPoint(250, 20));
    EXPECT_EQ(chosen_.size(), 1);
}

TEST_F(TimelineStripTest, dragOfAll_takesThePositionAlong) {
    drag(100, 160);
    ASSERT_FALSE(chosen_.isEmpty());
    EXPECT_EQ(chosen_.last().at(0).toLongLong(), 160 * kOneSecond);
    EXPECT_FALSE(strip_.model().isZoomed());
}

TEST_F(TimelineStripTest, dragWhenZoomed_scrollsAndGoesNowhere) {
    strip_.setPosition(300 * kOneSecond);
    strip_.zoomIn();
    EXPECT_EQ(strip_.model().viewBeginUs(), 150 * kOneSecond);
    drag(200, 100);
    EXPECT_EQ(strip_.model().viewBeginUs(), 200 * kOneSecond);
    EXPECT_TRUE(chosen_.isEmpty());
    QTest::mouseClick(&strip_, Qt::LeftButton, {}, QPoint(100, 20));
    EXPECT_EQ(chosen_.last().at(0).toLongLong(), 250 * kOneSecond);
}

TEST_F(TimelineStripTest, ctrlWheel_zoomsAroundThePosition) {
    strip_.setPosition(450 * kOneSecond);
    wheel(240, Qt::ControlModifier);
    EXPECT_EQ(viewUs(), 300 * kOneSecond);
    EXPECT_EQ(strip_.model().xOf(450 * kOneSecond), 450);
    EXPECT_EQ(viewed_.size(), 1);
    wheel(-240, Qt::ControlModifier);
    EXPECT_FALSE(strip_.model().isZoomed());
    EXPECT_TRUE(accepted_);
}

TEST_F(TimelineStripTest, wheelAlone_scrollsOnlyWhereThereIsMore) {
    wheel(-120, {});
    EXPECT_FALSE(accepted_);
    EXPECT_TRUE(viewed_.isEmpty());
    strip_.zoomIn();
    viewed_.clear();
    wheel(-120, {});
    EXPECT_TRUE(accepted_);
    EXPECT_EQ(viewed_.size(), 1);
    EXPECT_EQ(strip_.model().viewBeginUs(), 30 * kOneSecond);
}

TEST_F(TimelineStripTest, keys_goByWhatIsVisible) {
    struct Row {
        Qt::Key key;
        std::int64_t seconds;
    };
    strip_.setPosition(300 * kOneSecond);
    for (const Row row : {Row{Qt::Key_Left, 294}, Row{Qt::Key_Right, 306}, Row{Qt::Key_Down, 294},
                          Row{Qt::Key_Up, 306}, Row{Qt::Key_PageDown, 240},
                          Row{Qt::Key_PageUp, 360}, Row{Qt::Key_Home, 0}, Row{Qt::Key_End, 600}}) {
        chosen_.clear();
        QTest::keyClick(&strip_, row.key);
        ASSERT_EQ(chosen_.size(), 1) << row.key;
        EXPECT_EQ(chosen_.at(0).at(0).toLongLong(), row.seconds * kOneSecond) << row.key;
    }
    strip_.zoomIn();
    QTest::keyClick(&strip_, Qt::Key_Right);
    EXPECT_EQ(chosen_.last().at(0).toLongLong(), 303 * kOneSecond);
}

TEST_F(TimelineStripTest, keysWithModifiers_areLeftToOthers) {
    strip_.setPosition(300 * kOneSecond);
    for (const auto modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier}) {
        QTest::keyClick(&strip_, Qt::Key_Right, modifier);
    }
    EXPECT_TRUE(chosen_.isEmpty());
}

TEST_F(TimelineStripTest, withoutVideo_nothingCanBeChosen) {
    strip_.setVideo(0, 40'000);
    QTest::mouseClick(&strip_, Qt::LeftButton, {}, QPoint(150, 20));
    QTest::keyClick(&strip_, Qt::Key_End);
    strip_.zoomIn();
    EXPECT_TRUE(chosen_.isEmpty());
    EXPECT_FALSE(strip_.model().isZoomed());
}

TEST_F(TimelineStripTest, assistiveTechnology_seesASliderInSeconds) {
    strip_.setAccessibleName("Timeline");
    strip_.setPosition(90 * kOneSecond);
    strip_.setMarks(60 * kOneSecond, 120 * kOneSecond);
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&strip_);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->role(), QAccessible::Slider);
    EXPECT_EQ(seen->text(QAccessible::Name), "Timeline");
    EXPECT_EQ(seen->text(QAccessible::Value), "00:01:30.000/00:10:00.000");
    QAccessibleValueInterface* const value = seen->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toDouble(), 90);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), 600);
    EXPECT_EQ(value->minimumStepSize().toDouble(), 6);
    value->setCurrentValue(12.5);
    EXPECT_EQ(chosen_.last().at(0).toLongLong(), 12'500'000);
    EXPECT_FALSE(seen->state().disabled);
    strip_.setVideo(0, 40'000);
    EXPECT_TRUE(seen->state().disabled);
    EXPECT_EQ(seen->text(QAccessible::Description), "No video");
}

TEST_F(TimelineStripTest, description_tellsWhatIsShown) {
    strip_.setMarks(60 * kOneSecond, 120 * kOneSecond);
    EXPECT_EQ(strip_.description(), "Marked from 00:01:00.000 to 00:02:00.000.");
    strip_.setDirect(DirectStretch{58 * kOneSecond, 118 * kOneSecond});
    strip_.setKeyFrames({0, 58 * kOneSecond});
    strip_.zoomIn();
    EXPECT_EQ(strip_.description(),
              "Marked from 00:01:00.000 to 00:02:00.000. Direct copy: This cut starts 2.0 s "
              "earlier, and ends as much earlier. Key frames: 2. Visible: 00:00:00.000 to "
              "00:05:00.000.");
}

} // namespace
} // namespace velmora::test
