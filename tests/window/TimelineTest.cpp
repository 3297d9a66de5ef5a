// The timeline in the window: what it is told, and what it does.

#include "MainWindowSupport.h"
#include "RunQueue.h"
#include "SharedState.h"
#include "TimelineStrip.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>

namespace velmora::test {
namespace {

constexpr int kWaitMs = 60'000;
constexpr std::int64_t kSecond = 1'000'000;

/// "h264.mp4" has 4 s, sound, and a key frame each second.
class TimelineTest : public MainWindowTest {
protected:
    TimelineStrip& strip() { return outlet<TimelineStrip>("mTimeline"); }
    QAction& action(const char* name) { return outlet<QAction>(name); }
    const TimelineModel& model() { return strip().model(); }
    bool isSoundKnown() { return model().levels(4)[3].has_value(); }
    void load(const char* name = "h264.mp4") {
        dropOnPreview(media(name));
        ASSERT_TRUE(QTest::qWaitFor([this] { return !model().keyFrames().empty(); }, kWaitMs));
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers) {
        controller_.mainWin().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&controller_.mainWin()));
        QTest::keyClick(controller_.mainWin().windowHandle(), which, modifiers);
    }
};

TEST_F(TimelineTest, atFirst_isShownAndEmpty) {
    EXPECT_TRUE(strip().isVisible());
    EXPECT_TRUE(action("actionTimeline").isChecked());
    EXPECT_EQ(model().lengthUs(), 0);
    EXPECT_EQ(strip().focusPolicy(), Qt::NoFocus);
}

TEST_F(TimelineTest, liesUnderTheBarAndIsAsWide) {
    EXPECT_EQ(strip().width(), bar().width());
    EXPECT_EQ(strip().mapTo(&controller_.mainWin(), QPoint()).x(),
              bar().mapTo(&controller_.mainWin(), QPoint()).x());
    EXPECT_GT(strip().mapTo(&controller_.mainWin(), QPoint()).y(),
              bar().mapTo(&controller_.mainWin(), QPoint()).y());
    EXPECT_EQ(strip().height(), 40);
}

TEST_F(TimelineTest, loadedVideo_isAllThere) {
    load();
    EXPECT_NEAR(static_cast<double>(model().lengthUs()), 4.0 * kSecond, 0.1 * kSecond);
    EXPECT_EQ(model().keyFrames(), KeyFrames({0, kSecond, 2 * kSecond, 3 * kSecond}));
    EXPECT_TRUE(QTest::qWaitFor([this] { return isSoundKnown(); }, kWaitMs));
    EXPECT_EQ(model().markBeginUs(), 0);
    EXPECT_NEAR(static_cast<double>(model().markEndUs()), static_cast<double>(model().lengthUs()),
                1000);
}

TEST_F(TimelineTest, nextVideo_takesThePlace) {
    load();
    strip().zoomIn();
    dropOnPreview(media("video-only.mp4"));
    EXPECT_TRUE(model().keyFrames().empty());
    EXPECT_FALSE(model().isZoomed());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !model().keyFrames().empty(); }, kWaitMs));
    EXPECT_FALSE(isSoundKnown()); // it has none
}

TEST_F(TimelineTest, movesOfTheBar_moveThePosition) {
    load();
    bar().moveByUser(50);
    EXPECT_NEAR(static_cast<double>(model().positionUs()), 2.0 * kSecond, 0.05 * kSecond);
}

TEST_F(TimelineTest, click_movesTheBar) {
    load();
    QTest::mouseClick(&strip(), Qt::LeftButton, {}, QPoint(strip().width() / 4, 20));
    EXPECT_NEAR(bar().doubleValue(), 25, 0.5);
    EXPECT_NEAR(controller_.labelValue(), 1.0, 0.05);
    EXPECT_NEAR(model().xOf(model().positionUs()), strip().width() / 4.0, 1);
}

