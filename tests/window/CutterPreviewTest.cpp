// What the preview is taken from, and when the bar is drawn.

#include "ConversionEngine.h"
#include "MainWindowSupport.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScreen>
#include <QTest>

namespace velmora::test {
namespace {

/// A video of 4 s with a key picture each second.
class CutterPreviewTest : public MainWindowTest {
protected:
    void SetUp() override { dropOnPreview(video_); }

    QImage shown() {
        QImage picture(320, 240, QImage::Format_RGB32);
        QPainter painter(&picture);
        preview().image().draw(painter, picture.rect());
        return picture;
    }
    /// What the screen has where the bar is, once all that is due has been drawn.
    QImage barOnScreen() {
        QApplication::processEvents();
        QWidget& window = controller_.mainWin();
        const QPoint place = bar().mapTo(&window, QPoint(0, 0));
        return window.screen()
            ->grabWindow(window.winId(), place.x(), place.y(), bar().width(), bar().height())
            .toImage();
    }

    const QString video_ = media("h264.mp4");
    ConversionEngine& engine_ = ConversionEngine::instance();
};

TEST_F(CutterPreviewTest, scrub_afterAnotherFileWasProbed_showsTheCuttersVideo) {
    bar().moveByUser(50);
    const QImage middle = shown();
    bar().moveByUser(0);
    controller_.joinerAddFile(media("mpeg4.mp4"));
    bar().moveByUser(50);
    EXPECT_EQ(shown(), middle);
}

TEST_F(CutterPreviewTest, scrub_afterARunOfSeveralInputs_takesTheFirstInputsTime) {
    const QImage first = shown();
    engine_.currentIndex = 2;
    engine_.startTimes[2] = 0.0;
    bar().moveByUser(50);
    EXPECT_NE(shown(), first);
}

TEST_F(CutterPreviewTest, load_afterARunOfSeveralInputs_showsTheFirstPicture) {
    const QImage first = shown();
    engine_.currentIndex = 2;
    engine_.startTimes[2] = 2.0;
    dropOnPreview(video_);
    EXPECT_EQ(shown(), first);
}

TEST_F(CutterPreviewTest, fileChosen_clearsTheMarksOnTheBar) {
    markStart(20);
    markEnd(80);
    controller_.openFilePanelDidEnd({video_}, 1);
    EXPECT_EQ(bar().anchorLeft(), -1);
    EXPECT_EQ(bar().anchorRight(), -1);
    EXPECT_EQ(bar().butIndex(), 0);
}

TEST_F(CutterPreviewTest, startPointSet_isSeenOnTheBar) {
    bar().moveByUser(50);
    const QImage before = barOnScreen();
    controller_.button_left_anchor();
    EXPECT_NE(barOnScreen(), before);
}

TEST_F(CutterPreviewTest, endPointSet_isSeenOnTheBar) {
    bar().moveByUser(50);
    const QImage before = barOnScreen();
    controller_.button_right_anchor();
    EXPECT_NE(barOnScreen(), before);
}

} // namespace
} // namespace velmora::test
