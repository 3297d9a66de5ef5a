// Where a panel opens. Frames are tested end to end, where there are some.

#include "PanelWindow.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

class PanelWindowPlaceTest : public ::testing::Test {
protected:
    PanelWindowPlaceTest() {
        owner_.setGeometry(100, 100, 400, 300);
        owner_.show();
        panel_.resize(100, 80);
    }
    void reopen() {
        panel_.close();
        panel_.show();
    }

    QWidget owner_;
    PanelWindow panel_{&owner_};
};

TEST_F(PanelWindowPlaceTest, first_opensOverItsOwner) {
    panel_.show();
    EXPECT_TRUE(owner_.frameGeometry().contains(panel_.frameGeometry()));
}

TEST_F(PanelWindowPlaceTest, again_opensWhereItWasLeft) {
    panel_.show();
    const QPoint first = panel_.pos();
    reopen();
    EXPECT_EQ(panel_.pos(), first);
    panel_.windowHandle()->setPosition(30, 40); // as a user does, by the window manager
    QApplication::processEvents();
    const QPoint moved = panel_.pos();
    ASSERT_NE(moved, first);
    reopen();
    EXPECT_EQ(panel_.pos(), moved);
    owner_.move(150, 150);
    reopen();
    EXPECT_EQ(panel_.pos(), moved);
}

TEST_F(PanelWindowPlaceTest, again_stillBelongsToItsOwner) {
    panel_.show();
    reopen();
    EXPECT_EQ(panel_.windowHandle()->transientParent(), owner_.windowHandle());
}

TEST_F(PanelWindowPlaceTest, again_withoutTheScreenItWasOn_opensOverItsOwner) {
    panel_.show();
    reopen();
    panel_.windowHandle()->setPosition(5000, 5000);
    QApplication::processEvents();
    reopen();
    EXPECT_TRUE(panel_.screen()->geometry().contains(panel_.frameGeometry()));
}

} // namespace
} // namespace velmora::test
