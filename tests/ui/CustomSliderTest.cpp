#include "CustomSlider.h"

#include "LogLines.h"
#include "NotificationCenter.h"
#include "ui_PromotedBar.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace velmora::test {
namespace {

/// What the bars of all tests have posted since the last clear(). Subscriptions are for good.
std::vector<Notification>& posted() {
    static std::vector<Notification> all;
    [[maybe_unused]] static const bool subscribed = [] {
        NotificationCenter::defaultCenter().addObserver(
            "customCrubbingBarChangedNotification",
            [](const Notification& notification) { all.push_back(notification); });
        return true;
    }();
    return all;
}

/// A window with an enabled bar from 0 to 100, 400 wide, away from the window's corner.
class CustomSliderTest : public ::testing::Test {
protected:
    void SetUp() override {
        window_.resize(500, 100);
        bar_.initWithFrame(QRect(50, 40, 400, 26));
        bar_.awakeFromNib();
        bar_.setCustomSliderEnable(true);
        window_.show();
        posted().clear();
    }

    void mouse(QEvent::Type type, double x, double y = 13) {
        const QPointF inWindow(50 + x, 40 + y);
        const QMouseEvent event(type, QPointF(x, y), inWindow, inWindow, Qt::LeftButton,
                                Qt::LeftButton, {});
        if (type == QEvent::MouseButtonPress) {
            bar_.mouseDown(event);
        } else if (type == QEvent::MouseMove) {
            bar_.mouseDragged(event);
        } else {
            bar_.mouseUp(event);
        }
    }
    void press(double x, double y = 13) { mouse(QEvent::MouseButtonPress, x, y); }
    void drag(double x, double y = 13) { mouse(QEvent::MouseMove, x, y); }
    void release() { mouse(QEvent::MouseButtonRelease, 0); }

    static std::vector<double> postedValues() {
        std::vector<double> values;
        for (const Notification& notification : posted()) {
            values.push_back(notification.userInfo["customCrubbingBarValue"].toDouble());
        }
        return values;
    }

    QWidget window_;
    CustomSlider bar_{&window_};
};

TEST_F(CustomSliderTest, newBar_goesFrom0To100AndHasNoAnchors) {
    const CustomSlider bar;
    EXPECT_EQ(bar.minValue(), 0);
    EXPECT_EQ(bar.maxValue(), 100);
    EXPECT_EQ(bar.doubleValue(), 0);
    EXPECT_EQ(bar.anchorLeft(), -1);
    EXPECT_EQ(bar.anchorRight(), -1);
    EXPECT_EQ(bar.butIndex(), 0);
    EXPECT_FALSE(bar.customSliderEnable());
}

TEST_F(CustomSliderTest, awakeFromNib_clearsTheAnchors) {
    bar_.setAnchorLeft(3);
    bar_.setAnchorRight(4);
    bar_.awakeFromNib();
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.anchorRight(), -1);
}

TEST_F(CustomSliderTest, setDoubleValue_outsideTheRange_takesTheNearestAndTellsNobody) {
    bar_.setDoubleValue(100.5);
    EXPECT_EQ(bar_.doubleValue(), 100);
    bar_.setDoubleValue(-1);
    EXPECT_EQ(bar_.doubleValue(), 0);
    EXPECT_TRUE(posted().empty());
}

TEST_F(CustomSliderTest, getCurrenPosInt_fraction_isCutOff) {
    bar_.setDoubleValue(99.99);
    EXPECT_EQ(bar_.getCurrenPosInt(), 99);
    bar_.setMinValue(-10);
    bar_.setDoubleValue(-1.9);
    EXPECT_EQ(bar_.getCurrenPosInt(), -1);
    bar_.setMaxValue(1e12);
    bar_.setDoubleValue(1e12);
    EXPECT_EQ(bar_.getCurrenPosInt(), std::numeric_limits<std::int32_t>::max());
}

