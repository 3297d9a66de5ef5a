// How files come into the list: chosen or dropped.

#include "ConversionEngine.h"
#include "JoinerSupport.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>

#include <cstddef>
#include <vector>

namespace velmora::test {
namespace {

TEST_F(JoinerTest, add_severalChosen_appendsThemInOrder) {
    press("mButtonJoinerAdd");
    choose({video_, media("mpeg4.avi")});
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_EQ(cell(1, 0), media("mpeg4.avi"));
    EXPECT_TRUE(cutterFileList->empty());
    const qsizetype first = log_.all().indexOf("filePath:" + video_);
    EXPECT_GT(first, log_.all().indexOf("view joiner"));
    EXPECT_LT(first, log_.all().indexOf("filePath:" + media("mpeg4.avi")));
}

TEST_F(JoinerTest, add_oneInvalid_alertsAndGoesOnWithTheNext) {
    writeFile(folder_.path() / "bad.mp4", "no video");
    const QString bad = QString::fromStdString(folder_ / "bad.mp4");
    EXPECT_EQ(alertsOf([&] {
                  controller_.openFilePanelDidEnd({video_, bad, video_}, 1);
              }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(rows(), 2);
}

TEST_F(JoinerTest, add_fillsTheItem) {
    controller_.joinerAddFile(video_);
    ASSERT_EQ(joinerFileList->size(), 1U);
    const NodeInfo& item = *joinerFileList->front();
    EXPECT_EQ(item.inputFile, video_);
    EXPECT_EQ(item.width, 320);
    EXPECT_EQ(item.height, 180);
    EXPECT_EQ(item.resolution, "320x180");
    EXPECT_EQ(item.frame_rate, 30.0F);
    EXPECT_EQ(item.duration, 4.0F);
    EXPECT_EQ(item.startTime, 0.0F);
    EXPECT_EQ(item.endTime, 4.0F);
    EXPECT_EQ(item.converteState, Ready);
    EXPECT_EQ(item.inFromat, "mp4");
    EXPECT_EQ(item.outFromat, "mp4");
    EXPECT_EQ(item.isSeleted, 1);
    EXPECT_EQ(rows(), 0) << "the callers reload the table";
}

TEST_F(JoinerTest, add_settingTakesTheParametersOfTheLastFile) {
    controller_.joinerAddFile(video_);
    controller_.joinerAddFile(media("odd-size.mp4"));
    EXPECT_EQ(currentSetting->width, 175);
    EXPECT_EQ(currentSetting->height, 99);
}

TEST_F(JoinerTest, add_invalidFile_leavesTheSettingAsItWas) {
    controller_.joinerAddFile(media("odd-size.avi"));
    // Has another size and codec, but no length.
    EXPECT_EQ(alertsOf([this] { controller_.joinerAddFile(media("raw.h264")); }),
              std::vector{plainAlert("File is invalid!")});
    ASSERT_NE(ConversionEngine::instance().sourceWidth, 321);
    EXPECT_EQ(currentSetting->width, 321);
    EXPECT_EQ(currentSetting->vEncoder, "mpeg4");
}

TEST_F(JoinerTest, add_goesToTheJoinersListWhicheverIsOnShow) {
    show("Video Cutter");
    controller_.joinerAddFile(video_);
    EXPECT_EQ(joinerFileList->size(), 1U);
    EXPECT_TRUE(cutterFileList->empty());
}

TEST_F(JoinerTest, add_fileThousand_isRefusedOnce) {
    for (std::size_t i = 0; i < 998; ++i) {
        addRow("mp4", "320x180");
    }
    const auto alerts = alertsOf([&] {
        controller_.openFilePanelDidEnd({video_, video_, video_, video_}, 1);
    });
    EXPECT_EQ(joinerFileList->size(), 999U);
    EXPECT_EQ(rows(), 999);
    EXPECT_EQ(alerts, std::vector{errorAlert("No more than 999 files can be joined!")});
}

TEST_F(JoinerTest, drop_ofThree_addsOnlyTheFirst) {
    EXPECT_TRUE(dropOnTable({video_, media("mpeg4.avi"), media("h264.mp4")}));
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_TRUE(log_.contains("get path extension:" + video_));
}

TEST_F(JoinerTest, drop_anyExtension_isTried) {
    const QString named = QString::fromStdString(folder_ / "video.TXT");
    ASSERT_TRUE(QFile::copy(video_, named));
    dropOnTable({named});
    EXPECT_EQ(cell(0, 1), "TXT");
}

TEST_F(JoinerTest, drop_invalidFile_isTakenButAlerts) {
    EXPECT_EQ(alertsOf([&] { EXPECT_TRUE(controller_.tableViewAcceptDrop({"/nowhere"})); }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(rows(), 0);
}

TEST_F(JoinerTest, drop_goesToTheEnd) {
    addRow("avi", "1x1");
    EXPECT_TRUE(dropOnTable({video_}));
    EXPECT_EQ(cell(1, 0), video_);
}

TEST_F(JoinerTest, drop_withoutFiles_isNotTaken) {
    EXPECT_FALSE(controller_.tableViewAcceptDrop({}));
}

TEST_F(JoinerTest, drop_ofWhatIsNoFile_isNotTaken) {
    QMimeData text;
    text.setText("text");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table().viewport(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(JoinerTest, drag_goesOnOverTheTable_isTakenAsACopy) {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(video_)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(table().viewport(), &enter);
    QDragMoveEvent move(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton,
                        Qt::NoModifier);
    move.setDropAction(Qt::MoveAction);
    move.ignore();
    QCoreApplication::sendEvent(table().viewport(), &move);
    EXPECT_TRUE(move.isAccepted());
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
}

TEST_F(JoinerTest, drop_anyOperation_isWelcome) {
    EXPECT_EQ(controller_.tableViewValidateDrop(), 0xFFFFFFFFU);
}

} // namespace
} // namespace velmora::test
