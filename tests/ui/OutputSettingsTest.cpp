#include "PanelSupport.h"

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

constexpr std::array kParameterBoxes = {"mVideoQuality", "mVideoSize", "mFrameRate",
                                        "mAudioQuality", "mSampleRate"};

/// What both panels have in common; where they differ on purpose, the test says so.
template <class Panel> class OutputSettingsTest : public PanelTest<Panel> {
protected:
    static constexpr bool isCutter = std::is_same_v<Panel, cutterWinController>;

    /// The frame rates on offer for a profile with these.
    static QStringList offered(QStringList rates) {
        if (isCutter)
            rates.prepend(kSourceFrameRate);
        return rates;
    }
    void expectEnabled(bool enabled) const {
        for (const char* const name : kParameterBoxes)
            EXPECT_EQ(this->box(name).isEnabled(), enabled) << name;
        EXPECT_EQ(this->box("mComboBox").isEnabled(), enabled);
        EXPECT_EQ(this->template outlet<QPushButton>("mButCustomize").isEnabled(), enabled);
    }
    QString resultPath() const { return this->template outlet<QLabel>("mResultPath").text(); }
};

using Panels = ::testing::Types<cutterWinController, joinerWinController>;
TYPED_TEST_SUITE(OutputSettingsTest, Panels);

TYPED_TEST(OutputSettingsTest, load_fillsProfilesAndChoicesOfTheFirst) {
    auto& panel = this->makePanel();
    panel.window();
    EXPECT_EQ(this->choices("mComboBox"), QStringList({"Video (*.mp4)", "Film (*.avi)"}));
    EXPECT_EQ(this->box("mComboBox").currentIndex(), 0);
    EXPECT_EQ(this->choices("mVideoQuality"), QStringList({"300 kbps", "400 kbps", "500 kbps"}));
    EXPECT_EQ(this->choices("mVideoSize"), QStringList({"320x240", "640x480", "160x120"}));
    EXPECT_EQ(this->choices("mFrameRate"), this->offered({"15", "25", "30"}));
    EXPECT_EQ(this->choices("mAudioQuality"), QStringList({"96", "128"}));
    EXPECT_EQ(this->choices("mSampleRate"), QStringList({"44100", "48000"}));
    EXPECT_EQ(panel.mProfileArray, this->choices("mComboBox"));
}

TYPED_TEST(OutputSettingsTest, load_selectsTheDefaultsAndTheFirstForAPositionThatIsNone) {
    auto& panel = this->makePanel();
    panel.window();
    EXPECT_EQ(this->box("mVideoSize").currentText(), "160x120");
    EXPECT_EQ(this->box("mAudioQuality").currentText(), "128");
    EXPECT_EQ(this->box("mVideoQuality").currentText(), "300 kbps");
    EXPECT_EQ(this->box("mSampleRate").currentText(), "44100");
    EXPECT_EQ(panel.mVideoEncoder, "H264");
    EXPECT_EQ(panel.mAudioEncoder, "AAC");
    EXPECT_EQ(panel.mAudioChannels, "2");
}

TYPED_TEST(OutputSettingsTest, load_frameRate_keepsTheSourceInTheCutterOnly) {
    this->makePanel().window();
    EXPECT_EQ(this->box("mFrameRate").currentText(), this->isCutter ? kSourceFrameRate : "25");
    EXPECT_EQ(this->box("mFrameRate").currentIndex(), this->isCutter ? 0 : 1);
}

TYPED_TEST(OutputSettingsTest, load_keepsTheFirstProfileAsSetting) {
    auto& panel = this->makePanel();
    panel.window();
    EXPECT_EQ(panel.mSetInfo.profileName, "Video (*.mp4)");
    EXPECT_EQ(panel.mSetInfo.defineType, 1);
    EXPECT_EQ(panel.mSetInfo.isDefautValue, 1);
    EXPECT_EQ(panel.mSetInfo.vResolution, "160x120");
    EXPECT_EQ(panel.mSetInfo.vBitrate, "300 kbps");
    EXPECT_EQ(panel.mSetInfo.aChannels, "2 (Stereo)");
}

