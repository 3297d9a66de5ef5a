#include "JoinerList.h"

#include "ConversionEngine.h"
#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "SharedState.h"

namespace velmora::test {
namespace {

/// A list in a table without a main window. "video-only.mp4" has 320x180 and 4 s.
class JoinerListTest : public ::testing::Test {
protected:
    JoinerListTest() {
        currentSetting = std::make_shared<NodeSetting>();
        joinerFileList = std::make_shared<FileList>();
        sharedFileList = joinerFileList;
        list_.reload();
        list_.createPanel();
    }
    ~JoinerListTest() override {
        joinerFileList.reset();
        sharedFileList.reset();
        currentSetting.reset();
    }

    void addRow(const QString& format, const QString& resolution) {
        auto item = std::make_shared<NodeInfo>();
        item->inputFile = "/a." + format;
        item->inFromat = format;
        item->outFromat = format;
        item->resolution = resolution;
        joinerFileList->push_back(item);
    }
    int rowsOnShow() const { return table_.model()->rowCount(); }
    QString text(const char* column, int row = 0) const {
        return list_.cell(column, row).toString();
    }

    const QString video_ = QString::fromStdString(mediaPath("video-only.mp4"));
    LogLines log_;
    QWidget owner_;
    JoinerTable table_;
    JoinerList list_{table_, owner_};
};

TEST_F(JoinerListTest, file_added_isARowOfTheListButNotYetOnShow) {
    EXPECT_TRUE(list_.add(video_));
    ASSERT_EQ(joinerFileList->size(), 1U);
    EXPECT_EQ(joinerFileList->front()->inFromat, "mp4");
    EXPECT_EQ(joinerFileList->front()->outFromat, "mp4");
    EXPECT_EQ(currentSetting->width, 320);
    EXPECT_EQ(rowsOnShow(), 0);
    list_.reload();
    EXPECT_EQ(rowsOnShow(), 1);
}

TEST_F(JoinerListTest, file_addedWhileAnotherListIsOnShow_goesToTheJoiners) {
    sharedFileList = std::make_shared<FileList>();
    list_.add(video_);
    EXPECT_EQ(joinerFileList->size(), 1U);
    EXPECT_EQ(list_.rowCount(), 0);
}

TEST_F(JoinerListTest, invalidFile_alertsAndDoesNotEndTheAdding) {
    EXPECT_EQ(alertsOf([this] {
                  list_.addChosenFiles({"/nowhere.mp4", video_});
              }),
              std::vector{plainAlert("File is invalid!")});
    EXPECT_EQ(rowsOnShow(), 1);
    EXPECT_EQ(text("inputFile"), video_);
}

TEST_F(JoinerListTest, fullList_refusesOnceAndEndsTheAdding) {
    for (std::size_t i = 0; i < ConversionEngine::kMaxInputs; ++i) {
        addRow("mp4", "1x1");
    }
    EXPECT_EQ(alertsOf([this] {
                  list_.addChosenFiles({video_, video_});
              }),
              std::vector{errorAlert("No more than 999 files can be joined!")});
    EXPECT_EQ(rowsOnShow(), 999);
}

TEST_F(JoinerListTest, droppedFiles_giveTheFirst) {
    EXPECT_TRUE(list_.addDroppedFiles({video_, "/nowhere.mp4"}));
    EXPECT_EQ(rowsOnShow(), 1);
    EXPECT_FALSE(list_.addDroppedFiles({}));
}

TEST_F(JoinerListTest, removal_takesTheSelectedRowAndKeepsThePlaceSelected) {
    for (const char* const format : {"a", "b", "c"}) {
        addRow(format, "1x1");
    }
    list_.reload();
    list_.removeSelected();
    EXPECT_EQ(rowsOnShow(), 3) << "nothing is selected";
    table_.selectRow(1);
    list_.removeSelected();
    EXPECT_EQ(text("videoFormat", 0), "a");
    EXPECT_EQ(text("videoFormat", 1), "c");
    EXPECT_EQ(table_.selectedRow(), 1);
    list_.removeSelected();
    EXPECT_EQ(rowsOnShow(), 1);
    EXPECT_EQ(table_.selectedRow(), -1);
}

TEST_F(JoinerListTest, cells_tellOfTheirItem) {
    list_.add(video_);
    joinerFileList->front()->startTime = 61.9F;
    joinerFileList->front()->converteState = Failure;
    currentSetting->profileName = "MP4 Video";
    EXPECT_EQ(text("fileSource"), video_);
    EXPECT_EQ(text("duration"), "00:00:04.000");
    EXPECT_EQ(text("videoSize"), "320x180");
    EXPECT_EQ(text("videoQuality"), "30.00fps");
    EXPECT_EQ(text("status"), "Failure");
    EXPECT_EQ(text("startTime"), "00:01:01");
    EXPECT_EQ(text("endTime"), "00:00:04");
    EXPECT_EQ(text("format"), "MP4 Video");
    EXPECT_EQ(text("other"), "");
    EXPECT_FALSE(list_.cell("fileSource", 1).isValid());
    EXPECT_FALSE(list_.cell("fileSource", -1).isValid());
}

TEST_F(JoinerListTest, rowsOfOneFormatAndSize_canBeJoined) {
    EXPECT_FALSE(list_.canJoin());
    addRow("mp4", "640x480");
    EXPECT_FALSE(list_.canJoin());
    addRow("mp4", "640x480");
    EXPECT_TRUE(list_.canJoin());
    addRow("MP4", "640x480");
    EXPECT_FALSE(list_.canJoin());
    EXPECT_TRUE(log_.contains("format:mp4 Vs MP4 resolution:640x480 Vs 640x480"));
}

TEST_F(JoinerListTest, merge_ofFewerThanTwoRows_alerts) {
    addRow("mp4", "1x1");
    list_.reload();
    EXPECT_EQ(alertsOf([this] { list_.merge(); }),
              std::vector{errorAlert("At leaset select two video files!")});
}

TEST_F(JoinerListTest, merge_opensThePanel) {
    list_.addChosenFiles({video_, video_});
    const InNextPanel inPanel([](QWidget& panel) {
        EXPECT_EQ(panel.windowTitle(), "Joiner Setting");
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField2")->text(), "join-all");
    });
    list_.merge();
    EXPECT_TRUE(inPanel.hasOpened());
}

/// A panel that a refused start has left on screen.
class LeftJoinerPanelTest : public JoinerListTest {
protected:
    void SetUp() override {
        list_.addChosenFiles({video_, video_});
        fromTheEventLoop([this] {
            panel_ = modalWindow();
            stopModal(); // as a start does, before it is refused
        });
        list_.merge();
        ASSERT_TRUE(panel_ && panel_->isVisible());
    }

    QWidget* panel_ = nullptr;
};

TEST_F(LeftJoinerPanelTest, anotherRow_closesIt) {
    EXPECT_EQ(alertsOf([this] { list_.add("/nowhere.mp4"); }).size(), 1U);
    EXPECT_TRUE(panel_->isVisible());
    list_.add(video_);
    EXPECT_FALSE(panel_->isVisible());
}

TEST_F(LeftJoinerPanelTest, removedRow_closesIt) {
    list_.removeSelected(); // nothing is selected
    EXPECT_TRUE(panel_->isVisible());
    table_.selectRow(0);
    list_.removeSelected();
    EXPECT_FALSE(panel_->isVisible());
}

} // namespace
} // namespace velmora::test
