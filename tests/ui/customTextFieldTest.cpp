#include "customTextField.h"

#include "NotificationCenter.h"

#include <QTest>
#include <gtest/gtest.h>

#include <vector>

namespace velmora::test {
namespace {

std::vector<Notification>& posted() {
    static std::vector<Notification> all;
    [[maybe_unused]] static const bool subscribed = [] {
        NotificationCenter::defaultCenter().addObserver(
            "onTextDidChangeNotify",
            [](const Notification& notification) { all.push_back(notification); });
        return true;
    }();
    return all;
}

TEST(customTextFieldTest, userEdit_postsOnceForEachWithTheFieldAndNoInfo) {
    posted().clear();
    customTextField field;
    QTest::keyClicks(&field, "12");
    QTest::keyClick(&field, Qt::Key_Backspace);
    ASSERT_EQ(posted().size(), 3U);
    for (const Notification& notification : posted()) {
        EXPECT_EQ(notification.object, &field);
        EXPECT_TRUE(notification.userInfo.isEmpty());
    }
    EXPECT_EQ(field.text(), "1");
}

TEST(customTextFieldTest, userUndo_posts) {
    customTextField field;
    QTest::keyClicks(&field, "1");
    posted().clear();
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field.text(), "");
    EXPECT_EQ(posted().size(), 1U);
}

TEST(customTextFieldTest, textSetByTheProgram_isNotPosted) {
    posted().clear();
    customTextField field;
    field.setText("00:00:01.000");
    field.clear();
    EXPECT_TRUE(posted().empty());
}

TEST(customTextFieldTest, keyThatChangesNothing_isNotPosted) {
    posted().clear();
    customTextField field;
    QTest::keyClick(&field, Qt::Key_Left);
    EXPECT_TRUE(posted().empty());
}

} // namespace
} // namespace velmora::test