TEST_F(TimelineTest, marks_areShownAsSetAndAsTyped) {
    load();
    markStart(25);
    markEnd(75);
    EXPECT_NEAR(static_cast<double>(model().markBeginUs()), 1.0 * kSecond, 0.05 * kSecond);
    EXPECT_NEAR(static_cast<double>(model().markEndUs()), 3.0 * kSecond, 0.05 * kSecond);
    type("mLabelStart", "00:00:01.500");
    EXPECT_EQ(model().markBeginUs(), kSecond * 3 / 2);
}

TEST_F(TimelineTest, directPart_isShownAndSaidInThePanel) {
    load();
    type("mLabelStart", "00:00:01.500");
    type("mLabelEnd", "00:00:03.000");
    ASSERT_TRUE(QTest::qWaitFor([this] { return model().direct().has_value(); }, kWaitMs));
    EXPECT_EQ(model().direct()->beginUs, kSecond);
    EXPECT_EQ(model().direct()->endUs, kSecond * 5 / 2);
    QString hint;
    const InNextPanel panel(
        [&hint](QWidget& window) { hint = window.findChild<QLabel*>("mDirectHint")->text(); });
    press("mButtonCutterSetting");
    EXPECT_EQ(hint, "Copies the video as it is: fast and without loss. The cut begins at a key "
                    "frame.\nThis cut starts 0.5 s earlier, and ends as much earlier.");
}

TEST_F(TimelineTest, startAtAKeyFrame_saysNothingMore) {
    load();
    type("mLabelStart", "00:00:02.000");
    ASSERT_TRUE(QTest::qWaitFor([this] { return model().direct().has_value(); }, kWaitMs));
    EXPECT_TRUE(model().addedByDirect().isEmpty());
    QString hint;
    const InNextPanel panel(
        [&hint](QWidget& window) { hint = window.findChild<QLabel*>("mDirectHint")->text(); });
    press("mButtonCutterSetting");
    EXPECT_TRUE(hint.endsWith("The cut begins at a key frame.")) << hint.toStdString();
}

TEST_F(TimelineTest, menu_takesItAwayAndBringsItBack) {
    load();
    action("actionTimeline").trigger();
    EXPECT_FALSE(strip().isVisible());
    key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_FALSE(model().isZoomed());
    dropOnPreview(media("video-only.mp4"));
    EXPECT_FALSE(QTest::qWaitFor([this] { return !model().keyFrames().empty(); }, 400));
    action("actionTimeline").trigger();
    EXPECT_TRUE(strip().isVisible());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !model().keyFrames().empty(); }, kWaitMs));
}

TEST_F(TimelineTest, keys_zoomAroundThePosition) {
    load();
    bar().moveByUser(50);
    const double x = model().xOf(model().positionUs());
    key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_NEAR(static_cast<double>(model().viewEndUs() - model().viewBeginUs()),
                static_cast<double>(model().lengthUs()) / 2, 2);
    EXPECT_NEAR(model().xOf(model().positionUs()), x, 0.5);
    key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_FALSE(model().isZoomed());
    EXPECT_EQ(bar().maxValue(), 100); // the bar keeps showing the whole
    key(Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_TRUE(model().isZoomed());
}

TEST_F(TimelineTest, fullZoom_tellsPicturesApart) {
    load();
    bar().moveByUser(50);
    while (model().canZoomIn()) {
        strip().zoomIn();
    }
    ASSERT_TRUE(QTest::qWaitFor([this] { return !model().pictureTicks().empty(); }, kWaitMs));
    const std::vector<double> ticks = model().pictureTicks();
    ASSERT_GE(ticks.size(), 10U);
    for (std::size_t i = 1; i < ticks.size(); ++i) {
        EXPECT_NEAR(ticks[i] - ticks[i - 1], 12, 1.5);
    }
}

TEST_F(TimelineTest, joiner_hasNoneOfItsActions) {
    show("Video Joiner");
    EXPECT_FALSE(action("actionTimeline").isEnabled());
    EXPECT_FALSE(action("actionZoomIn").isEnabled());
    show("Video Cutter");
    EXPECT_TRUE(action("actionTimeline").isEnabled());
}

} // namespace
} // namespace velmora::test
