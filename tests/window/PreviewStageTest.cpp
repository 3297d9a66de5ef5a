#include "PreviewStage.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// Counts what is dropped on it.
class DropCounter : public QWidget {
public:
    explicit DropCounter(QWidget* parent) : QWidget(parent) { setAcceptDrops(true); }
    int drops = 0;

protected:
    void dragEnterEvent(QDragEnterEvent* event) override { event->accept(); }
    void dropEvent(QDropEvent* /*event*/) override { ++drops; }
};

class PreviewStageTest : public ::testing::Test {
protected:
    void SetUp() override {
        stage_.resize(400, 200);
        stage_.show();
    }

    PreviewStage stage_;
    DropCounter* const view_ = new DropCounter(&stage_); // owned by the stage
};

TEST_F(PreviewStageTest, view_withoutDisplaySize_fillsTheStage) {
    stage_.setDisplaySize({});
    EXPECT_EQ(view_->geometry(), QRect(0, 0, 400, 200));
}

TEST_F(PreviewStageTest, wideVideo_isCentredInItsProportions) {
    stage_.setDisplaySize({1280, 320});
    EXPECT_EQ(view_->geometry(), QRect(0, 50, 400, 100));
}

TEST_F(PreviewStageTest, tallVideo_isCentredInItsProportions) {
    stage_.setDisplaySize({360, 720});
    EXPECT_EQ(view_->geometry(), QRect(150, 0, 100, 200));
}

TEST_F(PreviewStageTest, stage_resized_keepsTheProportions) {
    stage_.setDisplaySize({360, 720});
    stage_.resize(400, 400);
    EXPECT_EQ(view_->size(), QSize(200, 400));
}

TEST_F(PreviewStageTest, extremeProportions_leaveAViewToSee) {
    stage_.setDisplaySize({100000, 1});
    EXPECT_EQ(view_->size(), QSize(400, 1));
}

TEST_F(PreviewStageTest, margins_areLeftFree) {
    stage_.setContentsMargins(8, 8, 8, 8);
    stage_.setDisplaySize({});
    EXPECT_EQ(view_->geometry(), QRect(8, 8, 384, 184));
}

TEST_F(PreviewStageTest, drop_besideTheView_reachesIt) {
    stage_.setDisplaySize({360, 720});
    const QMimeData files;
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&stage_, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&stage_, &drop);
    EXPECT_EQ(view_->drops, 1);
}

} // namespace
} // namespace velmora::test
