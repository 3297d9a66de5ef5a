#pragma once

#include "AlertReader.h"
#include "ConverterController.h"
#include "Desktop.h"
#include "LogLines.h"
#include "SettingControler.h"
#include "SharedState.h"
#include "TestMedia.h"
#include "cutterWinController.h"
#include "joinerWinController.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::test {

struct TestParameter {
    std::string name;
    std::vector<std::string> choices;
    int index = 0;
};

struct TestProfile {
    std::string name;
    std::vector<TestParameter> parameters;
};

/// Writes them as a property list, with ids from 1.
void writeProfiles(const std::string& path, const std::vector<TestProfile>& profiles);

/// Two profiles whose choices and defaults differ in everything.
std::vector<TestProfile> twoProfiles();

/// A panel over a property list of the test's, with its fields open. Without a path it reads the
/// program's own.
template <class Panel> class OpenedPanel : public Panel {
public:
    explicit OpenedPanel(QString profiles) : profiles_(std::move(profiles)) {}

    using Panel::applyChoices;
    using Panel::converterController;
    using Panel::mAudioChannels;
    using Panel::mAudioEncoder;
    using Panel::mExtension;
    using Panel::mInputPath;
    using Panel::mOutputFilename;
    using Panel::mOutputPath;
    using Panel::mProfileArray;
    using Panel::mSetInfo;
    using Panel::mVideoEncoder;
    using Panel::newJob;

protected:
    QString profilePath() const override {
        return profiles_.isEmpty() ? Panel::profilePath() : profiles_;
    }

private:
    QString profiles_;
};

/// The names that differ between the two panels.
template <class Panel> struct PanelNames;
template <> struct PanelNames<cutterWinController> {
    static constexpr auto kWindow = "mCutterSettingWin";
    static constexpr auto kStart = "mButStartCut";
    static constexpr auto kTitle = "Cutter Setting";
    static constexpr auto kStartLabel = "Start cut";
};
template <> struct PanelNames<joinerWinController> {
    static constexpr auto kWindow = "mJoinerSettingWin";
    static constexpr auto kStart = "mButStartJoin";
    static constexpr auto kTitle = "Joiner Setting";
    static constexpr auto kStartLabel = "Start join";
};

/// A test with a panel that is on screen, a shared state and a folder of its own.
template <class Panel> class PanelTest : public ::testing::Test {
protected:
    PanelTest() {
        currentSetting = std::make_shared<NodeSetting>();
        cutterFileList = std::make_shared<FileList>();
        joinerFileList = std::make_shared<FileList>();
        sharedFileList =
            std::is_same_v<Panel, cutterWinController> ? cutterFileList : joinerFileList;
    }
    ~PanelTest() override {
        panel_.reset();
        currentSetting.reset();
        for (auto* const list : {&cutterFileList, &joinerFileList, &sharedFileList}) {
            list->reset();
        }
        editorProfileStore.reset();
    }

    QString path(const std::string& name) const { return QString::fromStdString(folder_ / name); }

    /// Makes the panel, to be named "clip" with the source extension "mov".
    OpenedPanel<Panel>& makePanel(const std::vector<TestProfile>& profiles = twoProfiles()) {
        writeProfiles(folder_ / "profile.plist", profiles);
        return makePanelOver(path("profile.plist"));
    }
    OpenedPanel<Panel>& makePanelOver(const QString& profileList) {
        panel_ = std::make_unique<OpenedPanel<Panel>>(profileList);
        if constexpr (std::is_same_v<Panel, cutterWinController>) {
            panel_->setCutterOutputFilename("clip", "mov");
        } else {
            panel_->setJoinerOutputFilename("clip");
            panel_->setFileExtension("mov");
        }
        return *panel_;
    }
    /// The same, shown and not modal.
    OpenedPanel<Panel>& showPanel(const std::vector<TestProfile>& profiles = twoProfiles()) {
        makePanel(profiles);
        show();
        return *panel_;
    }

    void show() const {
        panel_->window().show();
        panel_->window().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&panel_->window()));
    }

    template <class Widget> Widget& outlet(const char* name) const {
        auto* const widget = panel_->window().template findChild<Widget*>(name);
        if (!widget) {
            throw std::runtime_error(std::string("no widget ") + name);
        }
        return *widget;
    }
    QComboBox& box(const char* name) const { return outlet<QComboBox>(name); }
    QLineEdit& field(const char* name) const { return outlet<QLineEdit>(name); }
    QStringList choices(const char* name) const {
        QStringList all;
        for (int i = 0; i < box(name).count(); ++i) {
            all.append(box(name).itemText(i));
        }
        return all;
    }
    void press(const char* name) const {
        QTest::mouseClick(&outlet<QAbstractButton>(name), Qt::LeftButton);
    }
    void pressStart() const { press(PanelNames<Panel>::kStart); }
    void selectRow(int row) const {
        auto& button = outlet<QAbstractButton>(row == 0 ? "mRadioDirect" : "mRadioReencode");
        QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
    }
    /// Chooses from a box with the keyboard.
    void choose(const char* name, int position) const {
        QComboBox& chosen = box(name);
        for (int i = 0; i < chosen.count(); ++i) {
            QTest::keyClick(&chosen, Qt::Key_Up);
        }
        for (int i = 0; i < position; ++i) {
            QTest::keyClick(&chosen, Qt::Key_Down);
        }
        ASSERT_EQ(chosen.currentIndex(), position);
    }
    /// Types over what stands in a box, and goes on to the next widget.
    void typeInto(const char* name, const QString& text) const {
        QLineEdit& editor = *box(name).lineEdit();
        editor.setFocus();
        editor.selectAll();
        QTest::keyClicks(&editor, text);
        QTest::keyClick(&editor, Qt::Key_Tab);
    }
    void typeFolder(const QString& folder) const {
        field("mTextField1").clear();
        QTest::keyClicks(&field("mTextField1"), folder);
    }
    void typeName(const QString& name) const {
        field("mTextField2").clear();
        QTest::keyClicks(&field("mTextField2"), name);
    }
    /// Presses start; the alert that comes is answered and must say this.
    void expectRefusal(const QString& message, const QString& title = {}) const {
        AlertReader alerts;
        pressStart();
        ASSERT_EQ(alerts.messages, QStringList(message));
        EXPECT_EQ(alerts.buttons, QStringList("OK"));
        if (title.isEmpty()) {
            EXPECT_NE(alerts.titles.value(0), "Error");
        } else {
            EXPECT_EQ(alerts.titles, QStringList(title));
        }
    }

    TemporaryFolder folder_;
    std::unique_ptr<OpenedPanel<Panel>> panel_;
};

inline constexpr auto kChooseFolder = "Please click browse button to select output first!";
inline constexpr auto kFileExists = "File already exists! please rename file name!";
inline constexpr auto kSourceFrameRate = "same as original file";

} // namespace velmora::test
