#pragma once

#include "MainWindowSupport.h"
#include "SharedState.h"
#include "customImageView.h"

#include <QImage>
#include <QPainter>
#include <QString>

namespace velmora::test {

inline const QString kInvalid = "File is invalid!";

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

} // namespace velmora::test
