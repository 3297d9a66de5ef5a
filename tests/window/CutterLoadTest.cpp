#include "AlertPanel.h"
#include "ConversionEngine.h"
#include "CustomSlider.h"
#include "MainWindowSupport.h"
#include "SharedState.h"
#include "customImageView.h"

#include <QApplication>
#include <QElapsedTimer>
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

const QString invalid = "File is invalid!";

/// Loading videos into the cutter. "video-only.mp4" has 320x180, 30 pictures per second, 4 s.
class CutterLoadTest : public MainWindowTest {
protected:
    const QString video_ = media("video-only.mp4");

    QString textFile() {
        writeFile(folder_.path() / "a.mp4", "no video");
        return QString::fromStdString(folder_ / "a.mp4");
    }

    void expectLoaded(const QString& path) {
        EXPECT_EQ(controller_.filename(), path);
        EXPECT_FLOAT_EQ(controller_.duration(), 4.0F);
        EXPECT_TRUE(controller_.addFileInitialized());
        EXPECT_EQ(text("mLabelStart"), "00:00:00.000");
        EXPECT_EQ(text("mLabelEnd"), "00:00:04.000");
        EXPECT_EQ(text("mLabelDuration"), "00:00:04.000");
        EXPECT_EQ(text("mLabelDrag"), "00:00:00.000/00:00:04.000");
        EXPECT_EQ(controller_.getTextFieldValueMs(1), 0);
        EXPECT_EQ(controller_.getTextFieldValueMs(2), 4000);
        EXPECT_EQ(currentSetting->cutStartTime, 0.0F);
        EXPECT_EQ(currentSetting->cutEndTime, 4000.0F);
        ASSERT_EQ(cutterFileList->size(), 1U);
        const NodeInfo& item = *cutterFileList->front();
        EXPECT_EQ(item.inputFile, path);
        EXPECT_EQ(item.inFromat, "");
        EXPECT_EQ(item.outFromat, "mp4");
        EXPECT_EQ(item.width, 320);
        EXPECT_EQ(item.height, 180);
        EXPECT_EQ(item.resolution, "320x180");
        EXPECT_EQ(item.frame_rate, 30.0F);
        EXPECT_EQ(item.duration, 4.0F);
        EXPECT_EQ(item.startTime, 0.0F);
        EXPECT_EQ(item.endTime, 4.0F);
        EXPECT_EQ(item.converteState, 0);
        EXPECT_EQ(item.isSeleted, 1);
        EXPECT_EQ(currentSetting->width, 320);
    }

    QImage shown() {
        QImage picture(320, 240, QImage::Format_RGB32);
        QPainter painter(&picture);
        preview().image().draw(painter, picture.rect());
        return picture;
    }
};

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
        if (expected.contains(line))
            logged.append(line);
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

TEST_F(CutterLoadTest, invalidFile_dropped_alertsAndLeavesTheWindowReset) {
    dropOnPreview(video_);
    joinerFileList->push_back(std::make_shared<NodeInfo>());
    const QString file = textFile();
    EXPECT_EQ(alertsOf([&] { dropOnPreview(file); }), std::vector{plainAlert(invalid)});
    EXPECT_TRUE(cutterFileList->empty());
    EXPECT_TRUE(joinerFileList->empty());
    EXPECT_TRUE(bar().customSliderEnable());
    EXPECT_TRUE(controller_.addFileInitialized());
    EXPECT_EQ(controller_.filename(), file);
    // The engine keeps the length of the video before.
    EXPECT_FLOAT_EQ(controller_.duration(), 4.0F);
    EXPECT_EQ(text("mLabelEnd"), "00:00:04.000"); // from before the test of the file
    EXPECT_EQ(bar().anchorLeft(), -1);
    const InNextPanel panel([](QWidget&) {});
    press("mButtonCutterSetting");
    EXPECT_TRUE(panel.hasOpened());
}

TEST_F(CutterLoadTest, invalidFile_chosen_alertsAndKeepsTheAnchors) {
    dropOnPreview(video_);
    markStart(20);
    press("mButtonCutterAdd");
    EXPECT_EQ(alertsOf([&] { choose({textFile()}); }), std::vector{plainAlert(invalid)});
    EXPECT_TRUE(cutterFileList->empty());
    EXPECT_EQ(bar().anchorLeft(), 20);
    EXPECT_EQ(text("mLabelEnd"), "00:00:04.000");
}

