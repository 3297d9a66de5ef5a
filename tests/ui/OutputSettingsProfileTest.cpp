// Profiles and what is chosen of them.

#include "OutputSettingsSupport.h"

#include "Bundle.h"
#include "ModalSession.h"
#include "ProfileInfo.h"
#include "UserName.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>

namespace velmora::test {
namespace {

TYPED_TEST_SUITE(OutputSettingsTest, Panels);

TYPED_TEST(OutputSettingsTest, profile_chosen_fillsTheBoxesAnew) {
    auto& panel = this->showPanel();
    this->selectRow(1);
    const LogLines lines;
    this->choose("mComboBox", 1);
    EXPECT_TRUE(lines.contains("index:1 format:Film (*.avi)"));
    EXPECT_EQ(this->choices("mVideoQuality"), QStringList("200"));
    EXPECT_EQ(this->choices("mVideoSize"), QStringList("176x144 small"));
    EXPECT_EQ(this->choices("mFrameRate"), this->offered({"10", "20"}));
    EXPECT_EQ(this->box("mFrameRate").currentText(), this->kIsCutter ? kSourceFrameRate : "20");
    EXPECT_EQ(this->choices("mAudioQuality"), QStringList({"64", "80"}));
    EXPECT_EQ(this->choices("mSampleRate"), QStringList({"32000", "22050"}));
    EXPECT_EQ(this->box("mSampleRate").currentText(), "22050");
    EXPECT_EQ(panel.mVideoEncoder, "MPEG4");
    EXPECT_EQ(panel.mAudioEncoder, "MP3");
    EXPECT_EQ(panel.mAudioChannels, "1");
}

TYPED_TEST(OutputSettingsTest, profile_typedName_selectsThatProfile) {
    this->showPanel();
    this->selectRow(1);
    const LogLines lines;
    this->typeInto("mComboBox", "Film (*.avi)");
    EXPECT_EQ(lines.all(), QStringList("index:1 format:Film (*.avi)"));
    EXPECT_EQ(this->choices("mVideoQuality"), QStringList("200"));
}

TYPED_TEST(OutputSettingsTest, profile_typedTextThatNamesNone_leavesTheBoxesEmpty) {
    this->showPanel();
    this->selectRow(1);
    const LogLines lines;
    this->typeInto("mComboBox", "film");
    EXPECT_EQ(lines.all(), QStringList("index:-1 format:film"));
    EXPECT_EQ(this->choices("mFrameRate"), this->offered({}));
    for (const char* const name : {"mVideoQuality", "mVideoSize", "mAudioQuality", "mSampleRate"}) {
        EXPECT_EQ(this->box(name).count(), 0) << name;
    }
    EXPECT_EQ(this->choices("mComboBox").size(), 2);
}

TYPED_TEST(OutputSettingsTest, parameterChoice_again_addsTheChoicesOnceMore) {
    auto& panel = this->makePanel();
    panel.window();
    const QStringList sizes{"320x240", "640x480", "160x120"};
    ASSERT_EQ(this->choices("mVideoSize"), sizes);
    panel.parameterChoice("Video (*.mp4)");
    EXPECT_EQ(this->choices("mVideoSize"), sizes + sizes);
    EXPECT_EQ(this->box("mVideoSize").currentIndex(), 2);
}

TYPED_TEST(OutputSettingsTest, profile_visitedWithoutChange_keepsTheParameters) {
    this->showPanel();
    this->selectRow(1);
    this->choose("mVideoSize", 0);
    this->box("mComboBox").setFocus();
    QTest::keyClick(this->box("mComboBox").lineEdit(), Qt::Key_Tab);
    EXPECT_EQ(this->box("mVideoSize").currentText(), "320x240");
}

TYPED_TEST(OutputSettingsTest, profile_withoutParameters_fillsNothing) {
    this->makePanel({{"Bare", {}}, {"Other", {{"other", {"1"}, 0}, {"vEncoder", {}, 0}}}}).window();
    EXPECT_EQ(this->choices("mFrameRate"), this->offered({}));
    EXPECT_EQ(this->box("mVideoSize").count(), 0);
}

TYPED_TEST(OutputSettingsTest, profiles_none_leaveDirectModeOnly) {
    this->makePanelOver(this->path("missing.plist")).window().show();
    EXPECT_FALSE(this->template outlet<QRadioButton>("mRadioReencode").isEnabled());
    this->selectRow(1);
    EXPECT_TRUE(this->template outlet<QRadioButton>("mRadioDirect").isChecked());
    this->typeFolder("/out");
    EXPECT_EQ(this->resultPath(), "/out/clip.mov");
}

TYPED_TEST(OutputSettingsTest, profiles_ofTheProgram_areAllOffered) {
    ProfileInfo shipped;
    shipped.initWithPath(Bundle::pathForResource("profile", "plist"));
    this->makePanelOver({}).window().show();
    this->selectRow(1);
    ASSERT_EQ(this->choices("mComboBox"), shipped.getAllProfileName());
    for (int i = 0; i < this->box("mComboBox").count(); ++i) {
        this->choose("mComboBox", i);
        NodeSetting expected;
        expected.initWithDict(shipped.getProfileByName(this->box("mComboBox").currentText()));
        this->panel_->getSetInfo();
        EXPECT_EQ(currentSetting->vEncoder, expected.vEncoder);
        EXPECT_EQ(currentSetting->vResolution, expected.vResolution);
        EXPECT_EQ(currentSetting->vBitrate, expected.vBitrate);
        EXPECT_EQ(currentSetting->vFrameRate, this->kIsCutter ? "0" : expected.vFrameRate);
        EXPECT_EQ(currentSetting->aEncoder, expected.aEncoder);
        EXPECT_EQ(currentSetting->aSamplerate, expected.aSamplerate);
        EXPECT_EQ(currentSetting->aBitrate, expected.aBitrate);
        EXPECT_EQ(currentSetting->aChannels, expected.aChannels);
    }
}

TYPED_TEST(OutputSettingsTest, getSetInfo_takesTheSelectedChoicesAndTheProfilesEncoders) {
    this->showPanel();
    this->selectRow(1);
    this->choose("mVideoQuality", 1);
    this->choose("mVideoSize", 1);
    this->choose("mFrameRate", 2);
    this->choose("mAudioQuality", 0);
    this->choose("mSampleRate", 1);
    this->panel_->getSetInfo();
    EXPECT_EQ(currentSetting->vBitrate, "400 kbps");
    EXPECT_EQ(currentSetting->vResolution, "640x480");
    EXPECT_EQ(currentSetting->vFrameRate, this->kIsCutter ? "25" : "30");
    EXPECT_EQ(currentSetting->aBitrate, "96");
    EXPECT_EQ(currentSetting->aSamplerate, "48000");
    EXPECT_EQ(currentSetting->vEncoder, "H264");
    EXPECT_EQ(currentSetting->aEncoder, "AAC");
    EXPECT_EQ(currentSetting->aChannels, "2");
}

TYPED_TEST(OutputSettingsTest, getSetInfo_typedText_countsOnlyAsTheEntryThatItNames) {
    this->showPanel();
    this->selectRow(1);
    this->typeInto("mVideoQuality", "450 kbps");
    this->typeInto("mVideoSize", "320X240");
    this->typeInto("mAudioQuality", "96");
    this->typeInto("mFrameRate", "30");
    this->panel_->getSetInfo();
    EXPECT_EQ(currentSetting->vBitrate, "");
    EXPECT_EQ(currentSetting->vResolution, "");
    EXPECT_EQ(currentSetting->aBitrate, "96");
    EXPECT_EQ(currentSetting->vFrameRate, "30");
}

TYPED_TEST(OutputSettingsTest, getSetInfo_unknownProfile_takesNoChoicesButTheEncodersBefore) {
    this->showPanel();
    this->selectRow(1);
    this->choose("mComboBox", 1);
    this->choose("mComboBox", 0);
    this->typeInto("mComboBox", "film");
    for (QString NodeSetting::*const field :
         {&NodeSetting::vResolution, &NodeSetting::vBitrate, &NodeSetting::vFrameRate,
          &NodeSetting::aSamplerate, &NodeSetting::aBitrate}) {
        currentSetting.get()->*field = "before";
    }
    this->panel_->getSetInfo();
    EXPECT_EQ(currentSetting->vResolution, "");
    EXPECT_EQ(currentSetting->vBitrate, "");
    EXPECT_EQ(currentSetting->vFrameRate, this->kIsCutter ? "0" : "");
    EXPECT_EQ(currentSetting->aSamplerate, "");
    EXPECT_EQ(currentSetting->aBitrate, "");
    EXPECT_EQ(currentSetting->vEncoder, "H264");
    EXPECT_EQ(currentSetting->aEncoder, "AAC");
    EXPECT_EQ(currentSetting->aChannels, "2");
}

TYPED_TEST(OutputSettingsTest, getSetInfo_choiceOfTheProfileThatReadsLikeTheSourcesRate_isText) {
    this->showPanel({{"p", {{"vFrameRate", {"1", kSourceFrameRate}, 1}}}});
    this->selectRow(1);
    this->choose("mFrameRate", this->kIsCutter ? 2 : 1);
    this->panel_->getSetInfo();
    EXPECT_EQ(currentSetting->vFrameRate, kSourceFrameRate);
}

TYPED_TEST(OutputSettingsTest, parseResolution_takesTheLeadingNumbers) {
    const auto parsed = [](const QString& text) {
        TypeParam::parseResolution(text);
        return std::pair(currentSetting->width, currentSetting->height);
    };
    EXPECT_EQ(parsed("640x480"), std::pair(640, 480));
    EXPECT_EQ(parsed("1280x720 HD"), std::pair(1280, 720));
    EXPECT_EQ(parsed(" 640x 480"), std::pair(640, 480));
    EXPECT_EQ(parsed("640x480x3"), std::pair(640, 480));
    EXPECT_EQ(parsed("640"), std::pair(640, 0));
    EXPECT_EQ(parsed("ax"), std::pair(0, 0));
    EXPECT_EQ(parsed("640X480"), std::pair(640, 0));
    EXPECT_EQ(parsed(""), std::pair(0, 0));
}

TYPED_TEST(OutputSettingsTest, getExtension_isWhatFollowsTheLastDotUpToABracket) {
    EXPECT_EQ(TypeParam::getExtension("MPEG-4 Video (*.mp4)"), "mp4");
    EXPECT_EQ(TypeParam::getExtension("Video (*.m4v)"), "m4v");
    EXPECT_EQ(TypeParam::getExtension("H.264 (*.mkv) new)"), "mkv");
    EXPECT_EQ(TypeParam::getExtension("a.b.avi"), "avi");
    EXPECT_EQ(TypeParam::getExtension(".avi"), "avi");
    EXPECT_EQ(TypeParam::getExtension("Video (*.mp4) 25/30"), "mp4");
    EXPECT_EQ(TypeParam::getExtension("Custom"), "");
    EXPECT_EQ(TypeParam::getExtension("Custom."), "");
    EXPECT_EQ(TypeParam::getExtension(""), "");
}

TYPED_TEST(OutputSettingsTest, getChannel_isTheTextUpToTheFirstBlank) {
    EXPECT_EQ(TypeParam::getChannel("2 (Stereo)"), "2");
    EXPECT_EQ(TypeParam::getChannel("2"), "2");
    EXPECT_EQ(TypeParam::getChannel(" 2"), "");
    EXPECT_EQ(TypeParam::getChannel(""), "");
}

} // namespace
} // namespace velmora::test
