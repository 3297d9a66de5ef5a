#include "PanelWindow.h"

#include <QTest>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

class PanelWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        window_.windowShouldClose = [this] {
            ++asked_;
            return answer_;
        };
        window_.show();
    }

    PanelWindow window_;
    int asked_ = 0;
    bool answer_ = true;
};

TEST_F(PanelWindowTest, closeBox_asksAndCloses) {
    window_.close();
    EXPECT_EQ(asked_, 1);
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(PanelWindowTest, escape_asksAndCloses) {
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_EQ(asked_, 1);
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(PanelWindowTest, answerNo_keepsTheWindow) {
    answer_ = false;
    window_.close();
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_EQ(asked_, 2);
    EXPECT_TRUE(window_.isVisible());
}

TEST_F(PanelWindowTest, hide_asksNobody) {
    window_.hide();
    EXPECT_EQ(asked_, 0);
}

TEST_F(PanelWindowTest, nobodyToAsk_closes) {
    window_.windowShouldClose = nullptr;
    window_.close();
    EXPECT_FALSE(window_.isVisible());
}

} // namespace
} // namespace velmora::test
