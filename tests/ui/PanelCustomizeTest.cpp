#include "PanelSupport.h"

#include "ModalSession.h"

#include <functional>

namespace velmora::test {
namespace {

/// The way from a panel through the profile editor and back.
template <class Panel> class PanelCustomizeTest : public PanelTest<Panel> {
protected:
    static constexpr bool kIsCutter = std::is_same_v<Panel, cutterWinController>;

    void SetUp() override {
        this->showPanel();
        this->selectRow(1);
    }

    /// Opens the editor and lets `inside` act there; the editor must be closed by then.
    void customize(const std::function<void(QWidget& editor)>& inside) {
        fromTheEventLoop([inside] {
            QWidget* const editor = modalWindow();
            ASSERT_NE(editor, nullptr);
            inside(*editor);
            EXPECT_NE(modalWindow(), editor);
        });
        this->press("mButCustomize");
    }
    static QComboBox& editorBox(QWidget& editor, const char* name) {
        return *editor.findChild<QComboBox*>(name);
    }
    static void pressIn(QWidget& editor, const char* button) {
        QTest::mouseClick(editor.findChild<QAbstractButton*>(button), Qt::LeftButton);
    }
};

using Panels = ::testing::Types<cutterWinController, joinerWinController>;
TYPED_TEST_SUITE(PanelCustomizeTest, Panels);

TYPED_TEST(PanelCustomizeTest, editor_opens_showsThePanelsChoices) {
    this->choose("mVideoSize", 1);
    this->choose("mAudioQuality", 0);
    this->customize([](QWidget& editor) {
        EXPECT_EQ(TestFixture::editorBox(editor, "comVResolution").currentText(), "640x480");
        EXPECT_EQ(TestFixture::editorBox(editor, "comABitrate").currentText(), "96");
        EXPECT_EQ(TestFixture::editorBox(editor, "comVEncoder").currentText(), "H264");
        EXPECT_EQ(TestFixture::editorBox(editor, "comAChannels").currentText(), "2 (Stereo)");
        EXPECT_EQ(TestFixture::editorBox(editor, "comVFrameRate").currentText(), "25");
        TestFixture::pressIn(editor, "btCancel");
    });
}

TYPED_TEST(PanelCustomizeTest, editor_otherProfileChosen_offersThatOnes) {
    this->choose("mComboBox", 1);
    this->customize([](QWidget& editor) {
        EXPECT_EQ(TestFixture::editorBox(editor, "comABitrate").count(), 2);
        EXPECT_EQ(TestFixture::editorBox(editor, "comABitrate").currentText(), "64");
        EXPECT_EQ(TestFixture::editorBox(editor, "comVFrameRate").currentText(), "20");
        TestFixture::pressIn(editor, "btCancel");
    });
}

TYPED_TEST(PanelCustomizeTest, confirmed_choicesComeBackAndReachTheStart) {
    this->customize([](QWidget& editor) {
        TestFixture::editorBox(editor, "comVEncoder").setCurrentText("MPEG4");
        TestFixture::editorBox(editor, "comVResolution").setCurrentText("320x240");
        TestFixture::editorBox(editor, "comVBitrate").setCurrentText("500 kbps");
        TestFixture::editorBox(editor, "comVFrameRate").setCurrentText("30");
        TestFixture::editorBox(editor, "comAEncoder").setCurrentText("MP3");
        TestFixture::editorBox(editor, "comASamplerate").setCurrentText("48000");
        TestFixture::editorBox(editor, "comABitrate").setCurrentText("96");
        TestFixture::editorBox(editor, "comAChannels").setCurrentText("1 (Mono)");
        TestFixture::pressIn(editor, "btOK");
    });
    EXPECT_EQ(this->box("mVideoSize").currentText(), "320x240");
    EXPECT_EQ(this->box("mVideoQuality").currentText(), "500 kbps");
    EXPECT_EQ(this->box("mFrameRate").currentText(), "30");
    EXPECT_EQ(this->box("mSampleRate").currentText(), "48000");
    EXPECT_EQ(this->box("mAudioQuality").currentText(), "96");
    EXPECT_EQ(currentSetting->width, 320);
    EXPECT_EQ(currentSetting->height, 240);
    *currentSetting = {};
    this->panel_->getSetInfo();
    EXPECT_EQ(currentSetting->vEncoder, "MPEG4");
    EXPECT_EQ(currentSetting->aEncoder, "MP3");
    EXPECT_EQ(currentSetting->aChannels, "1");
    EXPECT_EQ(currentSetting->vFrameRate, "30");
    EXPECT_EQ(currentSetting->vResolution, "320x240");
}

TYPED_TEST(PanelCustomizeTest, confirmedUnchanged_leavesThePanelAsItWas) {
    this->customize([](QWidget& editor) { TestFixture::pressIn(editor, "btOK"); });
    EXPECT_EQ(this->box("mFrameRate").currentText(), this->kIsCutter ? kSourceFrameRate : "25");
    EXPECT_EQ(this->box("mVideoSize").currentText(), "160x120");
    EXPECT_EQ(this->panel_->mAudioChannels, "2");
    EXPECT_EQ(currentSetting->vFrameRate, this->kIsCutter ? "0" : "25");
}

TYPED_TEST(PanelCustomizeTest, confirmedThenOpenedAgain_showsWhatWasConfirmed) {
    this->customize([](QWidget& editor) {
        TestFixture::editorBox(editor, "comVEncoder").setCurrentText("MPEG4");
        TestFixture::pressIn(editor, "btOK");
    });
    this->customize([](QWidget& editor) {
        EXPECT_EQ(TestFixture::editorBox(editor, "comVEncoder").currentText(), "MPEG4");
        TestFixture::pressIn(editor, "btCancel");
    });
}

TYPED_TEST(PanelCustomizeTest, cancelled_changesNeitherPanelNorSetting) {
    currentSetting->profileName = "before";
    currentSetting->vBitrate = "7";
    currentSetting->width = 3;
    for (const char* const way : {"btCancel", "close", "escape"}) {
        this->customize([way](QWidget& editor) {
            TestFixture::editorBox(editor, "comVResolution").setCurrentText("320x240");
            if (way == std::string("btCancel")) {
                TestFixture::pressIn(editor, "btCancel");
            } else if (way == std::string("close")) {
                editor.close();
            } else {
                QTest::keyClick(&editor, Qt::Key_Escape);
            }
        });
        EXPECT_EQ(this->box("mVideoSize").currentText(), "160x120") << way;
        EXPECT_EQ(currentSetting->profileName, "before");
        EXPECT_EQ(currentSetting->vBitrate, "7");
        EXPECT_EQ(currentSetting->vResolution, "");
        EXPECT_EQ(currentSetting->width, 3);
    }
}

TYPED_TEST(PanelCustomizeTest, confirmedThenOtherProfile_takesThatOnesDefaults) {
    this->customize([](QWidget& editor) {
        TestFixture::editorBox(editor, "comAChannels").setCurrentText("1 (Mono)");
        TestFixture::pressIn(editor, "btOK");
    });
    this->choose("mComboBox", 1);
    this->choose("mComboBox", 0);
    EXPECT_EQ(this->panel_->mAudioChannels, "2");
}

TYPED_TEST(PanelCustomizeTest, editor_overAModalPanel_works) {
    this->panel_->window().hide();
    fromTheEventLoop([this] {
        this->customize([](QWidget& editor) {
            clickOnScreen(*editor.findChild<QAbstractButton*>("btCancel"));
            EXPECT_FALSE(editor.isVisible());
        });
        EXPECT_EQ(modalWindow(), &this->panel_->window());
        this->panel_->window().close();
    });
    runModalForWindow(this->panel_->window());
    EXPECT_EQ(modalWindow(), nullptr);
}

} // namespace
} // namespace velmora::test
