#include "CutterSession.h"

#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "OpenedUrls.h"
#include "SharedState.h"
#include "WindowReading.h"

#include <QTest>

namespace velmora::test {
namespace {

/// A session in a window without a controller. "video-only.mp4" has 320x180 and 4 s.
class CutterSessionTest : public ::testing::Test {
protected:
    CutterSessionTest() { startAfresh(); }
    ~CutterSessionTest() override {
        cutterFileList.reset();
        currentSetting.reset();
    }

    void startAfresh() {
        ++starts_;
        nameAtStart_ = session_.filename();
        cutterFileList = std::make_shared<FileList>();
        currentSetting = std::make_shared<NodeSetting>();
        session_.unload();
        session_.viewValueReset();
        session_.createPanel();
    }
    void load() { session_.mouseDownListener(video_); }
    /// Puts the bar at `percent`, as the user's hand does.
    void moveTo(double percent) {
        bar_.setDoubleValue(percent);
        session_.scrubTo(percent);
    }
    void expectTimes(const char* start, const char* end, const char* length) const {
        EXPECT_EQ(startField_.text(), start);
        EXPECT_EQ(endField_.text(), end);
        EXPECT_EQ(length_.text(), length);
    }
    void expectMarks(std::int64_t startMs, std::int64_t endMs) const {
        EXPECT_EQ(session_.getTextFieldValueMs(1), startMs);
        EXPECT_EQ(session_.getTextFieldValueMs(2), endMs);
    }
    template <class Outlet> Outlet& outlet(const char* name) {
        return *window_.findChild<Outlet*>(name);
    }
    static QString media(const char* name) { return QString::fromStdString(mediaPath(name)); }