TYPED_TEST(OutputSettingsTest, load_directRowIsSelectedAndParametersAreDisabled) {
    this->makePanel().window();
    EXPECT_TRUE(this->template outlet<QRadioButton>("mRadioDirect").isChecked());
    this->expectEnabled(false);
}

TYPED_TEST(OutputSettingsTest, load_folderIsEmptyAndNameIsTheDefault) {
    this->makePanel().window();
    EXPECT_EQ(this->field("mTextField1").text(), "");
    EXPECT_EQ(this->field("mTextField2").text(), "clip");
}

TYPED_TEST(OutputSettingsTest, load_noFoldersStored_takesTheUsersMovies) {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, this->path("settings"));
    auto& panel = this->makePanel();
    panel.window();
    EXPECT_EQ(panel.mInputPath, "/Users/" + userName() + "/Movies");
    EXPECT_EQ(panel.mOutputPath, "/Users/" + userName() + "/Movies");
}

TYPED_TEST(OutputSettingsTest, load_foldersStored_takesThoseAndShowsNone) {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, this->path("settings"));
    QSettings().setValue("inputpath", "/in");
    QSettings().setValue("outputpath", "/out");
    auto& panel = this->makePanel();
    panel.window();
    EXPECT_EQ(panel.mInputPath, "/in");
    EXPECT_EQ(panel.mOutputPath, "/out");
    EXPECT_EQ(this->field("mTextField1").text(), "");
}

TYPED_TEST(OutputSettingsTest, window_calledAgain_keepsWhatTheUserHasChosen) {
    auto& panel = this->showPanel();
    this->selectRow(1);
    this->choose("mComboBox", 1);
    this->choose("mAudioQuality", 1);
    this->typeFolder("/out");
    this->typeName("other");
    panel.window().close();
    if constexpr (this->isCutter)
        panel.setCutterOutputFilename("second", "mkv");
    else
        panel.setJoinerOutputFilename("second");
    panel.window().show();
    EXPECT_EQ(this->field("mTextField1").text(), "/out");
    EXPECT_EQ(this->field("mTextField2").text(), "other");
    EXPECT_EQ(this->box("mComboBox").currentIndex(), 1);
    EXPECT_EQ(this->box("mAudioQuality").currentText(), "80");
    EXPECT_TRUE(this->template outlet<QRadioButton>("mRadioReencode").isChecked());
}

TYPED_TEST(OutputSettingsTest, defaultName_isKept) {
    auto& panel = this->makePanel();
    if constexpr (this->isCutter)
        EXPECT_EQ(panel.CutterOutputFilename(), "clip");
    else
        EXPECT_EQ(panel.JoinerOutputFilename(), "clip");
}

TYPED_TEST(OutputSettingsTest, rows_selected_enableTheParametersAndAreLogged) {
    this->showPanel();
    LogLines lines;
    this->selectRow(1);
    this->expectEnabled(true);
    EXPECT_EQ(lines.all(), QStringList("index:1"));
    lines.clear();
    this->selectRow(0);
    this->expectEnabled(false);
    EXPECT_EQ(lines.all(), QStringList("index:0"));
}