TEST_F(CutterLoadTest, invalidFile_chosen_alertsOverTheMiddleOfTheWindow) {
    controller_.mainWin().resize(640, 480);
    controller_.mainWin().move(150, 250);
    press("mButtonCutterAdd");
    controller_.mainWin().findChild<QFileDialog*>("openPanel")->move(0, 0);
    const auto alerts = alertsOf([&] { choose({textFile()}); });
    ASSERT_EQ(alerts.size(), 1U);
    const QPoint aside = alerts[0].middle - controller_.mainWin().geometry().center();
    EXPECT_LE(aside.manhattanLength(), 16);
}

TEST_F(CutterLoadTest, missingFile_alerts) {
    EXPECT_EQ(alertsOf([&] { dropOnPreview("/nowhere/a.mp4"); }), std::vector{plainAlert(invalid)});
}

TEST_F(CutterLoadTest, folder_alerts) {
    const QString folder = QString::fromStdString(folder_.path().string());
    EXPECT_EQ(alertsOf([&] { dropOnPreview(folder); }), std::vector{plainAlert(invalid)});
}

TEST_F(CutterLoadTest, fileOfUnknownLength_alerts) {
    EXPECT_EQ(alertsOf([&] { dropOnPreview(media("raw.h264")); }),
              std::vector{plainAlert(invalid)});
    EXPECT_LT(ConversionEngine::instance().durationSeconds, 0);
    EXPECT_TRUE(cutterFileList->empty());
}

TEST_F(CutterLoadTest, soundWithoutPictures_loads) {
    dropOnPreview(media("audio-only.wav"));
    ASSERT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(cutterFileList->front()->resolution, "0x0");
    EXPECT_EQ(text("mLabelEnd"), "00:00:02.000");
}

TEST_F(CutterLoadTest, frameRate_isTheQuotient) {
    dropOnPreview(media("h264-2997.mp4"));
    EXPECT_FLOAT_EQ(cutterFileList->front()->frame_rate, static_cast<float>(30000.0 / 1001));
}

TEST_F(CutterLoadTest, twoFilesChosen_loadTheSecondUntilTheWindowIsClosed) {
    const QString second = media("h264.mp4");
    int shownPasses = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        // Other input is not taken: this click would open a panel.
        QTest::mouseClick(controller_.mainWin().windowHandle(), Qt::LeftButton, {},
                          outlet("mButtonCutterAdd").mapTo(&controller_.mainWin(), QPoint(9, 9)));
        EXPECT_FALSE(isPanelOpen());
        if (++shownPasses == 3)
            controller_.mainWin().close();
    });
    QTimer::singleShot(0, &controller_, [&] {
        watch.start(0);
        controller_.openFilePanelDidEnd({video_, second}, 1);
        EXPECT_TRUE(controller_.isTerminating());
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(log_.count("get path:" + video_), 1);
    EXPECT_GE(log_.count("get path:" + second), 2);
}

// A run that goes on behind a closed window ends at any time.
TEST_F(CutterLoadTest, twoFilesChosen_alertMeanwhile_canBeAnswered) {
    bool isAnswered = false;
    const auto answer = [&isAnswered] {
        clickOnScreen(*alertPanel()->defaultButton());
        isAnswered = !alertPanel();
        if (!isAnswered)
            alertPanel()->close();
    };
    const auto tell = [&] {
        fromTheEventLoop(answer);
        runAlertPanel({}, "File failed!", "OK", "");
        controller_.mainWin().close();
    };
    fromTheEventLoop([&] {
        fromTheEventLoop(tell);
        controller_.openFilePanelDidEnd({video_, media("h264.mp4")}, 1);
    });
    QApplication::exec();
    EXPECT_TRUE(isAnswered);
}

TEST_F(CutterLoadTest, twoFilesChosen_firstInvalid_stopsThere) {
    EXPECT_EQ(alertsOf([&] {
                  controller_.openFilePanelDidEnd({textFile(), video_}, 1);
              }),
              std::vector{plainAlert(invalid)});
    EXPECT_EQ(log_.count("get path:" + video_), 0);
}

TEST_F(CutterLoadTest, twoFilesChosen_secondInvalid_alertsOnceAndStops) {
    EXPECT_EQ(alertsOf([&] {
                  controller_.openFilePanelDidEnd({video_, textFile()}, 1);
              }),
              std::vector{plainAlert(invalid)});
    EXPECT_EQ(log_.count("get path:" + video_), 1);
}

TEST_F(CutterLoadTest, scrubbing_afterManyLoads_staysQuick) {
    for (int load = 0; load < 40; ++load)
        controller_.firstLoadVideo(video_);
    bar().moveByUser(40);
    QElapsedTimer timer;
    timer.start();
    for (int percent = 41; percent < 51; ++percent)
        bar().moveByUser(percent);
    EXPECT_LT(timer.elapsed() / 10, 100);
}

} // namespace
} // namespace velmora::test
