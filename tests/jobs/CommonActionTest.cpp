#include "CommonAction.h"
#include "SharedState.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>

namespace velmora::test {
namespace {

/// The shared list holds `count` items for the time of a test.
class CommonActionTest : public ::testing::Test {
protected:
    void fill(int count) {
        sharedFileList = std::make_shared<FileList>();
        for (int i = 0; i < count; ++i) {
            sharedFileList->push_back(std::make_shared<NodeInfo>());
            sharedFileList->back()->inputFile = QString::number(i);
        }
    }
    void TearDown() override { sharedFileList.reset(); }
};

struct TimeText {
    std::int32_t seconds;
    const char* text;
};

class TimeFormatTest : public ::testing::TestWithParam<TimeText> {};

TEST_P(TimeFormatTest, timeFormatBySecond_givesClockText) {
    EXPECT_EQ(CommonAction::timeFormatBySecond(GetParam().seconds), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    All, TimeFormatTest,
    ::testing::Values(TimeText{0, "00:00:00"}, TimeText{59, "00:00:59"}, TimeText{3661, "01:01:01"},
                      TimeText{86399, "23:59:59"}, TimeText{360000, "100:00:00"},
                      TimeText{-1, "00:00:-1"}, TimeText{-3661, "-1:-1:-1"},
                      TimeText{std::numeric_limits<std::int32_t>::max(), "596523:14:07"},
                      TimeText{std::numeric_limits<std::int32_t>::min(), "-596523:-14:-8"}));

TEST_F(CommonActionTest, counts_unselectedEntries_countToo) {
    fill(3);
    (*sharedFileList)[1]->isSeleted = 1;
    EXPECT_EQ(CommonAction::getSeleteCount(), 3);
    EXPECT_EQ(CommonAction::getCount(), 3);
}

TEST_F(CommonActionTest, counts_emptyOrMissingList_are0) {
    EXPECT_EQ(CommonAction::getSeleteCount(), 0);
    fill(0);
    EXPECT_EQ(CommonAction::getSeleteCount(), 0);
    EXPECT_EQ(CommonAction::getCount(), 0);
}

TEST_F(CommonActionTest, getSeleteObject_indexInside_givesThatEntry) {
    fill(3);
    EXPECT_EQ(CommonAction::getSeleteObject(0)->inputFile, "0");
    EXPECT_EQ(CommonAction::getSeleteObject(1)->inputFile, "1");
    EXPECT_EQ(CommonAction::getSeleteObject(2)->inputFile, "2");
}

TEST_F(CommonActionTest, getSeleteObject_indexOutside_givesTheLastEntry) {
    fill(3);
    EXPECT_EQ(CommonAction::getSeleteObject(5), sharedFileList->back());
    EXPECT_EQ(CommonAction::getSeleteObject(3), sharedFileList->back());
    EXPECT_EQ(CommonAction::getSeleteObject(-1), sharedFileList->back());
}

TEST_F(CommonActionTest, getSeleteObject_emptyOrMissingList_givesNone) {
    EXPECT_EQ(CommonAction::getSeleteObject(0), nullptr);
    fill(0);
    EXPECT_EQ(CommonAction::getSeleteObject(0), nullptr);
    EXPECT_EQ(CommonAction::getSeleteObject(-1), nullptr);
}

TEST_F(CommonActionTest, fileExist_fileFolderAndNothing_answersForEach) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "a", "x");
    EXPECT_TRUE(CommonAction::fileExist(QString::fromStdString(folder / "a")));
    EXPECT_TRUE(CommonAction::fileExist(QString::fromStdString(folder.path().string())));
    EXPECT_FALSE(CommonAction::fileExist(QString::fromStdString(folder / "b")));
    EXPECT_FALSE(CommonAction::fileExist(""));
}

TEST(NodeInfoTest, newItem_isEmptyAndReady) {
    const NodeInfo item;
    EXPECT_EQ(item.converteState, Ready);
    EXPECT_EQ(item.isSeleted, 0);
    EXPECT_EQ(item.startTime, 0.0F);
    EXPECT_EQ(item.endTime, 0.0F);
    EXPECT_EQ(item.width, 0);
    EXPECT_EQ(item.height, 0);
    EXPECT_EQ(item.frame_rate, 0.0F);
    EXPECT_EQ(item.duration, 0.0F);
    EXPECT_TRUE(item.inputFile.isEmpty());
    EXPECT_TRUE(item.outPutFile.isEmpty());
    EXPECT_TRUE(item.outFromat.isEmpty());
    EXPECT_TRUE(item.inFromat.isEmpty());
    EXPECT_TRUE(item.resolution.isEmpty());
}

} // namespace
} // namespace velmora::test
