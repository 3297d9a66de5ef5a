#include "CustomSlider.h"
#include "JoinerTable.h"
#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "OpenedUrls.h"
#include "SharedState.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

namespace velmora::test {
namespace {

/// What menus and keys do. A video of 4 s is loaded.
class MainMenuTest : public MainWindowTest {
protected:
    void SetUp() override {
        dropOnPreview(media("video-only.mp4"));
        controller_.mainWin().activateWindow();
        outlet("centralwidget").setFocus();
    }

    /// A key pressed wherever the focus is.
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {}) {
        controller_.mainWin().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&controller_.mainWin()));
        QTest::keyClick(controller_.mainWin().windowHandle(), which, modifiers);
    }
    QWidget* workspace() { return outlet<QStackedWidget>("curView").currentWidget(); }

    OpenedUrls opened_;
};

TEST_F(MainMenuTest, ctrlO_opensThePanel) {
    key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(isPanelOpen());
}

TEST_F(MainMenuTest, ctrlDigits_switchWorkspaces) {
    key(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(workspace(), &outlet("viewJoiner"));
    EXPECT_EQ(sharedFileList, joinerFileList);
    EXPECT_EQ(controller_.selectedSegmentLabel(), "Video Joiner");
    key(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(workspace(), &outlet("viewCutter"));
}

TEST_F(MainMenuTest, ctrlP_plays) {
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(opened_.urls().size(), 1);
}

TEST_F(MainMenuTest, space_playsOnlyWhileTheBarHasTheFocus) {
    outlet("mButtonCutterAdd").setFocus();
    key(Qt::Key_Space);
    EXPECT_TRUE(isPanelOpen());
    EXPECT_TRUE(opened_.urls().isEmpty());
    choose({media("video-only.mp4")});
    controller_.mainWin().activateWindow();
    bar().setFocus();
    key(Qt::Key_Space);
    EXPECT_EQ(opened_.urls().size(), 1);
}

TEST_F(MainMenuTest, pointKeys_setThePoints) {
    bar().moveByUser(25);
    key(Qt::Key_I);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 1000);
    bar().moveByUser(75);
    key(Qt::Key_O);
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 3000);
    bar().moveByUser(50);
    key(Qt::Key_BracketLeft);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 2000);
    bar().moveByUser(60);
    key(Qt::Key_BracketRight);
    EXPECT_EQ(controller_.getTextFieldValueMs(2), 2400);
}

TEST_F(MainMenuTest, keys_inATimeField_type) {
    bar().moveByUser(50);
    auto& field = outlet<QLineEdit>("mLabelStart");
    field.setFocus();
    field.clear();
    for (const Qt::Key typed : {Qt::Key_I, Qt::Key_O, Qt::Key_BracketLeft, Qt::Key_Space}) {
        QTest::keyClick(controller_.mainWin().windowHandle(), typed);
    }
    EXPECT_EQ(field.text().size(), 4);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 0);
    EXPECT_TRUE(opened_.urls().isEmpty());
}

TEST_F(MainMenuTest, ctrlArrows_stepTheBarFromAnywhere) {
    bar().moveByUser(50);
    key(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(bar().doubleValue(), 51);
    key(Qt::Key_Left, Qt::ControlModifier);
    key(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(bar().doubleValue(), 49);
    key(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(bar().doubleValue(), 59);
    key(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(bar().doubleValue(), 49);
    EXPECT_EQ(text("mLabelDrag"), "00:00:01.960/00:00:04.000");
}

TEST_F(MainMenuTest, ctrlReturn_startsTheJobOfTheWorkspaceOnShow) {
    QString title;
    const InNextPanel panel([&title](QWidget& window) { title = window.windowTitle(); });
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(title, "Cutter Setting");
    show("Video Joiner");
    EXPECT_EQ(alertsOf([this] { key(Qt::Key_Return, Qt::ControlModifier); }),
              std::vector{errorAlert("At leaset select two video files!")});
}

TEST_F(MainMenuTest, keysOfTheCutter_inTheJoiner_doNothing) {
    bar().moveByUser(50);
    show("Video Joiner");
    key(Qt::Key_I);
    key(Qt::Key_Right, Qt::ControlModifier);
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 0);
    EXPECT_EQ(bar().doubleValue(), 50);
    EXPECT_TRUE(opened_.urls().isEmpty());
}

TEST_F(MainMenuTest, about_tellsVersionAndLicences) {
    controller_.mainWin().findChild<QAction*>("actionAbout")->trigger();
    auto* const box = controller_.mainWin().findChild<QMessageBox*>("aboutBox");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "About Velmora");
    EXPECT_EQ(box->text(), "Velmora " VELMORA_VERSION);
    EXPECT_TRUE(box->informativeText().contains("FFmpeg"));
    box->close();
}

TEST_F(MainMenuTest, ctrlQ_endsTheProgram) {
    QTimer::singleShot(0, &controller_, [this] { key(Qt::Key_Q, Qt::ControlModifier); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(log_.count("exit button xxxxxxxxxx"), 1);
}

TEST_F(MainMenuTest, tabKey_goesThroughTheWorkspaceInReadingOrder) {
    QStringList order;
    bar().setFocus();
    while (order.size() < 8) {
        key(Qt::Key_Tab);
        order.append(QApplication::focusWidget()->objectName());
    }
    EXPECT_EQ(order,
              QStringList({"mTimeline", "mButtonLeft", "mLabelStart", "mLabelEnd", "mButtonRight",
                           "mButtonCutterAdd", "mButtonPlay", "mButtonCutterSetting"}));
}

} // namespace
} // namespace velmora::test
