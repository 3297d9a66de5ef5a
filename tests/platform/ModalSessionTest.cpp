#include "ModalSession.h"

#include "AlertPanel.h"
#include "Desktop.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QShortcut>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace velmora::test {
namespace {

/// A button that is a window of its own and counts its clicks.
class Window : public QPushButton {
public:
    Window() {
        connect(this, &QPushButton::clicked, [this] { ++clicks; });
    }
    int clicks = 0;
    int hides = 0;

protected:
    void hideEvent(QHideEvent* /*event*/) override { ++hides; }
};

class ModalSessionTest : public ::testing::Test {
protected:
    void SetUp() override { main_.show(); }

    Window main_;
    Window panel_;
};

TEST_F(ModalSessionTest, run_untilStopped_showsTheWindowAndBlocksTheOthers) {
    fromTheEventLoop([this] {
        EXPECT_TRUE(panel_.isVisible());
        EXPECT_EQ(modalWindow(), &panel_);
        clickOnScreen(main_);
        clickOnScreen(panel_);
        stopModal();
    });
    runModalForWindow(panel_);
    EXPECT_EQ(main_.clicks, 0);
    EXPECT_EQ(panel_.clicks, 1);
    EXPECT_EQ(modalWindow(), nullptr);
}

TEST_F(ModalSessionTest, stop_leavesTheWindowOnScreenAndTheOthersFree) {
    fromTheEventLoop([] { stopModal(); });
    runModalForWindow(panel_);
    EXPECT_TRUE(panel_.isVisible());
    EXPECT_TRUE(panel_.windowHandle()->isVisible());
    EXPECT_EQ(panel_.hides, 0);
    clickOnScreen(main_);
    clickOnScreen(panel_);
    EXPECT_EQ(main_.clicks, 1);
    EXPECT_EQ(panel_.clicks, 1);
}

TEST_F(ModalSessionTest, stop_keyboard_reachesTheOthersAfterwardsOnly) {
    int shortcuts = 0;
    const QShortcut shortcut(QKeySequence(Qt::CTRL | Qt::Key_O), &main_,
                             [&shortcuts] { ++shortcuts; });
    fromTheEventLoop([this] {
        QTest::keyClick(main_.windowHandle(), Qt::Key_Space);
        QTest::keyClick(main_.windowHandle(), Qt::Key_O, Qt::ControlModifier);
        stopModal();
    });
    runModalForWindow(panel_);
    EXPECT_EQ(main_.clicks, 0);
    EXPECT_EQ(shortcuts, 0);
    main_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main_));
    QTest::keyClick(main_.windowHandle(), Qt::Key_Space);
    QTest::keyClick(main_.windowHandle(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(main_.clicks, 1);
    EXPECT_EQ(shortcuts, 1);
}

TEST_F(ModalSessionTest, stop_handlerGoesOn_returnsOnlyAfterIt) {
    std::string order;
    fromTheEventLoop([&order] {
        stopModal();
        fromTheEventLoop([] { answerAlert("OK"); });
        runAlertPanel({}, "message", "OK", {});
        order += "handler ";
    });
    runModalForWindow(panel_);
    order += "returned";
    EXPECT_EQ(order, "handler returned");
}

TEST_F(ModalSessionTest, stop_handlerGoesOn_unblocksTheOthersAtOnce) {
    fromTheEventLoop([this] {
        stopModal();
        clickOnScreen(main_);
        EXPECT_EQ(main_.clicks, 1);
    });
    runModalForWindow(panel_);
    EXPECT_EQ(main_.clicks, 1);
}

TEST_F(ModalSessionTest, nested_stopped_leavesTheOuterOneInForce) {
    Window inner;
    fromTheEventLoop([this, &inner] {
        fromTheEventLoop([this, &inner] {
            EXPECT_EQ(modalWindow(), &inner);
            clickOnScreen(panel_);
            clickOnScreen(inner);
            stopModal();
            stopModal();
        });
        runModalForWindow(inner);
        EXPECT_EQ(modalWindow(), &panel_);
        EXPECT_EQ(panel_.clicks, 0);
        EXPECT_EQ(inner.clicks, 1);
        clickOnScreen(panel_);
        clickOnScreen(main_);
        clickOnScreen(inner);
        stopModal();
    });
    runModalForWindow(panel_);
    EXPECT_EQ(panel_.clicks, 1);
    EXPECT_EQ(inner.clicks, 1);
    EXPECT_EQ(main_.clicks, 0);
}

TEST_F(ModalSessionTest, nested_startedByTheHandlerThatStopped_blocksTheStoppedWindow) {
    Window progress;
    fromTheEventLoop([this, &progress] {
        stopModal();
        fromTheEventLoop([this] {
            clickOnScreen(panel_);
            clickOnScreen(main_);
            stopModal();
        });
        runModalForWindow(progress);
        EXPECT_EQ(modalWindow(), nullptr);
    });
    runModalForWindow(panel_);
    EXPECT_EQ(panel_.clicks, 0);
    EXPECT_EQ(main_.clicks, 0);
    clickOnScreen(panel_);
    EXPECT_EQ(panel_.clicks, 1);
}

TEST_F(ModalSessionTest, run_windowLeftOnScreen_blocksAgain) {
    for (int i = 0; i < 3; ++i) {
        fromTheEventLoop([this] {
            clickOnScreen(main_);
            clickOnScreen(panel_);
            stopModal();
        });
        runModalForWindow(panel_);
    }
    EXPECT_EQ(main_.clicks, 0);
    EXPECT_EQ(panel_.clicks, 3);
}

TEST_F(ModalSessionTest, run_alertOverThePanel_blocksThePanelUntilAnswered) {
    fromTheEventLoop([this] {
        fromTheEventLoop([this] {
            clickOnScreen(panel_);
            answerAlert("OK");
        });
        runAlertPanel("Error", "message", "OK", {});
        EXPECT_EQ(panel_.clicks, 0);
        clickOnScreen(panel_);
        clickOnScreen(main_);
        stopModal();
    });
    runModalForWindow(panel_);
    EXPECT_EQ(panel_.clicks, 1);
    EXPECT_EQ(main_.clicks, 0);
}

TEST_F(ModalSessionTest, run_windowsOfThePanel_takeInput) {
    auto child = std::make_unique<QDialog>(&panel_);
    QPushButton button(child.get());
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, [&clicks] { ++clicks; });
    fromTheEventLoop([&child, &button] {
        child->show();
        clickOnScreen(button);
        stopModal();
    });
    runModalForWindow(panel_);
    EXPECT_EQ(clicks, 1);
}