    const QString video_ = media("video-only.mp4");
    MainWindow window_;
    CustomSlider& bar_ = outlet<CustomSlider>("mCustomSlider");
    customImageView& image_ = outlet<customImageView>("mCustomImage");
    QLineEdit& startField_ = outlet<QLineEdit>("mLabelStart");
    QLineEdit& endField_ = outlet<QLineEdit>("mLabelEnd");
    QLineEdit& length_ = outlet<QLineEdit>("mLabelDuration");
    QLineEdit& position_ = outlet<QLineEdit>("mLabelDrag");
    int starts_ = 0;
    int asked_ = 0;
    int letRun_ = 0;
    int mostLetRun_ = 0; ///< when that often others have run, the window is closed
    QString nameAtStart_;
    CutterSession session_{window_,
                           {[this] { startAfresh(); }, [this] { ++asked_; },
                            [this] { return ++letRun_ < mostLetRun_; }}};
};

TEST_F(CutterSessionTest, droppedFile_startsAfreshOnceAndBecomesTheItem) {
    load();
    EXPECT_EQ(starts_, 2); // one is that of the window
    EXPECT_EQ(nameAtStart_, video_);
    EXPECT_TRUE(session_.isLoaded());
    EXPECT_EQ(session_.duration(), 4.0F);
    ASSERT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(cutterFileList->front()->inputFile, video_);
    EXPECT_EQ(currentSetting->width, 320);
    EXPECT_EQ(currentSetting->cutEndTime, 4000.0F);
    expectMarks(0, 4000);
    expectTimes("00:00:00.000", "00:00:04.000", "00:00:04.000");
    EXPECT_EQ(position_.text(), "00:00:00.000/00:00:04.000");
    EXPECT_TRUE(bar_.customSliderEnable());
    EXPECT_TRUE(outlet<QWidget>("mAddFileToolTip").isHidden());
    EXPECT_EQ(asked_, 0);
}

TEST_F(CutterSessionTest, droppedInvalidFile_alertsAndLeavesNoItem) {
    load();
    EXPECT_EQ(alertsOf([this] { session_.mouseDownListener("/nowhere.mp4"); }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_TRUE(cutterFileList->empty());
    EXPECT_EQ(session_.filename(), "/nowhere.mp4");
    EXPECT_TRUE(session_.isLoaded());
}

TEST_F(CutterSessionTest, clickOnTheEmptyPreview_asksForFiles) {
    session_.mouseDownListener(std::nullopt);
    EXPECT_EQ(asked_, 1);
    EXPECT_EQ(starts_, 1);
}

TEST_F(CutterSessionTest, oneFileChosen_isLoadedAndClearsTheBar) {
    bar_.setAnchorLeft(20);
    bar_.setButIndex(1);
    session_.loadChosenFiles({video_});
    EXPECT_EQ(cutterFileList->size(), 1U);
    EXPECT_EQ(endField_.text(), "00:00:04.000");
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.butIndex(), 0);
    EXPECT_EQ(letRun_, 0);
}

TEST_F(CutterSessionTest, twoFilesChosen_loadTheSecondAgainUntilTheWindowIsClosed) {
    mostLetRun_ = 3;
    session_.loadChosenFiles({media("h264.mp4"), video_});
    EXPECT_EQ(letRun_, 3);
    EXPECT_EQ(starts_ - 1, 3); // the first file once, and the second twice
    EXPECT_EQ(session_.filename(), video_);
}

TEST_F(CutterSessionTest, firstOfTwoChosenFilesIsInvalid_endsTheLoading) {
    mostLetRun_ = 3;
    EXPECT_EQ(alertsOf([this] {
                  session_.loadChosenFiles({"/nowhere.mp4", video_});
              }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(session_.filename(), "/nowhere.mp4");
    EXPECT_EQ(letRun_, 0);
}

TEST_F(CutterSessionTest, unload_leavesNameAndLength) {
    load();
    session_.unload();
    EXPECT_FALSE(session_.isLoaded());
    EXPECT_FALSE(bar_.customSliderEnable());
    EXPECT_EQ(session_.filename(), video_);
    EXPECT_EQ(session_.duration(), 4.0F);
}

TEST_F(CutterSessionTest, scrub_showsPositionAndPictureThere) {
    session_.mouseDownListener(media("h264.mp4"));
    const QImage first = pictureOfPreview(image_);
    session_.scrubTo(50);
    EXPECT_NEAR(session_.labelValue(), 2.0F, 0.05F);
    EXPECT_TRUE(position_.text().startsWith("00:00:02."));
    EXPECT_NE(pictureOfPreview(image_), first);
}

TEST_F(CutterSessionTest, showPosition_keepsThePicture) {
    session_.mouseDownListener(media("h264.mp4"));
    const QImage first = pictureOfPreview(image_);
    session_.showPosition(50);
    EXPECT_NEAR(session_.labelValue(), 2.0F, 0.05F);
    EXPECT_TRUE(position_.text().startsWith("00:00:02."));
    EXPECT_EQ(pictureOfPreview(image_), first);
}

TEST_F(CutterSessionTest, marks_goToTextsSettingAndBar) {
    load();
    moveTo(25);
    session_.markStart();
    moveTo(75);
    session_.markEnd();
    expectMarks(1000, 3000);
    expectTimes("00:00:01.000", "00:00:03.000", "00:00:02.000");
    EXPECT_EQ(currentSetting->cutStartTime, 1000.0F);
    EXPECT_EQ(currentSetting->cutEndTime, 3000.0F);
    EXPECT_EQ(bar_.anchorLeft(), 25);
    EXPECT_EQ(bar_.anchorRight(), 75);
    EXPECT_EQ(bar_.butIndex(), 2);
}

TEST_F(CutterSessionTest, startPastTheEnd_movesTextOfTheEndButNotTheSetting) {
    load();
    moveTo(50);
    session_.markEnd();
    moveTo(75);
    session_.markStart();
    expectTimes("00:00:03.000", "00:00:04.000", "00:00:01.000");
    EXPECT_EQ(currentSetting->cutEndTime, 2000.0F);
    EXPECT_EQ(bar_.anchorRight(), 50);
}

TEST_F(CutterSessionTest, endBeforeTheStart_movesTextOfTheStartButNotTheSetting) {
    load();
    moveTo(50);
    session_.markStart();
    moveTo(25);
    session_.markEnd();
    expectTimes("00:00:00.000", "00:00:01.000", "00:00:01.000");
    EXPECT_EQ(currentSetting->cutStartTime, 2000.0F);
    EXPECT_EQ(bar_.anchorLeft(), 50);
}

TEST_F(CutterSessionTest, marks_withoutVideo_areNotSet) {
    load();
    session_.unload();
    moveTo(50);
    session_.markStart();
    session_.markEnd();
    expectMarks(0, 4000);
    EXPECT_EQ(bar_.anchorLeft(), -1);
    EXPECT_EQ(bar_.anchorRight(), -1);
}

TEST_F(CutterSessionTest, typedTimes_changeTheShownLengthOnly) {
    load();
    startField_.setText("0:0:1.500");
    session_.timesTyped();
    EXPECT_EQ(length_.text(), "00:00:02.500");
    expectMarks(0, 4000);
    endField_.setText("soon");
    session_.timesTyped();
    EXPECT_EQ(length_.text(), "00:00:02.500");
}

TEST_F(CutterSessionTest, playAndInvitation_withoutVideo_askForOne) {
    const OpenedUrls opened;
    session_.play();
    session_.invite();
    EXPECT_EQ(asked_, 2);
    EXPECT_TRUE(opened.urls().isEmpty());
}

TEST_F(CutterSessionTest, play_opensTheVideo) {
    const OpenedUrls opened;
    load();
    session_.play();
    session_.invite();
    EXPECT_EQ(opened.urls(), QList<QUrl>{QUrl::fromLocalFile(video_)});
    EXPECT_EQ(asked_, 0);
}

TEST_F(CutterSessionTest, startCut_withoutVideo_alerts) {
    EXPECT_EQ(alertsOf([this] { session_.startCut(); }),
              std::vector{errorAlert("Please add video file first!")});
}

TEST_F(CutterSessionTest, startCut_ofTimesThatAreNone_alerts) {
    load();
    startField_.setText("soon");
    EXPECT_EQ(alertsOf([this] { session_.startCut(); }),
              std::vector{plainAlert("incorrect time format(e.g. xx:xx:xx.xxx)!")});
}

TEST_F(CutterSessionTest, startCut_opensThePanelWithNameAndTimes) {
    load();
    startField_.setText("0:0:1.250");
    const InNextPanel inPanel([this](QWidget& panel) {
        EXPECT_EQ(panel.windowTitle(), "Cutter Setting");
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField2")->text(), "video-only");
        EXPECT_EQ(length_.text(), "00:00:02.750");
    });
    session_.startCut();
    EXPECT_TRUE(inPanel.hasOpened());
    EXPECT_EQ(currentSetting->cutStartTime, 1250.0F);
}

/// A panel that a refused start has left on screen.
class LeftCutterPanelTest : public CutterSessionTest {
protected:
    void SetUp() override {
        load();
        fromTheEventLoop([this] {
            panel_ = modalWindow();
            stopModal(); // as a start does, before it is refused
        });
        session_.startCut();
        ASSERT_TRUE(panel_ && panel_->isVisible());
    }

    QWidget* panel_ = nullptr;
};

TEST_F(LeftCutterPanelTest, newMarks_closeIt) {
    session_.markStart();
    EXPECT_FALSE(panel_->isVisible());
}

TEST_F(LeftCutterPanelTest, typedTime_closesItWhenItIsAnother) {
    session_.timesTyped();
    EXPECT_TRUE(panel_->isVisible());
    endField_.setText("0:0:3.0");
    session_.timesTyped();
    EXPECT_FALSE(panel_->isVisible());
}

TEST_F(CutterSessionTest, whatHappens_isTold) {
    QStringList told;
    const CutEvents& events = session_.events();
    QObject::connect(&events, &CutEvents::loaded, [&told](const QString& path) { told << path; });
    QObject::connect(&events, &CutEvents::unloaded, [&told] { told << "unloaded"; });
    QObject::connect(&events, &CutEvents::positionMoved,
                     [&told](qint64 us) { told << QString("at %1").arg(us); });
    QObject::connect(&events, &CutEvents::marksMoved, [&told](qint64 start, qint64 end) {
        told << QString("%1 to %2").arg(start).arg(end);
    });
    load();
    moveTo(25);
    session_.markStart();
    moveTo(75);
    session_.markEnd();
    startField_.setText("00:00:00.500");
    session_.timesTyped();
    EXPECT_EQ(told, QStringList({"unloaded", video_, "0 to 4000", "at 1000000", "1000 to 4000",
                                 "at 3000000", "1000 to 3000", "500 to 3000"}));
}

} // namespace
} // namespace velmora::test