TEST_F(CustomSliderTest, press_inside_setsLogsAndPostsTheValue) {
    const LogLines lines;
    press(100);
    EXPECT_EQ(bar_.doubleValue(), 25);
    EXPECT_EQ(lines.all(), QStringList({"event type:2", "get x:25.000000"}));
    ASSERT_EQ(posted().size(), 1U);
    EXPECT_EQ(posted()[0].name, "customCrubbingBarChangedNotification");
    EXPECT_EQ(posted()[0].object, &bar_);
    EXPECT_EQ(posted()[0].userInfo, QVariantMap({{"customCrubbingBarValue", 25.0}}));
}

TEST_F(CustomSliderTest, press_rangeThatStartsAbove0_startsAtTheMinimum) {
    bar_.setMinValue(50);
    press(100);
    EXPECT_EQ(bar_.doubleValue(), 62.5);
}

TEST_F(CustomSliderTest, press_disabled_onlyLogs) {
    bar_.setCustomSliderEnable(false);
    const LogLines lines;
    press(100);
    drag(200);
    EXPECT_EQ(lines.all(), QStringList({"slider disabled", "event type:5"}));
    EXPECT_EQ(bar_.doubleValue(), 0);
    EXPECT_TRUE(posted().empty());
}

TEST_F(CustomSliderTest, press_outsideTheBounds_doesNothing) {
    const LogLines lines;
    press(100, -1);
    press(100, 26);
    press(-1);
    press(400);
    EXPECT_TRUE(lines.all().isEmpty());
    EXPECT_TRUE(posted().empty());
    drag(100);
    EXPECT_EQ(bar_.doubleValue(), 0);
}

TEST_F(CustomSliderTest, drag_afterAPress_followsAlsoAboveAndBelowTheBar) {
    press(100);
    drag(200);
    drag(300, -500);
    EXPECT_EQ(postedValues(), std::vector<double>({25, 50, 75}));
}

TEST_F(CustomSliderTest, drag_leftAndRightOfTheBar_givesTheEndsOfTheRange) {
    bar_.setMinValue(20);
    press(100);
    drag(-0.5);
    EXPECT_EQ(bar_.doubleValue(), 20);
    drag(400);
    EXPECT_EQ(bar_.doubleValue(), 100);
    drag(-1000);
    drag(1000);
    EXPECT_EQ(postedValues(), std::vector<double>({40, 20, 100, 20, 100}));
}

TEST_F(CustomSliderTest, drag_withoutAPressOrAfterTheRelease_onlyLogsItsType) {
    const LogLines lines;
    drag(100);
    EXPECT_EQ(lines.all(), QStringList("event type:5"));
    press(100);
    release();
    drag(200);
    EXPECT_EQ(postedValues(), std::vector<double>({25}));
}

TEST_F(CustomSliderTest, drag_barDisabledMeanwhile_goesOn) {
    press(100);
    bar_.setCustomSliderEnable(false);
    drag(200);
    EXPECT_EQ(bar_.doubleValue(), 50);
}

TEST_F(CustomSliderTest, drag_fractionOfAPixel_countsToo) {
    press(100.5);
    EXPECT_DOUBLE_EQ(bar_.doubleValue(), 25.125);
}

TEST_F(CustomSliderTest, userMove_setsThenPostsThenSendsItsAction) {
    QSignalSpy actions(&bar_, &CustomSlider::sliderDragged);
    QObject::connect(&bar_, &CustomSlider::sliderDragged, [this](double value) {
        EXPECT_EQ(bar_.doubleValue(), value);
        EXPECT_EQ(posted().size(), 1U);
    });
    press(200);
    ASSERT_EQ(actions.size(), 1);
    EXPECT_EQ(actions[0][0].toDouble(), 50);
}

