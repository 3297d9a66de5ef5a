#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "OpenedUrls.h"
#include "SharedState.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QUrl>

namespace velmora::test {
namespace {

class CutterStartTest : public MainWindowTest {
protected:
    void load() { dropOnPreview(media("video-only.mp4")); }

    /// Presses "Start cut" and does `inPanel` with the panel that then is in its modal session.
    bool startCut(const std::function<void(QWidget&)>& inPanel) {
        const InNextPanel panel(inPanel);
        press("mButtonCutterSetting");
        return panel.hasOpened();
    }

    OpenedUrls opened_;
};

TEST_F(CutterStartTest, start_withoutVideo_asksForOne) {
    EXPECT_EQ(alertsOf([this] { press("mButtonCutterSetting"); }),
              std::vector{errorAlert("Please add video file first!")});
    EXPECT_TRUE(log_.contains("Video Cutter"));
}

TEST_F(CutterStartTest, start_opensThePanelModally) {
    load();
    EXPECT_TRUE(startCut([this](QWidget& panel) {
        EXPECT_EQ(panel.windowTitle(), "Cutter Setting");
        EXPECT_TRUE(panel.isVisible());
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField2")->text(), "video-only");
        press("mButtonCutterAdd"); // blocked
        EXPECT_FALSE(isPanelOpen());
    }));
    EXPECT_EQ(modalWindow(), nullptr);
}

TEST_F(CutterStartTest, start_takesTheTypedTimes) {
    load();
    type("mLabelStart", "00:00:01.250");
    type("mLabelEnd", "0:0:3.5");
    outlet<QLineEdit>("mLabelDuration").clear();
    EXPECT_TRUE(startCut([](QWidget&) {}));
    EXPECT_EQ(currentSetting->cutStartTime, 1250.0F);
    EXPECT_EQ(currentSetting->cutEndTime, 3005.0F);
    EXPECT_EQ(text("mLabelDuration"), "00:00:01.755");
}

TEST_F(CutterStartTest, start_again_opensTheSamePanelWithItsFieldsKept) {
    load();
    const QWidget* first = nullptr;
    EXPECT_TRUE(startCut([&first](QWidget& panel) {
        first = &panel;
        panel.findChild<QLineEdit*>("mTextField1")->setText("/out");
        panel.findChild<QLineEdit*>("mTextField2")->setText("mine");
    }));
    dropOnPreview(media("h264.mp4"));
    EXPECT_TRUE(startCut([&first](QWidget& panel) {
        EXPECT_EQ(&panel, first);
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField1")->text(), "/out");
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField2")->text(), "mine");
    }));
}

TEST_F(CutterStartTest, start_lengthOfZero_opensThePanel) {
    load();
    type("mLabelStart", "00:00:02.000");
    type("mLabelEnd", "00:00:02.000");
    outlet<QLineEdit>("mLabelDuration").clear();
    EXPECT_EQ(alertsOf([this] { EXPECT_TRUE(startCut([](QWidget&) {})); }),
              std::vector<SeenAlert>());
    EXPECT_EQ(text("mLabelDuration"), "00:00:00.000");
}

TEST_F(CutterStartTest, start_sourceOfUnknownLength_asksForAVideo) {
    alertsOf([this] { dropOnPreview(media("raw.h264")); });
    ASSERT_LT(controller_.duration(), 0);
    EXPECT_EQ(alertsOf([this] { EXPECT_FALSE(startCut([](QWidget&) {})); }),
              std::vector{errorAlert("Please add video file first!")});
}

TEST_F(CutterStartTest, start_endBeforeStart_saysSo) {
    load();
    type("mLabelStart", "00:00:03.000");
    type("mLabelEnd", "00:00:01.000");
    EXPECT_EQ(alertsOf([this] { press("mButtonCutterSetting"); }),
              std::vector{plainAlert("incorrect time format(e.g. xx:xx:xx.xxx)!")});
    EXPECT_EQ(modalWindow(), nullptr);
}

TEST_F(CutterStartTest, start_endThatIsNoTime_saysSo) {
    load();
    type("mLabelEnd", "never");
    EXPECT_EQ(alertsOf([this] { press("mButtonCutterSetting"); }),
              std::vector{plainAlert("incorrect time format(e.g. xx:xx:xx.xxx)!")});
    EXPECT_EQ(currentSetting->cutEndTime, -1.0F);
}

TEST_F(CutterStartTest, start_startThatIsNoTime_saysSo) {
    load();
    type("mLabelStart", "now");
    EXPECT_EQ(alertsOf([this] { EXPECT_FALSE(startCut([](QWidget&) {})); }),
              std::vector{plainAlert("incorrect time format(e.g. xx:xx:xx.xxx)!")});
    EXPECT_EQ(currentSetting->cutStartTime, -1.0F);
    EXPECT_EQ(currentSetting->cutEndTime, 4000.0F);
}

TEST_F(CutterStartTest, cut_fromLoadToFile_writesTheStretch) {
    dropOnPreview(media("h264.mp4"));
    markStart(25);
    markEnd(75);
    const QString out = QString::fromStdString(folder_ / "h264.mp4");
    std::vector<SeenAlert> alerts;
    EXPECT_TRUE(startCut([&](QWidget& panel) {
        panel.findChild<QLineEdit*>("mTextField1")
            ->setText(QString::fromStdString(folder_.path().string()));
        alerts = alertsOf([&panel] {
            QTest::mouseClick(panel.findChild<QPushButton*>("mButStartCut"), Qt::LeftButton);
        });
    }));
    EXPECT_EQ(alerts, std::vector{plainAlert("Congratulations! file has completed!")});
    EXPECT_EQ(cutterFileList->front()->converteState, Completed);
    const auto format = ffprobeJson(out.toStdString(), {"-show_format"}).at("format");
    EXPECT_NEAR(std::stod(format.at("duration").get<std::string>()), 2.0, 0.15);
}

TEST_F(CutterStartTest, play_withoutVideo_opensThePanel) {
    press("mButtonPlay");
    EXPECT_TRUE(isPanelOpen());
    EXPECT_TRUE(opened_.urls().isEmpty());
}

TEST_F(CutterStartTest, play_opensTheSourceInTheDesktopsPlayer) {
    load();
    press("mButtonPlay");
    EXPECT_EQ(opened_.urls(), QList{QUrl::fromLocalFile(media("video-only.mp4"))});
    EXPECT_TRUE(log_.contains("name:" + media("video-only.mp4")));
}

TEST_F(CutterStartTest, windowClosedUnderAModelessPanel_endsTheProgram) {
    load();
    startCut([](QWidget& panel) {
        // A refused start leaves the panel on screen, where it blocks nothing.
        fromTheEventLoop([] { answerAlert("OK"); });
        QTest::mouseClick(panel.findChild<QPushButton*>("mButStartCut"), Qt::LeftButton);
        panel.show();
    });
    QTimer::singleShot(0, &controller_, [this] { controller_.mainWin().close(); });
    EXPECT_EQ(QApplication::exec(), 0);
}

} // namespace
} // namespace velmora::test
