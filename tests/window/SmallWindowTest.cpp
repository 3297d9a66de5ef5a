// The main window on a small screen.

#include "MainWindowSupport.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

#include <string>

namespace velmora::test {
namespace {

/// What a screen of 1280x800 pixels leaves at a scale of 1.5, beside a panel of the desktop's and a
/// window's frame.
constexpr QSize kSmallRoom(840, 450);

class SmallWindowTest : public MainWindowTest {
protected:
    QList<QWidget*> controls() {
        QList<QWidget*> found;
        for (QWidget* const widget : controller_.mainWin().findChildren<QWidget*>()) {
            const bool shown = qobject_cast<QPushButton*>(widget) ||
                               qobject_cast<QLineEdit*>(widget) || qobject_cast<QLabel*>(widget) ||
                               widget == &bar();
            if (shown && widget->isVisible() && widget->parentWidget() != &table()) {
                found.append(widget);
            }
        }
        return found;
    }
    QRect place(const QWidget& widget) {
        return {widget.mapTo(&controller_.mainWin(), QPoint()), widget.size()};
    }
    /// Each control that overlaps another, is cut off, or smaller than what it says.
    std::string faults() {
        std::string all;
        const QList<QWidget*> shown = controls();
        for (QWidget* const a : shown) {
            if (!controller_.mainWin().rect().contains(place(*a))) {
                all += a->objectName().toStdString() + " is cut off; ";
            }
            if (a->width() < a->minimumSizeHint().width()) {
                all += a->objectName().toStdString() + " is too narrow; ";
            }
            for (QWidget* const b : shown) {
                if (a < b && place(*a).intersects(place(*b))) {
                    all += a->objectName().toStdString() + " over " +
                           b->objectName().toStdString() + "; ";
                }
            }
        }
        return all;
    }
    void shrink() {
        controller_.mainWin().resize(1, 1);
        QApplication::processEvents();
    }
};

TEST_F(SmallWindowTest, smallest_fitsOnASmallScreen) {
    shrink();
    EXPECT_LE(controller_.mainWin().width(), kSmallRoom.width());
    EXPECT_LE(controller_.mainWin().height(), kSmallRoom.height());
}

TEST_F(SmallWindowTest, smallestEmpty_hasRoomForAll) {
    shrink();
    EXPECT_EQ(faults(), "");
}

TEST_F(SmallWindowTest, smallestLoaded_hasRoomForAll) {
    dropOnPreview(media("h264.mp4"));
    shrink();
    EXPECT_EQ(faults(), "");
    EXPECT_GE(preview().height(), 100);
}

TEST_F(SmallWindowTest, smallestJoiner_hasRoomForAll) {
    show("Video Joiner");
    shrink();
    EXPECT_EQ(faults(), "");
}

TEST_F(SmallWindowTest, opened_leavesRoomForAFrameOnTheScreen) {
    const QSize screen = controller_.mainWin().screen()->availableSize();
    ASSERT_LT(screen.width(), 912); // else this tells nothing
    EXPECT_LT(controller_.mainWin().width(), screen.width());
    EXPECT_LT(controller_.mainWin().height(), screen.height());
}

} // namespace
} // namespace velmora::test
