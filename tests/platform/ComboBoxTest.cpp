#include "ComboBox.h"

#include <QComboBox>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

/// An editable box with an entry that is there twice.
class ComboBoxTest : public ::testing::Test {
protected:
    void SetUp() override {
        box_.setEditable(true);
        box_.addItems({"a", "b", "a"});
    }

    QComboBox box_;
};

TEST_F(ComboBoxTest, selectedItem_entryChosen_isThatEntry) {
    box_.setCurrentIndex(2);
    EXPECT_EQ(selectedPosition(box_), 2);
    EXPECT_EQ(selectedItem(box_), "a");
}

TEST_F(ComboBoxTest, selectedItem_textOfAnEntryTyped_isThatEntry) {
    box_.setEditText("b");
    EXPECT_EQ(selectedPosition(box_), 1);
    EXPECT_EQ(selectedItem(box_), "b");
}

TEST_F(ComboBoxTest, selectedItem_otherTextTyped_isNone) {
    box_.setCurrentIndex(1);
    for (const char* const text : {"B", "b ", "", "c"}) {
        box_.setEditText(text);
        EXPECT_EQ(selectedPosition(box_), -1) << text;
        EXPECT_TRUE(selectedItem(box_).isNull()) << text;
    }
}

TEST_F(ComboBoxTest, selectedItem_nothingSelectedOrEmpty_isNone) {
    box_.setCurrentIndex(-1);
    EXPECT_EQ(selectedPosition(box_), -1);
    box_.clear();
    EXPECT_EQ(selectedPosition(box_), -1);
    EXPECT_TRUE(selectedItem(box_).isNull());
}

TEST_F(ComboBoxTest, selectItem_selectsTheFirstOfThatTextOrNone) {
    selectItem(box_, "b");
    EXPECT_EQ(box_.currentIndex(), 1);
    selectItem(box_, "a");
    EXPECT_EQ(box_.currentIndex(), 0);
    selectItem(box_, "A");
    EXPECT_EQ(box_.currentIndex(), -1);
}

} // namespace
} // namespace velmora::test
