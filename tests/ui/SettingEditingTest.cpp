#include "SettingEditing.h"

#include "ModalSession.h"
#include "PanelSupport.h"

namespace velmora::test {
namespace {

/// The editor over a window of the test's, with the profiles of the test's.
class SettingEditingTest : public ::testing::Test {
protected:
    SettingEditingTest() {
        writeProfiles(folder_ / "profile.plist", twoProfiles());
        currentSetting = std::make_shared<NodeSetting>();
        currentSetting->aBitrate = "before";
        window_.show();
    }
    ~SettingEditingTest() override {
        currentSetting.reset();
        editorProfileStore.reset();
    }

    /// Puts a profile into the setting, opens the editor and presses `button` there.
    bool edit(
        const char* button, const std::function<void()>& meanwhile = [] {}) {
        fromTheEventLoop([button, meanwhile] {
            meanwhile();
            QTest::mouseClick(modalWindow()->findChild<QAbstractButton*>(button), Qt::LeftButton);
        });
        return editing_.edit(window_, QString::fromStdString(folder_ / "profile.plist"), [] {
            currentSetting->profileName = "Video (*.mp4)";
            currentSetting->aBitrate = "96";
        });
    }

    TemporaryFolder folder_;
    QWidget window_;
    SettingEditing editing_;
};

TEST_F(SettingEditingTest, confirmed_keepsWhatTheEditorHasPutIntoTheSetting) {
    EXPECT_TRUE(edit("btOK", [] {
        modalWindow()->findChild<QComboBox*>("comABitrate")->setCurrentText("128");
    }));
    EXPECT_EQ(currentSetting->aBitrate, "128");
}

TEST_F(SettingEditingTest, editor_opensWithWhatThePanelHasPutIntoTheSetting) {
    QString shown;
    edit("btCancel",
         [&shown] { shown = modalWindow()->findChild<QComboBox*>("comABitrate")->currentText(); });
    EXPECT_EQ(shown, "96");
}

TEST_F(SettingEditingTest, refused_putsTheSettingBack) {
    EXPECT_FALSE(edit("btCancel"));
    EXPECT_EQ(currentSetting->aBitrate, "before");
    EXPECT_EQ(currentSetting->profileName, "");
}

TEST_F(SettingEditingTest, refused_afterTheSettingWasReplaced_putsTheOldOneBack) {
    const std::shared_ptr<NodeSetting> old = currentSetting;
    EXPECT_FALSE(edit("btCancel", [] {
        currentSetting = std::make_shared<NodeSetting>();
        currentSetting->aBitrate = "new";
    }));
    EXPECT_EQ(currentSetting->aBitrate, "new");
    EXPECT_EQ(old->aBitrate, "before");
}

TEST_F(SettingEditingTest, editor_opensAgain) {
    EXPECT_TRUE(edit("btOK"));
    EXPECT_FALSE(edit("btCancel"));
}

} // namespace
} // namespace velmora::test