TYPED_TEST(OutputSettingsTest, profile_chosen_fillsTheBoxesAnew) {
    auto& panel = this->showPanel();
    this->selectRow(1);
    const LogLines lines;
    this->choose("mComboBox", 1);
    EXPECT_TRUE(lines.contains("index:1 format:Film (*.avi)"));
    EXPECT_EQ(this->choices("mVideoQuality"), QStringList("200"));
    EXPECT_EQ(this->choices("mVideoSize"), QStringList("176x144 small"));
    EXPECT_EQ(this->choices("mFrameRate"), this->offered({"10", "20"}));
    EXPECT_EQ(this->box("mFrameRate").currentText(), this->isCutter ? kSourceFrameRate : "20");
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
    for (const char* const name : {"mVideoQuality", "mVideoSize", "mAudioQuality", "mSampleRate"})
        EXPECT_EQ(this->box(name).count(), 0) << name;
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
        EXPECT_EQ(currentSetting->vFrameRate, this->isCutter ? "0" : expected.vFrameRate);
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
    EXPECT_EQ(currentSetting->vFrameRate, this->isCutter ? "25" : "30");
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
          &NodeSetting::aSamplerate, &NodeSetting::aBitrate})
        currentSetting.get()->*field = "before";
    this->panel_->getSetInfo();
    EXPECT_EQ(currentSetting->vResolution, "");
    EXPECT_EQ(currentSetting->vBitrate, "");
    EXPECT_EQ(currentSetting->vFrameRate, this->isCutter ? "0" : "");
    EXPECT_EQ(currentSetting->aSamplerate, "");
    EXPECT_EQ(currentSetting->aBitrate, "");
    EXPECT_EQ(currentSetting->vEncoder, "H264");
    EXPECT_EQ(currentSetting->aEncoder, "AAC");
    EXPECT_EQ(currentSetting->aChannels, "2");
}

TYPED_TEST(OutputSettingsTest, getSetInfo_choiceOfTheProfileThatReadsLikeTheSourcesRate_isText) {
    this->showPanel({{"p", {{"vFrameRate", {"1", kSourceFrameRate}, 1}}}});
    this->selectRow(1);
    this->choose("mFrameRate", this->isCutter ? 2 : 1);
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

TYPED_TEST(OutputSettingsTest, browse_folderChosen_fillsTheField) {
    auto& panel = this->showPanel();
    std::filesystem::create_directory(this->folder_.path() / "out");
    this->press("mButBrowse");
    auto* const chooser = panel.window().template findChild<QFileDialog*>("openPanel");
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(chooser->fileMode(), QFileDialog::Directory);
    EXPECT_EQ(chooser->windowModality(), Qt::WindowModal);
    chooser->setDirectory(this->path(""));
    chooser->template findChild<QLineEdit*>("fileNameEdit")->setText("out");
    QTest::keyClick(chooser->template findChild<QLineEdit*>("fileNameEdit"), Qt::Key_Return);
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return this->field("mTextField1").text() == this->path("out"); }));
}

TYPED_TEST(OutputSettingsTest, browse_cancelled_changesNothing) {
    auto& panel = this->showPanel();
    this->typeFolder("/before");
    this->press("mButBrowse");
    auto* const chooser = panel.window().template findChild<QFileDialog*>("openPanel");
    ASSERT_NE(chooser, nullptr);
    QTest::keyClick(chooser, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QApplication::activeModalWidget(); }));
    EXPECT_EQ(this->field("mTextField1").text(), "/before");
}

TYPED_TEST(OutputSettingsTest, resultPath_followsFolderNameRowAndProfile) {
    this->showPanel();
    EXPECT_EQ(this->resultPath(), "Browse for a folder first");
    this->typeFolder("/out");
    EXPECT_EQ(this->resultPath(), "/out/clip.mov");
    EXPECT_EQ(this->template outlet<QLabel>("mResultPath").accessibleDescription(),
              "/out/clip.mov");
    this->typeFolder("/out/");
    EXPECT_EQ(this->resultPath(), "/out//clip.mov");
    this->typeName("a/%1 b");
    EXPECT_EQ(this->resultPath(), "/out//a/%1 b.mov");
    this->selectRow(1);
    EXPECT_EQ(this->resultPath(), "/out//a/%1 b.mp4");
    this->choose("mComboBox", 1);
    EXPECT_EQ(this->resultPath(), "/out//a/%1 b.avi");
    this->typeName("");
    EXPECT_EQ(this->resultPath(), "/out//.avi");
}

