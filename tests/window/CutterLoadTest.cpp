#include "CutterLoadSupport.h"

#include "AlertPanel.h"
#include "ConversionEngine.h"
#include "CustomSlider.h"
#include "OpenWatch.h"
#include "SharedState.h"
#include "customImageView.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace velmora::test {
namespace {

TEST_F(CutterLoadTest, openPanel_choosesFilesOfAnyKindAsASheet) {
    press("mButtonCutterAdd");
    EXPECT_TRUE(isPanelOpen());
    choose({video_});
    expectLoaded(video_);
}

TEST_F(CutterLoadTest, openPanel_cancelled_changesNothing) {
    const auto list = cutterFileList;
    controller_.openFilePanelDidEnd({video_}, 0);
    EXPECT_EQ(cutterFileList, list);
    EXPECT_EQ(controller_.filename(), "");
}

TEST_F(CutterLoadTest, openPanel_completedByOk_loads) {
    controller_.openFilePanelDidEnd({video_}, 1);
    expectLoaded(video_);
}

TEST_F(CutterLoadTest, drop_onPreview_loads) {
    dropOnPreview(video_);
    expectLoaded(video_);
}

TEST_F(CutterLoadTest, drop_logsInOrder) {
    log_.clear();
    dropOnPreview(video_);
    const QStringList expected{"take mousedown:" + video_, "get path:" + video_, "endtime:4.000000",
                               "duration:4.000000 s(4000000)", "add file:1"};
    QStringList logged;
    for (const QString& line : log_.all()) {
        if (expected.contains(line)) {
            logged.append(line);
        }
    }
    EXPECT_EQ(logged, expected) << log_.all().join('\n').toStdString();
}

TEST_F(CutterLoadTest, drop_ofSeveral_loadsTheFirst) {
    EXPECT_TRUE(dropFiles(preview(), {video_, media("h264.mp4")}));
    expectLoaded(video_);
}

TEST_F(CutterLoadTest, drop_anyExtension_isTried) {
    const QString named = QString::fromStdString(folder_ / "video.txt");
    ASSERT_TRUE(QFile::copy(video_, named));
    dropOnPreview(named);
    ASSERT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(cutterFileList->front()->outFromat, "txt");
}

TEST_F(CutterLoadTest, fileNamedInAnyScript_loads) {
    const QString named = QString::fromStdString(folder_ / "Ünïcödé 日本 %s #1?.mp4");
    ASSERT_TRUE(QFile::copy(video_, named));
    dropOnPreview(named);
    ASSERT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(cutterFileList->front()->inputFile, named);
    EXPECT_TRUE(log_.contains("get path:" + named));
}

TEST_F(CutterLoadTest, emptyPreview_clicked_opensThePanel) {
    log_.clear();
    QTest::mouseClick(&preview(), Qt::LeftButton, {}, QPoint(3, 3));
    EXPECT_TRUE(isPanelOpen());
    EXPECT_TRUE(log_.contains("take mousedown:(null)"));
    EXPECT_TRUE(log_.contains("add file:0"));
}

TEST_F(CutterLoadTest, emptyPreview_invitationClicked_opensThePanel) {
    press("mButtonSetImage");
    EXPECT_TRUE(isPanelOpen());
}

TEST_F(CutterLoadTest, loadedPreview_clicked_doesNothing) {
    dropOnPreview(video_);
    QTest::mouseClick(&preview(), Qt::LeftButton);
    controller_.button_load_image();
    EXPECT_FALSE(isPanelOpen());
}

TEST_F(CutterLoadTest, load_showsTheFirstPictureStretchedToTheVideosProportions) {
    dropOnPreview(video_);
    EXPECT_EQ(QFileInfo("/tmp/pic.bmp").size(), 54 + 320 * 240 * 3);
    EXPECT_EQ(shown(), QImage("/tmp/pic.bmp").convertToFormat(QImage::Format_RGB32));
    EXPECT_EQ(preview().imageScaling(), 1);
    EXPECT_NEAR(preview().width() * 180.0 / preview().height(), 320, 2);
    EXPECT_FALSE(outlet("mAddFileToolTip").isVisible());
    EXPECT_FALSE(outlet("mButtonSetImage").isVisible());
    EXPECT_EQ(outlet("mButtonSetImage").toolTip(), "");
    EXPECT_TRUE(bar().customSliderEnable());
}

TEST_F(CutterLoadTest, load_startsAllSharedStateAfresh) {
    joinerFileList->push_back(std::make_shared<NodeInfo>());
    const auto setting = currentSetting;
    dropOnPreview(video_);
    dropOnPreview(media("h264.mp4"));
    EXPECT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(cutterFileList->front()->inputFile, media("h264.mp4"));
    EXPECT_TRUE(joinerFileList->empty());
    EXPECT_NE(currentSetting, setting);
    EXPECT_EQ(sharedFileList, cutterFileList);
}

TEST_F(CutterLoadTest, load_resetsBarAndAnchors) {
    dropOnPreview(video_);
    markStart(20);
    markEnd(80);
    dropOnPreview(video_);
    EXPECT_EQ(bar().doubleValue(), 0);
    EXPECT_EQ(bar().anchorLeft(), -1);
    EXPECT_EQ(bar().anchorRight(), -1);
    EXPECT_EQ(bar().butIndex(), 0);
    expectLoaded(video_);
}

TEST_F(CutterLoadTest, load_again_takesTheInvitationsTooltipAwayAgain) {
    dropOnPreview(video_);
    dropOnPreview(video_);
    EXPECT_EQ(outlet("mButtonSetImage").toolTip(), "");
}

TEST_F(CutterLoadTest, load_again_showsTheFirstPictureAgain) {
    const QString video = media("h264.mp4"); // a key picture each second
    dropOnPreview(video);
    const QImage first = shown();
    bar().moveByUser(50);
    ASSERT_NE(shown(), first);
    dropOnPreview(video);
    EXPECT_EQ(shown(), first);
}

TEST_F(CutterLoadTest, soundWithoutPictures_loads) {
    dropOnPreview(media("audio-only.wav"));
    ASSERT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(cutterFileList->front()->resolution, "0x0");
    EXPECT_NEAR(preview().width() * 9.0 / 16.0, preview().height(), 1.0);
    EXPECT_EQ(text("mLabelEnd"), "00:00:02.000");
}

TEST_F(CutterLoadTest, frameRate_isTheQuotient) {
    dropOnPreview(media("h264-2997.mp4"));
    EXPECT_FLOAT_EQ(cutterFileList->front()->frame_rate, static_cast<float>(30000.0 / 1001));
}

// Each load subscribes to the bar once more, but only the first of them has a picture to show.
TEST_F(CutterLoadTest, scrubbing_afterManyLoads_writesAndReadsOnePictureAMove) {
    controller_.firstLoadVideo(video_);
    const OpenWatch picture("/tmp/pic.bmp");
    bar().moveByUser(30);
    const int once = picture.openings();
    EXPECT_GE(once, 2);
    for (int load = 0; load < 40; ++load) {
        controller_.firstLoadVideo(video_);
    }
    picture.openings();
    bar().moveByUser(40);
    EXPECT_EQ(picture.openings(), once);
}

} // namespace
} // namespace velmora::test