TEST_F(CustomSliderTest, mouseEvents_reachTheBar) {
    QTest::mousePress(&bar_, Qt::LeftButton, {}, QPoint(100, 13));
    QMouseEvent move(QEvent::MouseMove, QPointF(200, 13), QPointF(250, 53), Qt::NoButton,
                     Qt::LeftButton, {});
    QCoreApplication::sendEvent(&bar_, &move);
    QTest::mouseRelease(&bar_, Qt::LeftButton, {}, QPoint(200, 13));
    EXPECT_EQ(postedValues(), std::vector<double>({25, 50}));
    QTest::mouseClick(&bar_, Qt::RightButton, {}, QPoint(300, 13));
    EXPECT_EQ(bar_.doubleValue(), 50);
}

TEST_F(CustomSliderTest, keys_moveAsADragDoes) {
    bar_.setDoubleValue(50);
    const QSignalSpy actions(&bar_, &CustomSlider::sliderDragged);
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Up, Qt::Key_Left, Qt::Key_Down, Qt::Key_PageUp,
                              Qt::Key_PageDown, Qt::Key_Home, Qt::Key_Left, Qt::Key_End}) {
        QTest::keyClick(&bar_, key);
    }
    EXPECT_EQ(postedValues(), std::vector<double>({51, 52, 51, 50, 60, 50, 0, 0, 100}));
    EXPECT_EQ(actions.size(), 9);
}

TEST_F(CustomSliderTest, keys_disabledOrUnknown_doNothing) {
    QTest::keyClick(&bar_, Qt::Key_A);
    bar_.setCustomSliderEnable(false);
    QTest::keyClick(&bar_, Qt::Key_Right);
    EXPECT_TRUE(posted().empty());
    EXPECT_EQ(bar_.doubleValue(), 0);
}

TEST_F(CustomSliderTest, focus_canBeHadByTabWhileEnabledAndShows) {
    EXPECT_EQ(bar_.focusPolicy(), Qt::StrongFocus);
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    bar_.clearFocus();
    const QImage without = bar_.grab().toImage();
    bar_.setFocus();
    ASSERT_TRUE(bar_.hasFocus());
    EXPECT_NE(bar_.grab().toImage(), without);
    bar_.setCustomSliderEnable(false);
    EXPECT_EQ(bar_.focusPolicy(), Qt::NoFocus);
}

TEST_F(CustomSliderTest, accessibility_isASliderWithItsValue) {
    bar_.setAccessibleName("Scrubbing bar");
    bar_.setDoubleValue(12.5);
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&bar_);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->role(), QAccessible::Slider);
    EXPECT_EQ(seen->text(QAccessible::Name), "Scrubbing bar");
    EXPECT_EQ(seen->text(QAccessible::Value), "12.5");
    QAccessibleValueInterface* const value = seen->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toDouble(), 12.5);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), 100);
    EXPECT_EQ(value->minimumStepSize().toDouble(), 1);
}

TEST_F(CustomSliderTest, accessibility_valueSet_isAMoveOfTheUser) {
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&bar_);
    seen->valueInterface()->setCurrentValue(30.0);
    EXPECT_EQ(postedValues(), std::vector<double>({30}));
    EXPECT_FALSE(seen->state().disabled);
    bar_.setCustomSliderEnable(false);
    EXPECT_TRUE(seen->state().disabled);
    seen->valueInterface()->setCurrentValue(40.0);
    EXPECT_EQ(bar_.doubleValue(), 30);
}

TEST_F(CustomSliderTest, interfaceDescription_canHoldABar) {
    QWidget form;
    Ui::PromotedBar ui;
    ui.setupUi(&form);
    EXPECT_EQ(ui.mCustomSlider->maxValue(), 200);
    EXPECT_EQ(ui.mCustomSlider->objectName(), "mCustomSlider");
    EXPECT_EQ(ui.mCustomSlider->accessibleName(), "Scrubbing bar");
}

// They may be shortcuts of the window.
TEST_F(CustomSliderTest, keyPress_otherKeys_areLeftToTheWindow) {
    QKeyEvent move(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
    QApplication::sendEvent(&bar_, &move);
    EXPECT_TRUE(move.isAccepted());
    QKeyEvent other(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QApplication::sendEvent(&bar_, &other);
    EXPECT_FALSE(other.isAccepted());
}

} // namespace
} // namespace velmora::test
