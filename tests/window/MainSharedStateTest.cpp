// The two workspaces, the state that they share, and what sets it back.

#include "MainSetUpSupport.h"
#include "NotificationCenter.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <utility>

namespace velmora::test {
namespace {

TEST_F(MainSetUpTest, workspaceSwitch_changesViewAndSharedList) {
    show("Video Joiner");
    EXPECT_EQ(workspace(), &outlet("viewJoiner"));
    EXPECT_EQ(sharedFileList, joinerFileList);
    show("Video Cutter");
    EXPECT_EQ(workspace(), &outlet("viewCutter"));
    EXPECT_EQ(sharedFileList, cutterFileList);
}

TEST_F(MainSetUpTest, workspaceSwitch_thereAndBack_keepsBothLists) {
    addItem(cutterFileList);
    addItem(joinerFileList);
    show("Video Joiner");
    show("Video Cutter");
    EXPECT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(joinerFileList->size(), 1U);
}

TEST_F(MainSetUpTest, workspaceSwitch_otherLabel_changesNothing) {
    outlet<QPushButton>("segmentVideoJoiner").setText("Video Mixer");
    show("Video Mixer");
    EXPECT_EQ(controller_.selectedSegmentLabel(), "Video Mixer");
    EXPECT_EQ(workspace(), &outlet("viewCutter"));
    EXPECT_EQ(sharedFileList, cutterFileList);
}

TEST_F(MainSetUpTest, workspaces_areToldApartByLabelNotByPlace) {
    outlet<QPushButton>("segmentVideoCutter").setText("Video Joiner");
    outlet<QPushButton>("segmentVideoJoiner").setText("Video Cutter");
    controller_.button_segSelected();
    EXPECT_EQ(workspace(), &outlet("viewJoiner"));
}

TEST_F(MainSetUpTest, workspaceSwitch_byArrowKey_works) {
    controller_.mainWin().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&controller_.mainWin()));
    outlet("segmentVideoCutter").setFocus();
    QTest::keyClick(&outlet("segmentVideoCutter"), Qt::Key_Right);
    EXPECT_EQ(workspace(), &outlet("viewJoiner"));
}

TEST_F(MainSetUpTest, setDefaultView_again_replacesAllSharedState) {
    const auto setting = currentSetting;
    const auto lists = std::pair(cutterFileList, joinerFileList);
    addItem(joinerFileList);
    controller_.setDefaultView();
    EXPECT_NE(currentSetting, setting);
    EXPECT_NE(cutterFileList, lists.first);
    EXPECT_NE(joinerFileList, lists.second);
    EXPECT_TRUE(joinerFileList->empty());
    EXPECT_EQ(sharedFileList, cutterFileList);
}

TEST_F(MainSetUpTest, setDefaultView_videoLoaded_isWithoutOneAgain) {
    ASSERT_TRUE(dropFiles(preview(), {media("video-only.mp4")}));
    ASSERT_TRUE(controller_.addFileInitialized());
    ASSERT_TRUE(bar().customSliderEnable());
    controller_.setDefaultView();
    EXPECT_FALSE(controller_.addFileInitialized());
    EXPECT_FALSE(bar().customSliderEnable());
}

TEST_F(MainSetUpTest, setDefaultView_joinerOnShow_showsTheCutter) {
    show("Video Joiner");
    ASSERT_EQ(workspace(), &outlet("viewJoiner"));
    controller_.setDefaultView();
    EXPECT_EQ(workspace(), &outlet("viewCutter"));
}

TEST_F(MainSetUpTest, setDefaultView_twiceMore_subscribesTwiceMore) {
    controller_.setDefaultView();
    controller_.setDefaultView();
    log_.clear();
    outlet<QLineEdit>("mLabelStart").setText("bad");
    NotificationCenter::defaultCenter().post("onTextDidChangeNotify", nullptr);
    EXPECT_EQ(log_.count("err out"), 3);
}

TEST_F(MainSetUpTest, oneScrubAfterTwoLoads_isHandledThreeTimes) {
    for (int load = 0; load < 2; ++load) {
        dropFiles(preview(), {media("video-only.mp4")});
    }
    auto& position = outlet<QLineEdit>("mLabelDrag");
    int times = 0;
    QObject::connect(&position, &QLineEdit::textChanged, [&](const QString& shown) {
        if (shown.isEmpty()) {
            return;
        }
        EXPECT_EQ(shown, "00:00:01.000/00:00:04.000");
        ++times;
        position.clear(); // so that the next time is a change as well
    });
    NotificationCenter::defaultCenter().post("customCrubbingBarChangedNotification", nullptr,
                                             {{"customCrubbingBarValue", 25.0}});
    EXPECT_EQ(times, 3);
}

} // namespace
} // namespace velmora::test
