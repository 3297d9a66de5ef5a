#include "ConversionEngine.h"
#include "ConverterController.h"
#include "MainWindowSupport.h"
#include "ModalSession.h"
#include "OpenedUrls.h"
#include "SettingControler.h"
#include "SharedState.h"
#include "WindowReading.h"
#include "cutterWinController.h"
#include "joinerWinController.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QSet>
#include <QStyleHints>
#include <QTest>

#include <algorithm>

namespace velmora::test {
namespace {

/// All windows by keys alone, and read as they are drawn. A video of 4 s is at hand.
class KeyboardTest : public MainWindowTest {
protected:
    KeyboardTest() {
        // Some desktops let Tab pass over everything but fields of text.
        QGuiApplication::styleHints()->setTabFocusBehavior(Qt::TabFocusAllControls);
    }

    QWidget& mainWin() { return controller_.mainWin(); }

    /// Tab comes to these in this order, Shift+Tab in the opposite one, and nothing is left out.
    static void expectWalk(QWidget& window, const QStringList& expected) {
        const QStringList walk = walkBy(window, Qt::Key_Tab);
        EXPECT_EQ(oneLine(notReachedBy(window, walk)), "");
        EXPECT_EQ(oneLine(fromFirst(walk, expected.front())), oneLine(expected));
        const QStringList back = walkBy(window, Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(oneLine(fromFirst(back, expected.back())), oneLine(reversed(expected)));
    }
    static QStringList fromFirst(QStringList walk, const QString& first) {
        std::rotate(walk.begin(), walk.begin() + std::max<qsizetype>(0, walk.indexOf(first)),
                    walk.end());
        return walk;
    }
    static QStringList reversed(QStringList names) {
        std::reverse(names.begin(), names.end());
        return names;
    }
    static std::string oneLine(const QStringList& names) { return names.join(' ').toStdString(); }

    /// Does `action` in the panel of the workspace on show.
    void inPanel(const std::function<void(QWidget&)>& action) {
        const InNextPanel panel(action);
        QTest::keyClick(mainWin().windowHandle(), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(panel.hasOpened());
    }
    void addTwoRows() {
        show("Video Joiner");
        for (int row = 0; row < 2; ++row) {
            dropFiles(*table().viewport(), {media("video-only.mp4")});
        }
    }
    static void expectPanelWalks(QWidget& panel, const QString& start) {
        QStringList direct{"mRadioDirect", "mTextField1", "mButBrowse", "mTextField2", start};
        if (start == "mButStartCut") { // joins are exact by re-encoding alone
            direct.insert(1, "mExact");
        }
        expectWalk(panel, direct);
        auto* const direction = panel.findChild<QRadioButton*>("mRadioDirect");
        direction->setFocus();
        QTest::keyClick(direction, Qt::Key_Down); // the other row
        const QStringList reencode{"mRadioReencode",
                                   "mExact",
                                   "mComboBox",
                                   "mButCustomize",
                                   "mVideoQuality",
                                   "mVideoSize",
                                   "mFrameRate",
                                   "mAudioQuality",
                                   "mSampleRate",
                                   "mTextField1",
                                   "mButBrowse",
                                   "mTextField2",
                                   start};
        expectWalk(panel, reencode);
        EXPECT_EQ(oneLine(mnemonicsUsedTwice(panel)), "");
    }
    static void expectPanelIsReadable(QWidget& panel) {
        EXPECT_EQ(oneLine(hardToRead(panel)), "");
        auto* const reencode = panel.findChild<QRadioButton*>("mRadioReencode");
        reencode->setFocus();
        QTest::keyClick(reencode, Qt::Key_Space);
        panel.findChild<QLineEdit*>("mTextField1")->setText("/out");
        EXPECT_EQ(oneLine(hardToRead(panel)), "");
    }
    void inEditor(const std::function<void(QWidget&)>& action) {
        const InNextPanel editor(action);
        SettingControler().showSettingFrom(&mainWin());
        EXPECT_TRUE(editor.hasOpened());
    }
    void inProgressWindow(const std::function<void(QWidget&)>& action) {
        const InNextPanel window(action);
        ConverterController converter;
        ConverterInfo job;
        job.isCutter = 1;
        job.isDirectly = 1;
        job.fullPath = QString::fromStdString(folder_ / "out.mp4");
        converter.showConverterFrom(job);
        EXPECT_TRUE(window.hasOpened());
    }
};

TEST_F(KeyboardTest, emptyCutter_tab_comesToEveryControl) {
    expectWalk(mainWin(),
               {"segmentVideoCutter", "mTextFieldHowTo", "mCustomImage", "mButtonSetImage",
                "mButtonLeft", "mLabelStart", "mLabelEnd", "mButtonRight", "mButtonCutterAdd",
                "mButtonPlay", "mButtonCutterSetting"});
}

TEST_F(KeyboardTest, loadedCutter_tab_comesToEveryControl) {
    dropOnPreview(media("video-only.mp4"));
    expectWalk(mainWin(), {"segmentVideoCutter", "mTextFieldHowTo", "mCustomSlider", "mTimeline",
                           "mButtonLeft", "mLabelStart", "mLabelEnd", "mButtonRight",
                           "mButtonCutterAdd", "mButtonPlay", "mButtonCutterSetting"});
}

TEST_F(KeyboardTest, helpLine_reachedByEitherWayAndReturn_opensThePage) {
    const OpenedUrls opened;
    auto* const line = &outlet("mTextFieldHowTo");
    for (const Qt::Key way : {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Tab}) {
        outlet(way == Qt::Key_Tab ? "segmentVideoCutter" : "mCustomImage").setFocus();
        QTest::keyClick(mainWin().windowHandle(), way);
        ASSERT_EQ(QApplication::focusWidget(), line);
        QTest::keyClick(mainWin().windowHandle(), Qt::Key_Return);
    }
    EXPECT_EQ(opened.urls().size(), 3);
}

TEST_F(KeyboardTest, joiner_tab_comesToEveryControl) {
    const QStringList expected{"segmentVideoJoiner", "mTextFieldHowTo",     "tableView",
                               "mButtonJoinerAdd",   "mButtonJoinerRemove", "mButtonJoinerSetting"};
    show("Video Joiner");
    expectWalk(mainWin(), expected);
    addTwoRows();
    expectWalk(mainWin(), expected);
}

TEST_F(KeyboardTest, cutterPanel_tab_comesToEveryControl) {
    dropOnPreview(media("video-only.mp4"));
    inPanel([](QWidget& panel) { expectPanelWalks(panel, "mButStartCut"); });
}

TEST_F(KeyboardTest, joinerPanel_tab_comesToEveryControl) {
    addTwoRows();
    inPanel([](QWidget& panel) { expectPanelWalks(panel, "mButStartJoin"); });
}

TEST_F(KeyboardTest, editor_tab_comesToEveryControl) {
    inEditor([](QWidget& editor) {
        expectWalk(editor, {"comVEncoder", "comVResolution", "comVBitrate", "comVFrameRate",
                            "comAEncoder", "comASamplerate", "comABitrate", "comAChannels",
                            "btDefault", "btCancel", "btOK"});
        EXPECT_EQ(oneLine(mnemonicsUsedTwice(editor)), "");
    });
}

TEST_F(KeyboardTest, progressWindow_tab_comesToCancel) {
    inProgressWindow([](QWidget& window) { expectWalk(window, {"btCancel"}); });
}

/// Menus can be opened, and everything in them chosen, by letters of their own.
TEST_F(KeyboardTest, menus_everyEntry_hasALetterOfItsOwn) {
    QStringList titles;
    for (const QAction* const title : controller_.mainWin().menuBar()->actions()) {
        const QMenu* const menu = title->menu();
        titles.append(QKeySequence::mnemonic(title->text()).toString());
        QStringList letters;
        for (const QAction* const action : menu->actions()) {
            if (action->isSeparator() || !action->isVisible()) {
                continue;
            }
            letters.append(QKeySequence::mnemonic(action->text()).toString());
            EXPECT_NE(letters.back(), "") << action->objectName().toStdString();
        }
        EXPECT_EQ(letters.removeDuplicates(), 0) << menu->title().toStdString();
    }
    EXPECT_EQ(titles.size(), 4);
    EXPECT_EQ(titles.removeDuplicates(), 0);
    EXPECT_FALSE(titles.contains(""));
}

TEST_F(KeyboardTest, shortcuts_areUsedOnceInEachWorkspace) {
    for (const char* const workspace : {"Video Cutter", "Video Joiner"}) {
        show(workspace);
        QStringList keys;
        for (const QAction* const action : controller_.mainWin().findChildren<QAction*>()) {
            for (const QKeySequence& shortcut : action->shortcuts()) {
                if (action->isEnabled() && !action->objectName().isEmpty()) {
                    keys.append(shortcut.toString());
                }
            }
        }
        EXPECT_GE(keys.size(), 6);
        EXPECT_EQ(keys.removeDuplicates(), 0) << workspace << ' ' << keys.join(' ').toStdString();
    }
}

/// Whatever a button does, its space key does as well.
TEST_F(KeyboardTest, buttons_pressedBySpace_act) {
    dropOnPreview(media("video-only.mp4"));
    bar().moveByUser(25);
    outlet("mButtonLeft").setFocus();
    QTest::keyClick(&outlet("mButtonLeft"), Qt::Key_Space);
    EXPECT_EQ(controller_.getTextFieldValueMs(1), 1000);
    addTwoRows();
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Down);
    outlet("mButtonJoinerRemove").setFocus();
    QTest::keyClick(&outlet("mButtonJoinerRemove"), Qt::Key_Space);
    EXPECT_EQ(joinerFileList->size(), 1U);
}

TEST_F(KeyboardTest, mainWindow_textsCanBeRead) {
    EXPECT_EQ(oneLine(hardToRead(mainWin())), "");
    dropOnPreview(media("video-only.mp4"));
    EXPECT_EQ(oneLine(hardToRead(mainWin())), "");
    show("Video Joiner");
    EXPECT_EQ(oneLine(hardToRead(mainWin())), "");
    addTwoRows();
    EXPECT_EQ(oneLine(hardToRead(mainWin())), "");
}

TEST_F(KeyboardTest, cutterPanel_textsCanBeRead) {
    dropOnPreview(media("video-only.mp4"));
    inPanel([](QWidget& panel) { expectPanelIsReadable(panel); });
}

TEST_F(KeyboardTest, joinerPanel_textsCanBeRead) {
    addTwoRows();
    inPanel([](QWidget& panel) { expectPanelIsReadable(panel); });
}

TEST_F(KeyboardTest, editorAndProgressWindow_textsCanBeRead) {
    inEditor([](QWidget& editor) { EXPECT_EQ(oneLine(hardToRead(editor)), ""); });
    inProgressWindow([](QWidget& window) { EXPECT_EQ(oneLine(hardToRead(window)), ""); });
}

} // namespace
} // namespace velmora::test
