#include "AlertPanel.h"

#include "Desktop.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

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

TEST(AlertPanelTest, more_sentenceIsUnderTheMessageAndDetailsOpenOverIt) {
    fromTheEventLoop([] {
        QMessageBox* const box = alertPanel();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), "Done!");
        EXPECT_EQ(box->informativeText(), "It is long.");
        fromTheEventLoop([box] {
            auto* const window = box->findChild<QDialog*>("detailsWindow");
            ASSERT_NE(window, nullptr);
            EXPECT_EQ(window->findChild<QPlainTextEdit*>("details")->toPlainText(), "one\ntwo");
            for (QPushButton* const button : window->findChildren<QPushButton*>()) {
                if (button->text() == "&Copy") {
                    button->click();
                }
            }
            EXPECT_EQ(QGuiApplication::clipboard()->text(), "one\ntwo");
            window->reject();
        });
        for (QAbstractButton* const button : box->buttons()) {
            if (button->text() == "&Details…") {
                button->click();
            }
        }
        EXPECT_TRUE(box->isVisible());
        answerAlert("OK");
    });
    runAlertPanelWith({"It is long.", "one\ntwo"}, "Done!");
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

QPoint middleOfTheNextAlert() {
    QPoint middle;
    fromTheEventLoop([&middle] {
        middle = alertPanel()->geometry().center();
        answerAlert("OK");
    });
    runAlertPanel({}, "message", "OK", {});
    return middle;
}

TEST(AlertPanelTest, panel_standsOverTheMiddleOfTheWindowInUse) {
    QWidget window;
    window.setGeometry(300, 300, 400, 400);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const QPoint middle = middleOfTheNextAlert();
    EXPECT_LE((middle - window.geometry().center()).manhattanLength(), 4);
}

TEST(AlertPanelTest, panel_windowAtTheEdge_staysOnTheScreen) {
    QWidget window;
    window.setGeometry(-200, -100, 240, 120);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    fromTheEventLoop([] {
        EXPECT_TRUE(alertPanel()->screen()->availableGeometry().contains(alertPanel()->geometry()));
        answerAlert("OK");
    });
    runAlertPanel({}, "message", "OK", {});
}

TEST(AlertPanelTest, panel_asASheetGoesAway_belongsToTheWindowUnderIt) {
    QWidget window;
    window.setGeometry(300, 300, 400, 400);
    window.show();
    QDialog sheet(&window);
    sheet.setGeometry(0, 0, 100, 100);
    QPoint middle;
    QObject::connect(&sheet, &QDialog::finished, [&middle] { middle = middleOfTheNextAlert(); });
    sheet.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    sheet.accept();
    EXPECT_LE((middle - window.geometry().center()).manhattanLength(), 4);
}

TEST(AlertPanelTest, panel_nothingHasTheFocus_standsOverAWindowAndNoTip) {
    QWidget window;
    window.setGeometry(300, 300, 400, 400);
    window.show();
    std::vector<std::unique_ptr<QWidget>> tips;
    for (int i = 0; i < 16; ++i) {
        tips.push_back(std::make_unique<QWidget>(nullptr, Qt::ToolTip));
        tips.back()->setGeometry(0, 100, 100, 100);
        tips.back()->show();
    }
    {
        QWidget focused;
        focused.show();
        focused.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&focused));
    }
    ASSERT_EQ(QGuiApplication::focusWindow(), nullptr);
    const QPoint middle = middleOfTheNextAlert();
    EXPECT_LE((middle - window.geometry().center()).manhattanLength(), 4);
}

} // namespace
} // namespace velmora::test
