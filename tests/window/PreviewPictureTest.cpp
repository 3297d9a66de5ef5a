#include "PreviewPicture.h"

#include "ConversionEngine.h"
#include "ProbedFile.h"
#include "TestMedia.h"
#include "WindowReading.h"
#include "customImageView.h"

#include <QImage>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// The preview of a video of 4 s with a key picture each second.
class PreviewPictureTest : public ::testing::Test {
protected:
    PreviewPictureTest() {
        probeFile(video_);
        preview_.showFirst(video_);
    }

    QImage shown() const { return pictureOfPreview(view_); }
    /// From now on the view shows something else, until it is given a picture again.
    void coverView() { view_.setImage(NamedImage(customImageView::kPlaceholderName)); }
    bool isCovered() const { return view_.image().name() == customImageView::kPlaceholderName; }

    const QString video_ = QString::fromStdString(mediaPath("h264.mp4"));
    customImageView view_;
    PreviewPicture preview_{view_};
};

TEST_F(PreviewPictureTest, first_isStretchedToTheView) {
    EXPECT_EQ(shown(), QImage("/tmp/pic.bmp").convertToFormat(QImage::Format_RGB32));
    EXPECT_EQ(view_.imageScaling(), 1);
}

TEST_F(PreviewPictureTest, pictureAtAnotherTime_isShown) {
    const QImage first = shown();
    preview_.showAt(video_, 2.0F);
    EXPECT_NE(shown(), first);
    preview_.showAt(video_, 0.0F);
    EXPECT_EQ(shown(), first);
}

TEST_F(PreviewPictureTest, pictureOnShow_isNotLoadedAgain) {
    preview_.showAt(video_, 2.0F);
    coverView();
    preview_.showAt(video_, 2.0F);
    EXPECT_TRUE(isCovered());
    preview_.showAt(video_, 3.0F);
    EXPECT_FALSE(isCovered());
}

TEST_F(PreviewPictureTest, first_ofTheSameVideoAgain_isLoadedAgain) {
    coverView();
    preview_.showFirst(video_);
    EXPECT_FALSE(isCovered());
}

TEST_F(PreviewPictureTest, picture_afterAnotherFileWasProbed_isOfItsOwnSource) {
    preview_.showAt(video_, 2.0F);
    const QImage middle = shown();
    preview_.showAt(video_, 0.0F);
    probeFile(QString::fromStdString(mediaPath("mpeg4.mp4")));
    preview_.showAt(video_, 2.0F);
    EXPECT_EQ(shown(), middle);
}

TEST_F(PreviewPictureTest, picture_afterARunOfSeveralInputs_isAtTheTimeAskedFor) {
    const QImage first = shown();
    ConversionEngine::instance().currentIndex = 2;
    ConversionEngine::instance().startTimes[2] = 0.0;
    preview_.showAt(video_, 2.0F);
    EXPECT_NE(shown(), first);
}

} // namespace
} // namespace velmora::test
