#include "Bundle.h"
#include "CustomSlider.h"
#include "JoinerTable.h"
#include "MainSetUpSupport.h"
#include "customImageView.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTextDocument>
#include <QTimer>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

TEST_F(MainSetUpTest, start_logsItsStages) {
    EXPECT_LT(log_.all().indexOf("initWithWindow"), log_.all().indexOf("awakeFromNib"));
    EXPECT_LT(log_.all().indexOf("awakeFromNib"), log_.all().indexOf("setFileCanJoinCB"));
    EXPECT_EQ(log_.count("initWithWindow"), 1);
    EXPECT_EQ(log_.count("awakeFromNib"), 1);
    EXPECT_EQ(log_.count("setFileCanJoinCB"), 1);
    EXPECT_EQ(log_.all().filter("canvas w:").size(), 1);
}

TEST_F(MainSetUpTest, setUp_again_keepsThePanels) {
    controller_.setDefaultView();
    EXPECT_EQ(log_.count("setFileCanJoinCB"), 1);
}

TEST_F(MainSetUpTest, start_titleHasNoVersion) {
    EXPECT_EQ(controller_.mainWin().windowTitle(), "Velmora");
}

TEST_F(MainSetUpTest, title_installedInfoListIsDamagedOrAnother_staysTheSame) {
    const std::filesystem::path programs = QCoreApplication::applicationDirPath().toStdString();
    const std::filesystem::path list = programs / "../share/velmora/velmora-Info.plist";
    const std::string other = "<plist version=\"1.0\"><dict><key>CFBundleShortVersionString</key>"
                              "<string>98.7</string><key>CFBundleName</key><string>Other</string>"
                              "</dict></plist>";
    std::filesystem::create_directories(list.parent_path());
    for (const std::string& content : {std::string(), std::string("<plist><dict"), other}) {
        writeFile(list, content);
        EXPECT_EQ(Bundle::pathForResource("velmora-Info", "plist").toStdString(), list);
        controller_.mainWin().setWindowTitle("none");
        controller_.initVersionPlist();
        EXPECT_EQ(controller_.mainWin().windowTitle(), "Velmora") << content;
    }
    std::filesystem::remove(list);
}

TEST_F(MainSetUpTest, window_hasAllOutlets) {
    EXPECT_EQ(controller_.mainWin().objectName(), "mainWin");
    for (const char* const name : {"tableView",
                                   "mTextFieldHowTo",
                                   "mButtonCutterAdd",
                                   "mButtonPlay",
                                   "mButtonLeft",
                                   "mButtonRight",
                                   "mButtonCutterSetting",
                                   "mButtonJoinerAdd",
                                   "mButtonJoinerRemove",
                                   "mButtonJoinerSetting",
                                   "mCustomSlider",
                                   "mCustomImage",
                                   "mAddFileToolTip",
                                   "mAddFileToolTipJoiner",
                                   "mBox",
                                   "curView",
                                   "viewCutter",
                                   "viewJoiner",
                                   "mButtonSeg",
                                   "mButtonSetImage",
                                   "mLabelStart",
                                   "mLabelEnd",
                                   "mLabelDrag",
                                   "mLabelDuration"}) {
        EXPECT_EQ(controller_.mainWin().findChildren<QWidget*>(name).size(), 1) << name;
    }
}

TEST_F(MainSetUpTest, start_makesEmptySharedStateWithTheCutterOnShow) {
    ASSERT_TRUE(cutterFileList && joinerFileList && currentSetting);
    EXPECT_NE(cutterFileList, joinerFileList);
    EXPECT_EQ(sharedFileList, cutterFileList);
    EXPECT_TRUE(cutterFileList->empty());
    EXPECT_TRUE(joinerFileList->empty());
    EXPECT_EQ(currentSetting->vEncoder, "");
    EXPECT_EQ(workspace(), &outlet("viewCutter"));
}

TEST_F(MainSetUpTest, start_fieldsAreZeroAndTheBarIsDisabled) {
    for (const char* const field : {"mLabelStart", "mLabelEnd", "mLabelDuration"}) {
        EXPECT_EQ(text(field), "00:00:00.000") << field;
    }
    EXPECT_EQ(text("mLabelDrag"), "00:00:00.000/00:00:00.000");
    EXPECT_FALSE(bar().customSliderEnable());
    EXPECT_EQ(bar().doubleValue(), 0);
    EXPECT_EQ(bar().maxValue(), 100);
    EXPECT_FALSE(controller_.addFileInitialized());
}

TEST_F(MainSetUpTest, start_showsTheInvitationToAddAVideo) {
    EXPECT_EQ(preview().image().name(), "add1");
    EXPECT_TRUE(outlet("mAddFileToolTip").isVisible());
    EXPECT_TRUE(outlet("mButtonSetImage").isVisible());
}

