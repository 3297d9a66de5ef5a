// What cannot be loaded, or is one of two.

#include "CutterLoadSupport.h"

#include "AlertPanel.h"
#include "ConversionEngine.h"
#include "CustomSlider.h"
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

TEST_F(CutterLoadTest, invalidFile_dropped_alertsAndLeavesTheWindowReset) {
    dropOnPreview(video_);
    joinerFileList->push_back(std::make_shared<NodeInfo>());
    const QString file = textFile();
    EXPECT_EQ(alertsOf([&] { dropOnPreview(file); }), std::vector{plainAlert(kInvalid)});
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
    EXPECT_EQ(alertsOf([&] { choose({textFile()}); }), std::vector{plainAlert(kInvalid)});
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
    EXPECT_EQ(alertsOf([&] { dropOnPreview("/nowhere/a.mp4"); }),
              std::vector{plainAlert(kInvalid)});
}

TEST_F(CutterLoadTest, folder_alerts) {
    const QString folder = QString::fromStdString(folder_.path().string());
    EXPECT_EQ(alertsOf([&] { dropOnPreview(folder); }), std::vector{plainAlert(kInvalid)});
}

TEST_F(CutterLoadTest, fileOfUnknownLength_alerts) {
    EXPECT_EQ(alertsOf([&] { dropOnPreview(media("raw.h264")); }),
              std::vector{plainAlert(kInvalid)});
    EXPECT_LT(ConversionEngine::instance().durationSeconds, 0);
    EXPECT_TRUE(cutterFileList->empty());
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
        if (++shownPasses == 3) {
            controller_.mainWin().close();
        }
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
        if (!isAnswered) {
            alertPanel()->close();
        }
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
              std::vector{plainAlert(kInvalid)});
    EXPECT_EQ(log_.count("get path:" + video_), 0);
}

TEST_F(CutterLoadTest, twoFilesChosen_secondInvalid_alertsOnceAndStops) {
    EXPECT_EQ(alertsOf([&] {
                  controller_.openFilePanelDidEnd({video_, textFile()}, 1);
              }),
              std::vector{plainAlert(kInvalid)});
    EXPECT_EQ(log_.count("get path:" + video_), 1);
}

} // namespace
} // namespace velmora::test
