// What changes on a bar is seen without anybody asking for it.

#include "CustomSlider.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QScreen>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// An enabled bar from 0 to 100 that is on screen.
class CustomSliderRedrawTest : public ::testing::Test {
protected:
    void SetUp() override {
        bar_.initWithFrame(QRect(0, 0, 400, 26));
        bar_.awakeFromNib();
        bar_.setCustomSliderEnable(true);
        bar_.show();
        QApplication::processEvents();
    }

    void mouse(QEvent::Type type, void (CustomSlider::*handler)(const QMouseEvent&)) {
        const QPointF place(200, 13);
        (bar_.*handler)(QMouseEvent(type, place, place, place, Qt::LeftButton, Qt::LeftButton, {}));
    }
    QImage onScreen() { return bar_.screen()->grabWindow(bar_.winId()).toImage(); }

    CustomSlider bar_;
};

TEST_F(CustomSliderRedrawTest, value_set_isSeen) {
    const QImage before = onScreen();
    bar_.setDoubleValue(50);
    QApplication::processEvents();
    EXPECT_NE(onScreen(), before);
}

TEST_F(CustomSliderRedrawTest, mouseUp_showsTheRestingKnobAtOnce) {
    bar_.setDoubleValue(50);
    QApplication::processEvents();
    const QImage resting = onScreen();
    mouse(QEvent::MouseButtonPress, &CustomSlider::mouseDown);
    QApplication::processEvents();
    ASSERT_NE(onScreen(), resting);
    mouse(QEvent::MouseButtonRelease, &CustomSlider::mouseUp);
    EXPECT_EQ(onScreen(), resting);
}

} // namespace
} // namespace velmora::test
