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
    EXPECT_EQ(this->box("mFrameRate").currentText(), this->kIsCutter ? kSourceFrameRate : "25");
    EXPECT_EQ(this->box("mFrameRate").currentIndex(), this->kIsCutter ? 0 : 1);
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
    if constexpr (this->kIsCutter) {
        panel.setCutterOutputFilename("second", "mkv");
    } else {
        panel.setJoinerOutputFilename("second");
    }
    panel.window().show();
    EXPECT_EQ(this->field("mTextField1").text(), "/out");
    EXPECT_EQ(this->field("mTextField2").text(), "other");
    EXPECT_EQ(this->box("mComboBox").currentIndex(), 1);
    EXPECT_EQ(this->box("mAudioQuality").currentText(), "80");
    EXPECT_TRUE(this->template outlet<QRadioButton>("mRadioReencode").isChecked());
}

TYPED_TEST(OutputSettingsTest, defaultName_isKept) {
    auto& panel = this->makePanel();
    if constexpr (this->kIsCutter) {
        EXPECT_EQ(panel.CutterOutputFilename(), "clip");
    } else {
        EXPECT_EQ(panel.JoinerOutputFilename(), "clip");
    }
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
    EXPECT_EQ(panel.window().objectName(), Names::kWindow);
    EXPECT_EQ(panel.window().windowTitle(), Names::kTitle);
    const auto& start = this->template outlet<QPushButton>(Names::kStart);
    EXPECT_EQ(QString(start.text()).remove('&'), Names::kStartLabel);
    EXPECT_TRUE(start.isDefault());
}

TYPED_TEST(OutputSettingsTest, widgets_allHaveAccessibleNamesAndTheOutletsAreThere) {
    auto& panel = this->makePanel();
    for (const char* const name : kParameterBoxes) {
        this->box(name);
    }
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
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order.append(QApplication::focusWidget()->objectName());
    }
    EXPECT_EQ(order,
              QStringList({"mExact", "mComboBox", "mButCustomize", "mVideoQuality", "mVideoSize",
                           "mFrameRate", "mAudioQuality", "mSampleRate", "mTextField1",
                           "mButBrowse", "mTextField2", PanelNames<TypeParam>::kStart}));
}

} // namespace
} // namespace velmora::test
