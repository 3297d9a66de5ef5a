// What the joiner's table tells its view besides the texts in its cells.

#include "MainWindowSupport.h"

#include <QAbstractItemModelTester>

namespace velmora::test {
namespace {

constexpr int kFile = 0;
constexpr int kStatus = 5;
constexpr int kColumns = 6;

class JoinerModelTest : public MainWindowTest {
protected:
    void SetUp() override {
        show("Video Joiner");
        ASSERT_TRUE(dropFiles(*table().viewport(), {video_}));
    }

    const QAbstractItemModel& model() { return *table().model(); }
    QVariant cell(int column, int role) { return model().index(0, column).data(role); }

    const QString video_ = media("video-only.mp4");
};

TEST_F(JoinerModelTest, model_keepsTheRulesOfModels) {
    const QAbstractItemModelTester tester(table().model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    ASSERT_TRUE(dropFiles(*table().viewport(), {video_}));
    EXPECT_EQ(model().rowCount(), 2);
}

TEST_F(JoinerModelTest, cells_haveNoCellsOfTheirOwn) {
    EXPECT_EQ(model().columnCount(), kColumns);
    EXPECT_EQ(model().rowCount(model().index(0, 0)), 0);
    EXPECT_EQ(model().columnCount(model().index(0, 0)), 0);
}

TEST_F(JoinerModelTest, tooltip_isThePathOverTheFileOnly) {
    EXPECT_EQ(cell(kFile, Qt::ToolTipRole).toString(), video_);
    for (int column = kFile + 1; column < kColumns; ++column) {
        EXPECT_FALSE(cell(column, Qt::ToolTipRole).isValid()) << column;
    }
}

TEST_F(JoinerModelTest, numbers_standAtTheRightWithTheirTitles) {
    for (int column = 0; column < kColumns; ++column) {
        const bool isNumber = column > 1 && column < kStatus;
        const Qt::Alignment expected(Qt::AlignVCenter |
                                     (isNumber ? Qt::AlignRight : Qt::AlignLeft));
        EXPECT_EQ(cell(column, Qt::TextAlignmentRole).value<Qt::Alignment>(), expected) << column;
        EXPECT_EQ(model()
                      .headerData(column, Qt::Horizontal, Qt::TextAlignmentRole)
                      .value<Qt::Alignment>(),
                  expected)
            << column;
    }
}

TEST_F(JoinerModelTest, whatElseAViewAsksFor_isLeftToTheView) {
    EXPECT_FALSE(model().index(0, kColumns).data().isValid());
    EXPECT_FALSE(cell(kFile, Qt::DecorationRole).isValid());
    EXPECT_FALSE(model().headerData(kFile, Qt::Horizontal, Qt::ToolTipRole).isValid());
    EXPECT_EQ(model().headerData(0, Qt::Vertical).toString(), "1"); // the number of the row
}

} // namespace
} // namespace velmora::test
