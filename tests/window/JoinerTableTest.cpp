// What the table shows of the list, and how files are taken out of it.

#include "JoinerSupport.h"

#include <QTest>

#include <cstddef>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

// One count for the whole list, not one for each thing that the view asks.
TEST_F(JoinerTest, table_severalHundredRows_areCountedOnceForEachFile) {
    for (std::size_t i = 0; i < 998; ++i) {
        addRow("mp4", "320x180");
    }
    dropOnTable({video_});
    table().scrollToBottom();
    table().grab();
    EXPECT_EQ(log_.count("tableView xxxxx count:999"), 1);
}

TEST_F(JoinerTest, cells_showTheItem) {
    addRow("mp4", "1280x720");
    NodeInfo& item = *joinerFileList->front();
    item.width = 1280;
    item.height = 720;
    item.endTime = 3661.5F;
    item.startTime = 61.9F;
    item.frame_rate = 29.97F;
    currentSetting->profileName = "MP4 (*.mp4)";
    EXPECT_EQ(value("fileSource"), "/videos/a.mp4");
    EXPECT_EQ(value("videoFormat"), "mp4");
    EXPECT_EQ(value("duration"), "01:01:01.500");
    EXPECT_EQ(value("videoSize"), "1280x720");
    EXPECT_EQ(value("videoQuality"), "29.97fps");
    EXPECT_EQ(value("status"), "Ready");
    EXPECT_EQ(value("inputFile"), "/videos/a.mp4");
    EXPECT_EQ(value("startTime"), "00:01:01");
    EXPECT_EQ(value("endTime"), "01:01:01");
    EXPECT_EQ(value("format"), "MP4 (*.mp4)");
    EXPECT_EQ(value("state"), "Ready");
    EXPECT_EQ(value("anything"), "");
}

TEST_F(JoinerTest, cells_rateBelowTen_isPadded) {
    addRow("mp4", "1x1");
    joinerFileList->front()->frame_rate = 5;
    EXPECT_EQ(value("videoQuality"), " 5.00fps");
}

TEST_F(JoinerTest, cells_states_haveTheirTexts) {
    addRow("mp4", "1x1");
    for (const auto& [state, text] : std::vector<std::pair<int, QString>>{
             {0, "Ready"}, {1, "Completed"}, {2, "Failure"}, {3, ""}, {-1, ""}}) {
        joinerFileList->front()->converteState = state;
        EXPECT_EQ(value("status"), text);
        EXPECT_EQ(value("state"), text);
    }
}

TEST_F(JoinerTest, cells_rowWithoutItem_haveNoValue) {
    EXPECT_FALSE(controller_.tableViewObjectValueForTableColumn("status", 0).isValid());
    EXPECT_FALSE(controller_.tableViewObjectValueForTableColumn("status", -1).isValid());
}

TEST_F(JoinerTest, cells_areReadOnly) {
    dropOnTable({video_});
    for (int column = 0; column < 6; ++column) {
        EXPECT_FALSE(table().model()->flags(table().model()->index(0, column)) &
                     (Qt::ItemIsEditable | Qt::ItemIsUserCheckable));
    }
}

TEST_F(JoinerTest, columns_areTheSixOfTheList) {
    QStringList titles;
    for (int column = 0; column < table().model()->columnCount(); ++column) {
        titles.append(table().model()->headerData(column, Qt::Horizontal).toString());
    }
    EXPECT_EQ(titles, QStringList({"File", "Format", "Length", "Size", "Frame rate", "Status"}));
}

TEST_F(JoinerTest, emptyTable_invitesToDrop_untilThereIsARow) {
    EXPECT_TRUE(outlet("mAddFileToolTipJoiner").isVisible());
    dropOnTable({video_});
    EXPECT_FALSE(outlet("mAddFileToolTipJoiner").isVisible());
    table().selectRow(0);
    press("mButtonJoinerRemove");
    EXPECT_TRUE(outlet("mAddFileToolTipJoiner").isVisible());
}

TEST_F(JoinerTest, remove_nothingSelected_doesNothing) {
    dropOnTable({video_});
    table().clearSelection();
    press("mButtonJoinerRemove");
    EXPECT_EQ(rows(), 1);
}

TEST_F(JoinerTest, remove_firstOfSeveralSelectedRows_goesWhenItIsTheCurrentOne) {
    dropOnTable({video_});
    dropOnTable({media("h264.mp4")});
    table().selectRow(1);
    table().selectionModel()->setCurrentIndex(
        table().model()->index(0, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 0), media("h264.mp4"));
}

TEST_F(JoinerTest, remove_selectedRow_goes) {
    for (const char* const name : {"video-only.mp4", "h264.mp4", "mpeg4.avi"}) {
        dropOnTable({media(name)});
    }
    table().selectRow(1);
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_EQ(cell(1, 0), media("mpeg4.avi"));
}

TEST_F(JoinerTest, remove_severalSelected_takesTheOneSelectedLast) {
    for (const char* const name : {"video-only.mp4", "h264.mp4", "mpeg4.avi"}) {
        dropOnTable({media(name)});
    }
    table().selectRow(0);
    const QModelIndex second = table().model()->index(1, 0);
    QTest::mouseClick(table().viewport(), Qt::LeftButton, Qt::ControlModifier,
                      table().visualRect(second).center());
    EXPECT_EQ(table().selectionModel()->selectedRows().size(), 2);
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(cell(0, 0), video_);
    EXPECT_EQ(cell(1, 0), media("mpeg4.avi"));
}

TEST_F(JoinerTest, remove_byDeleteKey_works) {
    dropOnTable({video_});
    table().selectRow(0);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(rows(), 0);
}

TEST_F(JoinerTest, removeAgain_takesTheRowThatMovedUp) {
    for (const char* const name : {"video-only.mp4", "h264.mp4", "mpeg4.avi"}) {
        dropOnTable({media(name)});
    }
    table().selectRow(0);
    press("mButtonJoinerRemove");
    press("mButtonJoinerRemove");
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(cell(0, 0), media("mpeg4.avi"));
}

TEST_F(JoinerTest, list_survivesSwitchingButNoLoadOfTheCutter) {
    dropOnTable({video_});
    show("Video Cutter");
    show("Video Joiner");
    EXPECT_EQ(cell(0, 0), video_);
    show("Video Cutter");
    dropOnPreview(video_);
    show("Video Joiner");
    EXPECT_EQ(rows(), 0);
}

} // namespace
} // namespace velmora::test