TYPED_TEST(OutputSettingsTest, resultPath_long_doesNotWidenThePanelAndIsInTheTooltip) {
    auto& panel = this->showPanel();
    const int width = panel.window().minimumSizeHint().width();
    const QString folder = "/" + QString("long<b> ").repeated(60);
    this->field("mTextField1").setText(folder);
    EXPECT_EQ(panel.window().minimumSizeHint().width(), width);
    const QString tip = this->template outlet<QLabel>("mResultPath").toolTip();
    EXPECT_EQ(tip, (folder + "/clip.mov").toHtmlEscaped());
}

TYPED_TEST(OutputSettingsTest, closing_byCloseBoxOrEscape_endsTheSession) {
    auto& panel = this->makePanel();
    fromTheEventLoop([&panel] { panel.window().close(); });
    runModalForWindow(panel.window());
    EXPECT_FALSE(panel.window().isVisible());
    fromTheEventLoop([&panel] { QTest::keyClick(&panel.window(), Qt::Key_Escape); });
    runModalForWindow(panel.window());
    EXPECT_FALSE(panel.window().isVisible());
    EXPECT_EQ(modalWindow(), nullptr);
}

TYPED_TEST(OutputSettingsTest, windowShouldClose_stopsTheSessionAndAgrees) {
    auto& panel = this->makePanel();
    fromTheEventLoop([&panel] {
        EXPECT_EQ(modalWindow(), &panel.window());
        EXPECT_TRUE(panel.windowShouldClose());
        EXPECT_EQ(modalWindow(), nullptr);
    });
    runModalForWindow(panel.window());
    EXPECT_TRUE(panel.window().isVisible());
}

TYPED_TEST(OutputSettingsTest, window_hasItsNameTitleAndStartButton) {
    using Names = PanelNames<TypeParam>;
    auto& panel = this->makePanel();
    EXPECT_EQ(panel.window().objectName(), Names::window);
    EXPECT_EQ(panel.window().windowTitle(), Names::title);
    const auto& start = this->template outlet<QPushButton>(Names::start);
    EXPECT_EQ(QString(start.text()).remove('&'), Names::startLabel);
    EXPECT_TRUE(start.isDefault());
}

TYPED_TEST(OutputSettingsTest, widgets_allHaveAccessibleNamesAndTheOutletsAreThere) {
    auto& panel = this->makePanel();
    for (const char* const name : kParameterBoxes)
        this->box(name);
    this->template outlet<QWidget>("mRadioGroup");
    for (const QWidget* const widget : panel.window().template findChildren<QWidget*>()) {
        const bool own = !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_");
        const bool speaks = own && widget->objectName() != "mForm";
        EXPECT_TRUE(!speaks || !widget->accessibleName().isEmpty())
            << widget->objectName().toStdString();
    }
}

TYPED_TEST(OutputSettingsTest, window_fitsASmallScreen) {
    const QSize size = this->makePanel().window().minimumSizeHint();
    EXPECT_LE(size.width(), 1280);
    EXPECT_LE(size.height(), 640);
}

TYPED_TEST(OutputSettingsTest, keys_tab_goesThroughThePanelFromTopToBottom) {
    this->showPanel();
    this->selectRow(1);
    this->template outlet<QRadioButton>("mRadioReencode").setFocus();
    QStringList order;
    for (int i = 0; i < 11; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order.append(QApplication::focusWidget()->objectName());
    }
    EXPECT_EQ(order, QStringList({"mComboBox", "mButCustomize", "mVideoQuality", "mVideoSize",
                                  "mFrameRate", "mAudioQuality", "mSampleRate", "mTextField1",
                                  "mButBrowse", "mTextField2", PanelNames<TypeParam>::start}));
}

} // namespace
} // namespace velmora::test