TEST_F(ModalSessionTest, stop_withoutASession_doesNothing) {
    stopModal();
    fromTheEventLoop([this] {
        clickOnScreen(main_);
        stopModal();
    });
    runModalForWindow(panel_);
    EXPECT_EQ(main_.clicks, 0);
}

TEST_F(ModalSessionTest, window_destroyedDuringItsSession_endsIt) {
    auto window = std::make_unique<QWidget>();
    fromTheEventLoop([&window] { window.reset(); });
    runModalForWindow(*window);
    clickOnScreen(main_);
    EXPECT_EQ(main_.clicks, 1);
}

TEST_F(ModalSessionTest, window_closedDuringItsSession_endsIt) {
    fromTheEventLoop([this] { panel_.close(); });
    runModalForWindow(panel_);
    EXPECT_FALSE(panel_.isVisible());
    clickOnScreen(main_);
    EXPECT_EQ(main_.clicks, 1);
}

TEST_F(ModalSessionTest, window_belongsToTheMainWindow_stillDoesAfterwards) {
    QDialog dialog(&main_);
    fromTheEventLoop([] { stopModal(); });
    runModalForWindow(dialog);
    EXPECT_EQ(dialog.windowHandle()->transientParent(), main_.windowHandle());
}

TEST_F(ModalSessionTest, application_exitsDuringASession_endsIt) {
    bool returned = false;
    fromTheEventLoop([this, &returned] {
        fromTheEventLoop([] { QCoreApplication::exit(3); });
        runModalForWindow(panel_);
        returned = true;
    });
    EXPECT_EQ(QCoreApplication::exec(), 3);
    EXPECT_TRUE(returned);
    clickOnScreen(main_);
    EXPECT_EQ(main_.clicks, 1);
}

TEST_F(ModalSessionTest, application_asksAllToCloseDuringASession_quits) {
    bool returned = false;
    fromTheEventLoop([this, &returned] {
        fromTheEventLoop([] { QCoreApplication::quit(); });
        runModalForWindow(panel_);
        returned = true;
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(returned);
    EXPECT_FALSE(panel_.isVisible());
}

} // namespace
} // namespace velmora::test
