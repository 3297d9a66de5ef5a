// What stands in the joiner's table, and what else its list can be asked to do.

#include "ConversionEngine.h"
#include "MainWindowSupport.h"
#include "SharedState.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>

namespace velmora::test {
namespace {

class JoinerColumnsTest : public MainWindowTest {
protected:
    void SetUp() override { show("Video Joiner"); }

    bool drop(const QString& file) { return dropFiles(*table().viewport(), {file}); }
    /// The texts under a title, from top to bottom.
    QStringList under(const QString& title) {
        const QAbstractItemModel& model = *table().model();
        QStringList texts;
        for (int column = 0; column < model.columnCount(); ++column) {
            if (model.headerData(column, Qt::Horizontal).toString() != title) {
                continue;
            }
            for (int row = 0; row < model.rowCount(); ++row) {
                texts.append(model.index(row, column).data().toString());
            }
        }
        return texts;
    }
    /// Presses "Merge into a video file" and does `inPanel` with the panel on screen.
    bool merge(const std::function<void(QWidget&)>& inPanel) {
        drop(video_);
        drop(video_);
        const InNextPanel panel(inPanel);
        press("mButtonJoinerSetting");
        return panel.hasOpened();
    }

    const QString video_ = media("video-only.mp4");
    const QString ntsc_ = media("h264-2997.mp4");
};

TEST_F(JoinerColumnsTest, rows_tellFileFormatLengthSizeRateAndStatus) {
    ASSERT_TRUE(drop(video_));
    ASSERT_TRUE(drop(media("odd-size.avi")));
    EXPECT_EQ(under("File"), QStringList({video_, media("odd-size.avi")}));
    EXPECT_EQ(under("Format"), QStringList({"mp4", "avi"}));
    EXPECT_EQ(under("Length").value(0), "00:00:04.000");
    EXPECT_EQ(under("Size"), QStringList({"320x180", "321x241"}));
    EXPECT_EQ(under("Frame rate").value(0), "30.00fps");
    EXPECT_EQ(under("Status"), QStringList({"Ready", "Ready"}));
}

TEST_F(JoinerColumnsTest, rate_ofNtscVideo_isTheRoundedQuotient) {
    ASSERT_TRUE(drop(ntsc_));
    EXPECT_EQ(under("Frame rate"), QStringList("29.97fps"));
}

TEST_F(JoinerColumnsTest, rate_withoutDenominator_isZero) {
    // Sound keeps the rate of the file before, of which there is none yet.
    ConversionEngine::instance().sourceFrameRateNum = 0;
    ConversionEngine::instance().sourceFrameRateDen = 0;
    ASSERT_TRUE(drop(media("audio-only.wav")));
    EXPECT_EQ(under("Frame rate"), QStringList(" 0.00fps"));
    EXPECT_EQ(under("Size"), QStringList("0x0"));
}

TEST_F(JoinerColumnsTest, menusRemove_takesTheSelectedRowOut) {
    drop(video_);
    drop(ntsc_);
    table().selectRow(0);
    auto* const remove = controller_.mainWin().findChild<QAction*>("actionRemove");
    ASSERT_NE(remove, nullptr);
    ASSERT_TRUE(remove->isEnabled());
    remove->trigger();
    EXPECT_EQ(under("File"), QStringList(ntsc_));
    EXPECT_EQ(joinerFileList->size(), 1U);
}

TEST_F(JoinerColumnsTest, merge_afterAnotherLoad_opensTheSamePanelWithItsFieldsKept) {
    const QWidget* first = nullptr;
    EXPECT_TRUE(merge([&first](QWidget& panel) {
        first = &panel;
        panel.findChild<QLineEdit*>("mTextField1")->setText("/out");
        panel.findChild<QLineEdit*>("mTextField2")->setText("mine");
    }));
    show("Video Cutter");
    dropOnPreview(video_); // sets the window up again
    show("Video Joiner");
    EXPECT_TRUE(merge([&first](QWidget& panel) {
        EXPECT_EQ(&panel, first);
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField1")->text(), "/out");
        EXPECT_EQ(panel.findChild<QLineEdit*>("mTextField2")->text(), "mine");
    }));
}

TEST_F(JoinerColumnsTest, columns_haveRoomForWhatIsUsualAndNotMuchMore) {
    const QStringList usual{"Format", "00:00:00.000", "0000x0000", "Frame rate", "Completed"};
    for (int column = 1; column <= usual.size(); ++column) {
        const int text = table().fontMetrics().horizontalAdvance(usual[column - 1]);
        EXPECT_GT(table().columnWidth(column), text) << column;
        EXPECT_LT(table().columnWidth(column), text + 40) << column;
    }
}

} // namespace
} // namespace velmora::test
