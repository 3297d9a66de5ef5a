#include "TableViewController.h"

#include "SharedState.h"

#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace velmora::test {
namespace {

/// A shared list of three items.
class TableViewControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        sharedFileList = std::make_shared<FileList>();
        for (const char* const path : {"/a/one.mp4", "/a/two.b.avi", "/a/drei.mkv"}) {
            sharedFileList->push_back(std::make_shared<NodeInfo>());
            sharedFileList->back()->inputFile = path;
        }
        currentSetting = std::make_shared<NodeSetting>();
        currentSetting->profileName = "MP4 Video";
    }
    void TearDown() override {
        sharedFileList.reset();
        currentSetting.reset();
    }

    NodeInfo& item(std::size_t row) { return *(*sharedFileList)[row]; }
    QVariant value(const char* identifier, int row) const {
        return table_.tableViewObjectValueForTableColumn(identifier, row);
    }

    TableViewController table_;
};

TEST_F(TableViewControllerTest, rows_areThoseOfTheSharedList) {
    EXPECT_EQ(table_.numberOfRowsInTableView(), 3);
    EXPECT_EQ(table_.rowCount(), 3);
    sharedFileList->clear();
    EXPECT_EQ(table_.numberOfRowsInTableView(), 0);
    sharedFileList.reset();
    EXPECT_EQ(table_.numberOfRowsInTableView(), 0);
}

TEST_F(TableViewControllerTest, inputFile_valueIsTheCheckBoxAndTitleTheFileName) {
    item(1).isSeleted = 1;
    EXPECT_EQ(value("inputFile", 0), QVariant(false));
    EXPECT_EQ(value("inputFile", 1), QVariant(true));
    EXPECT_EQ(table_.tableViewWillDisplayCell("inputFile", 1), "two.b.avi");
    EXPECT_EQ(table_.tableViewWillDisplayCell("format", 1), "");
    EXPECT_EQ(table_.tableViewWillDisplayCell("inputFile", 3), "");
}

TEST_F(TableViewControllerTest, times_areFormattedAsSecondsWhateverTheirUnit) {
    item(0).startTime = 61.9F;
    item(0).endTime = 5000;
    EXPECT_EQ(value("startTime", 0), "00:01:01");
    EXPECT_EQ(value("endTime", 0), "01:23:20");
    item(0).endTime = std::numeric_limits<float>::infinity();
    EXPECT_EQ(value("endTime", 0), "00:00:00");
}

TEST_F(TableViewControllerTest, format_isTheProfileNameOfTheCurrentSetting) {
    EXPECT_EQ(value("format", 0), "MP4 Video");
    EXPECT_EQ(value("format", 2), "MP4 Video");
    currentSetting.reset();
    EXPECT_FALSE(value("format", 0).isValid());
}

TEST_F(TableViewControllerTest, state_hasATextForEachResultAndNoneForOthers) {
    EXPECT_EQ(value("state", 0), "Ready");
    item(0).converteState = 1;
    EXPECT_EQ(value("state", 0), "Completed");
    item(0).converteState = 2;
    EXPECT_EQ(value("state", 0), "Failure");
    for (const int other : {3, -1, 255}) {
        item(0).converteState = other;
        EXPECT_FALSE(value("state", 0).isValid()) << other;
    }
}

TEST_F(TableViewControllerTest, unknownColumnOrRow_hasNoValue) {
    EXPECT_FALSE(value("duration", 0).isValid());
    EXPECT_FALSE(value("", 0).isValid());
    EXPECT_FALSE(value("state", 3).isValid());
    EXPECT_FALSE(value("format", -1).isValid());
}

TEST_F(TableViewControllerTest, setObjectValue_setsThatItemOnlyAndReloads) {
    const QSignalSpy reloads(&table_, &QAbstractItemModel::modelReset);
    table_.tableViewSetObjectValue(true, "inputFile", 1);
    EXPECT_EQ(item(0).isSeleted, 0);
    EXPECT_EQ(item(1).isSeleted, 1);
    EXPECT_EQ(item(2).isSeleted, 0);
    EXPECT_EQ(reloads.size(), 1);
    table_.tableViewSetObjectValue(false, "inputFile", 1);
    EXPECT_EQ(item(1).isSeleted, 0);
}

TEST_F(TableViewControllerTest, setObjectValue_otherColumnOrRow_changesNothing) {
    const QSignalSpy reloads(&table_, &QAbstractItemModel::modelReset);
    table_.tableViewSetObjectValue(true, "state", 1);
    table_.tableViewSetObjectValue(true, "inputFile", 3);
    EXPECT_EQ(item(1).isSeleted, 0);
    EXPECT_TRUE(reloads.isEmpty());
}

TEST_F(TableViewControllerTest, setData_otherThanTheCheckBox_isRefused) {
    EXPECT_FALSE(table_.setData(table_.index(0, 0), Qt::Checked, Qt::EditRole));
    EXPECT_FALSE(table_.setData(table_.index(0, 1), Qt::Checked, Qt::CheckStateRole));
    EXPECT_FALSE(table_.setData({}, Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(item(0).isSeleted, 0);
    EXPECT_TRUE(table_.setData(table_.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(item(0).isSeleted, 1);
}

TEST_F(TableViewControllerTest, table_clickOnTheCheckBox_togglesTheItem) {
    QTableView view;
    view.setModel(&table_);
    view.show();
    view.setCurrentIndex(table_.index(2, 0));
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(item(2).isSeleted, 1);
    EXPECT_EQ(table_.index(2, 0).data(Qt::CheckStateRole), Qt::Checked);
    EXPECT_EQ(item(0).isSeleted + item(1).isSeleted, 0);
}

TEST_F(TableViewControllerTest, table_cells_showTitlesAndValues) {
    item(0).converteState = 1;
    EXPECT_EQ(table_.index(0, 0).data(), "one.mp4");
    EXPECT_EQ(table_.index(0, 1).data(), "00:00:00");
    EXPECT_EQ(table_.index(0, 3).data(), "MP4 Video");
    EXPECT_EQ(table_.index(0, 4).data(), "Completed");
    EXPECT_FALSE(table_.index(0, 4).data(Qt::CheckStateRole).isValid());
    EXPECT_EQ(table_.headerData(0, Qt::Horizontal), "File");
    EXPECT_EQ(table_.columnCount(), 5);
}

} // namespace
} // namespace velmora::test