TEST_F(MainSetUpTest, start_onlyTheTimesOfTheCutCanBeTyped) {
    EXPECT_TRUE(outlet<QLineEdit>("mLabelDuration").isReadOnly());
    EXPECT_TRUE(outlet<QLineEdit>("mLabelDrag").isReadOnly());
    EXPECT_FALSE(outlet<QLineEdit>("mLabelStart").isReadOnly());
    EXPECT_FALSE(outlet<QLineEdit>("mLabelEnd").isReadOnly());
}

TEST_F(MainSetUpTest, start_windowHasItsColour) {
    const QColor color = controller_.mainWin().palette().color(QPalette::Window);
    EXPECT_EQ(color.rgb(), QColor::fromRgbF(0.73F, 0.87F, 0.97F).rgb());
    const QImage shown = controller_.mainWin().grab().toImage();
    EXPECT_EQ(QColor(shown.pixel(4, shown.height() - 4)).rgb(), color.rgb());
}

TEST_F(MainSetUpTest, start_tableTakesSeveralSelectedRowsAndDrops) {
    EXPECT_EQ(table().selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_TRUE(table().acceptDrops());
}

TEST_F(MainSetUpTest, tooltips_areGiven) {
    const QString typing = "You can input time here, format(hh:mm:ss.fff)";
    const std::vector<std::pair<const char*, QString>> expected{
        {"mButtonCutterAdd", "Add video file"},
        {"mButtonPlay", "Play"},
        {"mButtonLeft", "Set Start Point"},
        {"mButtonRight", "Set End Point"},
        {"mLabelStart", typing},
        {"mLabelEnd", typing},
        {"mButtonCutterSetting", "Start cut"},
        {"mButtonJoinerAdd", "Add video file"},
        {"mButtonJoinerRemove", "Remove"},
        {"mButtonJoinerSetting", "Merge into a video file"},
        {"mTextFieldHowTo", controller_.helpPageAddress()},
        {"mButtonSetImage", "Add video file"},
        {"tableView", "Drag and drop file here"},
    };
    for (const auto& [name, tooltip] : expected) {
        EXPECT_EQ(outlet(name).toolTip(), tooltip) << name;
    }
}

TEST_F(MainSetUpTest, helpLine_isALinkToTheHelpPage) {
    const auto& line = outlet<QLabel>("mTextFieldHowTo");
    QTextDocument shown;
    shown.setHtml(line.text());
    EXPECT_EQ(shown.toPlainText(), "How to use the software");
    EXPECT_TRUE(line.text().contains("href=\"" + controller_.helpPageAddress() + '"'));
    EXPECT_TRUE(line.textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
}

TEST_F(MainSetUpTest, everyControl_hasAnAccessibleName) {
    for (const char* const name :
         {"mTextFieldHowTo", "mButtonCutterAdd", "mButtonPlay", "mButtonLeft", "mButtonRight",
          "mButtonCutterSetting", "mButtonJoinerAdd", "mButtonJoinerRemove", "mButtonJoinerSetting",
          "mCustomSlider", "mCustomImage", "tableView", "mButtonSeg", "mButtonSetImage",
          "mLabelStart", "mLabelEnd", "mLabelDrag", "mLabelDuration"}) {
        EXPECT_FALSE(outlet(name).accessibleName().isEmpty()) << name;
    }
}

TEST_F(MainSetUpTest, initParameter_clearsTheFlagsOfTheSetting) {
    currentSetting->imCut = true;
    currentSetting->imJoin = true;
    controller_.initParameter();
    EXPECT_FALSE(currentSetting->imCut);
    EXPECT_FALSE(currentSetting->imJoin);
}

TEST_F(MainSetUpTest, textDidChange_onlyLogs) {
    log_.clear();
    controller_.textDidChange();
    EXPECT_EQ(log_.all(), QStringList("change "));
}

TEST_F(MainSetUpTest, window_closed_endsTheProgram) {
    QTimer::singleShot(0, &controller_, [this] { controller_.mainWin().close(); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(log_.count("exit button xxxxxxxxxx"), 1);
    EXPECT_FALSE(controller_.mainWin().isVisible());
}

TEST_F(MainSetUpTest, bar_inAVeryWideWindow_isAsWideAsThePreview) {
    controller_.mainWin().resize(3840, 1000);
    QApplication::processEvents();
    EXPECT_GT(bar().width(), 3700);
}

TEST_F(MainSetUpTest, window_fitsOnASmallScreen) {
    const QSize least =
        controller_.mainWin().minimumSizeHint().expandedTo(controller_.mainWin().minimumSize());
    EXPECT_LE(least.width(), 800);
    EXPECT_LE(least.height(), 600);
    EXPECT_LE(controller_.mainWin().height(), 690);
}

} // namespace
} // namespace velmora::test
