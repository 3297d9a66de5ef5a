#include "AlertPanel.h"

#include "Desktop.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

TEST(AlertPanelTest, panel_titledWithoutAlternate_showsTitleMessageAndOneButton) {
    fromTheEventLoop([] {
        const QMessageBox* const box = alertPanel();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Error");
        EXPECT_EQ(box->text(), "Please add video file first!");
        EXPECT_EQ(box->windowModality(), Qt::ApplicationModal);
        EXPECT_EQ(box->buttons().size(), 1);
        answerAlert("OK");
    });
    EXPECT_EQ(runAlertPanel("Error", "Please add video file first!", "OK", {}), AlertDefault);
}

TEST(AlertPanelTest, panel_emptyAlternate_isNotDrawn) {
    fromTheEventLoop([] {
        EXPECT_EQ(alertPanel()->buttons().size(), 1);
        answerAlert("OK");
    });
    runAlertPanel({}, "message", "OK", "");
}

TEST(AlertPanelTest, panel_untitled_carriesTheNameOfTheApplication) {
    QGuiApplication::setApplicationDisplayName("Velmora");
    fromTheEventLoop([] {
        EXPECT_EQ(alertPanel()->windowTitle(), "Velmora");
        answerAlert("OK");
    });
    runAlertPanel({}, "message", "OK", {});
}

TEST(AlertPanelTest, panel_twoButtons_answersWithTheOnePressed) {
    fromTheEventLoop([] { answerAlert("No"); });
    EXPECT_EQ(runAlertPanel({}, "message", "Yes", "No"), AlertAlternate);
    fromTheEventLoop([] { answerAlert("Yes"); });
    EXPECT_EQ(runAlertPanel({}, "message", "Yes", "No"), AlertDefault);
}

TEST(AlertPanelTest, panel_keys_returnTakesTheDefaultAndEscapeTheAlternate) {
    fromTheEventLoop([] { QTest::keyClick(alertPanel(), Qt::Key_Return); });
    EXPECT_EQ(runAlertPanel({}, "message", "Yes", "No"), AlertDefault);
    fromTheEventLoop([] { QTest::keyClick(alertPanel(), Qt::Key_Escape); });
    EXPECT_EQ(runAlertPanel({}, "message", "Yes", "No"), AlertAlternate);
    fromTheEventLoop([] { QTest::keyClick(alertPanel(), Qt::Key_Escape); });
    EXPECT_EQ(runAlertPanel({}, "message", "OK", ""), AlertDefault);
}

TEST(AlertPanelTest, panel_markupInTheMessage_isShownAsText) {
    fromTheEventLoop([] {
        EXPECT_EQ(alertPanel()->textFormat(), Qt::PlainText);
        EXPECT_EQ(alertPanel()->text(), "<b>a</b>");
        answerAlert("OK");
    });
    runAlertPanel({}, "<b>a</b>", "OK", {});
}

TEST(AlertPanelTest, panel_whileShown_blocksOtherWindows) {
    QPushButton other("other");
    int clicks = 0;
    QObject::connect(&other, &QPushButton::clicked, [&clicks] { ++clicks; });
    other.show();
    fromTheEventLoop([&other] {
        clickOnScreen(other);
        answerAlert("OK");
    });
    runAlertPanel({}, "message", "OK", {});
    EXPECT_EQ(clicks, 0);
    clickOnScreen(other);
    EXPECT_EQ(clicks, 1);
}

} // namespace
} // namespace velmora::test
