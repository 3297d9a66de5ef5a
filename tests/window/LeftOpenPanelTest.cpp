// A start that is refused leaves its panel on screen, where it blocks nothing.

#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "SharedState.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include <string>

namespace velmora::test {
namespace {

class LeftOpenPanelTest : public MainWindowTest {
protected:
    QWidget& panel(const char* name) { return outlet(name); }
    QWidget& cutterPanel() { return panel("mCutterSettingWin"); }
    QWidget& joinerPanel() { return panel("mJoinerSettingWin"); }

    /// Opens the panel with the main window's `button` and has its `start` refused.
    void leaveOpen(const char* button, const char* start) {
        QTimer::singleShot(0, &controller_, [start] {
            auto* const startButton = modalWindow()->findChild<QPushButton*>(start);
            alertsOf([startButton] { QTest::mouseClick(startButton, Qt::LeftButton); });
        });
        press(button);
    }
    void leaveCutterPanelOpen() {
        dropOnPreview(media("h264.mp4"));
        leaveOpen("mButtonCutterSetting", "mButStartCut");
        ASSERT_TRUE(cutterPanel().isVisible());
        ASSERT_EQ(modalWindow(), nullptr);
    }
    void leaveJoinerPanelOpen() {
        show("Video Joiner");
        controller_.tableViewAcceptDrop({media("h264.mp4")});
        controller_.tableViewAcceptDrop({media("h264.mp4")});
        leaveOpen("mButtonJoinerSetting", "mButStartJoin");
        ASSERT_TRUE(joinerPanel().isVisible());
        ASSERT_EQ(modalWindow(), nullptr);
    }
};

TEST_F(LeftOpenPanelTest, nothingChanged_startsAtOnce) {
    leaveCutterPanelOpen();
    cutterPanel()
        .findChild<QLineEdit*>("mTextField1")
        ->setText(QString::fromStdString(folder_.path().string()));
    const auto alerts = alertsOf([this] {
        QTest::mouseClick(cutterPanel().findChild<QPushButton*>("mButStartCut"), Qt::LeftButton);
    });
    EXPECT_EQ(alerts, std::vector{plainAlert("Congratulations! file has completed!")});
}

TEST_F(LeftOpenPanelTest, cutter_workspaceSwitched_closes) {
    leaveCutterPanelOpen();
    show("Video Joiner");
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_workspaceClickedThatIsOnShow_stays) {
    leaveCutterPanelOpen();
    show("Video Cutter");
    EXPECT_TRUE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_anotherVideoDropped_closes) {
    leaveCutterPanelOpen();
    dropOnPreview(media("video-only.mp4"));
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_anotherVideoChosen_closes) {
    leaveCutterPanelOpen();
    press("mButtonCutterAdd");
    choose({media("video-only.mp4")});
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_failedLoad_closes) {
    leaveCutterPanelOpen();
    alertsOf([this] { dropOnPreview(QString::fromStdString(folder_ / "missing.mp4")); });
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_startTyped_closes) {
    leaveCutterPanelOpen();
    type("mLabelStart", "00:00:01.000");
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_endTypedThatIsNoTime_closes) {
    leaveCutterPanelOpen();
    type("mLabelEnd", "never");
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_sameTimeTypedInAnotherWay_stays) {
    leaveCutterPanelOpen();
    auto& start = outlet<QLineEdit>("mLabelStart");
    start.setFocus();
    start.setCursorPosition(0);
    QTest::keyClicks(&start, "0");
    EXPECT_EQ(start.text(), "000:00:00.000");
    EXPECT_TRUE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_startSet_closes) {
    leaveCutterPanelOpen();
    press("mButtonLeft");
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_endSet_closes) {
    leaveCutterPanelOpen();
    press("mButtonRight");
    EXPECT_FALSE(cutterPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, cutter_closedWithItsEditor_leavesTheSettingOfTheNewVideo) {
    leaveCutterPanelOpen();
    cutterPanel().findChild<QRadioButton*>("mRadioReencode")->click();
    bool seen = false;
    QTimer::singleShot(0, &controller_, [this, &seen] {
        seen = modalWindow() && modalWindow()->objectName() == "SettingFrom";
        controller_.mouseDownListener(media("two-h264.mp4"));
        EXPECT_EQ(modalWindow(), nullptr);
        EXPECT_FALSE(panel("SettingFrom").isVisible());
        if (modalWindow()) {
            modalWindow()->close(); // else the test would wait for ever
        }
    });
    cutterPanel().findChild<QPushButton*>("mButCustomize")->click();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(cutterPanel().isVisible());
    EXPECT_EQ(currentSetting->cutEndTime, 3000.0F); // of the new video, the other has 4 s
    press("mButtonCutterAdd");
    EXPECT_TRUE(isPanelOpen()); // nothing is blocked
}

TEST_F(LeftOpenPanelTest, cutter_closedWithItsFolderPanel_blocksNothing) {
    leaveCutterPanelOpen();
    cutterPanel().findChild<QPushButton*>("mButBrowse")->click();
    controller_.mouseDownListener(media("video-only.mp4"));
    QApplication::processEvents();
    EXPECT_FALSE(cutterPanel().isVisible());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(LeftOpenPanelTest, cutter_closed_opensForTheNewVideo) {
    leaveCutterPanelOpen();
    dropOnPreview(media("mpeg2.mpg"));
    QString path;
    const InNextPanel next([&path](QWidget& panel) {
        panel.findChild<QLineEdit*>("mTextField1")->setText("/out");
        path = panel.findChild<QWidget*>("mResultPath")->accessibleDescription();
    });
    press("mButtonCutterSetting");
    EXPECT_TRUE(next.hasOpened());
    EXPECT_EQ(path, "/out/h264.mpg"); // the name stays, the extension is the new video's
}

TEST_F(LeftOpenPanelTest, joiner_workspaceSwitched_closes) {
    leaveJoinerPanelOpen();
    show("Video Cutter");
    EXPECT_FALSE(joinerPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, joiner_videoLoadedIntoTheCutter_closes) {
    leaveJoinerPanelOpen();
    controller_.mouseDownListener(media("video-only.mp4"));
    EXPECT_FALSE(joinerPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, joiner_videoAdded_closes) {
    leaveJoinerPanelOpen();
    press("mButtonJoinerAdd");
    choose({media("h264.mp4")});
    EXPECT_FALSE(joinerPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, joiner_videoDropped_closes) {
    leaveJoinerPanelOpen();
    ASSERT_TRUE(dropFiles(*table().viewport(), {media("h264.mp4")}));
    EXPECT_FALSE(joinerPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, joiner_invalidFileNotAdded_stays) {
    leaveJoinerPanelOpen();
    const QString missing = QString::fromStdString(folder_ / "missing.mp4");
    EXPECT_EQ(alertsOf([&] { controller_.tableViewAcceptDrop({missing}); }).size(), 1U);
    EXPECT_TRUE(joinerPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, joiner_videoRemoved_closes) {
    leaveJoinerPanelOpen();
    table().selectRow(0);
    press("mButtonJoinerRemove");
    EXPECT_EQ(joinerFileList->size(), 1U);
    EXPECT_FALSE(joinerPanel().isVisible());
}

TEST_F(LeftOpenPanelTest, joiner_nothingSelectedToRemove_stays) {
    leaveJoinerPanelOpen();
    table().clearSelection();
    press("mButtonJoinerRemove");
    EXPECT_TRUE(joinerPanel().isVisible());
}

} // namespace
} // namespace velmora::test
