#include "PanelSupport.h"

#include "ConversionEngine.h"
#include "ModalSession.h"

#include <QApplication>
#include <QPushButton>

namespace velmora::test {
namespace {

/// A cut of a real video from 0.5 s to 2 s; runs are carried out by the engine.
class CutStartTest : public PanelTest<cutterWinController> {
protected:
    void SetUp() override {
        const auto item = std::make_shared<NodeInfo>();
        item->inputFile = QString::fromStdString(mediaPath("h264.mp4"));
        cutterFileList->push_back(item);
        cutterWinController::setStartAndEnd("00:00:00.500", "00:00:02.000");
    }

    /// Presses start and answers the outcome, which must be success.
    void runToItsEnd() const {
        AlertReader alerts;
        pressStart();
        EXPECT_EQ(alerts.messages, QStringList("Congratulations! file has completed!"));
    }
    static double lengthOf(const QString& file) {
        const auto format = ffprobeJson(file.toStdString(), {"-show_format"}).at("format");
        return std::stod(format.at("duration").get<std::string>());
    }
    static nlohmann::json streamsOf(const QString& file) {
        return ffprobeJson(file.toStdString(), {"-show_streams"}).at("streams");
    }
};

TEST_F(CutStartTest, start_folderEmpty_isRefusedBeforeAnythingIsComposed) {
    auto& panel = showPanel();
    expectRefusal(kChooseFolder);
    EXPECT_EQ(panel.mOutputFilename, "");
    EXPECT_EQ(panel.converterController, nullptr);
    EXPECT_TRUE(panel.window().isVisible());
}

TEST_F(CutStartTest, start_fileExists_isRefusedAndKeepsPathAndPanel) {
    auto& panel = showPanel();
    writeFile(folder_.path() / "clip.mov", "kept");
    typeFolder(path(""));
    expectRefusal(kFileExists);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/clip.mov");
    EXPECT_NE(panel.converterController, nullptr);
    EXPECT_TRUE(panel.window().isVisible());
    EXPECT_EQ(cutterFileList->front()->endTime, 0.0F);
    EXPECT_EQ(readFile(folder_.path() / "clip.mov").size(), 4U);
}

TEST_F(CutStartTest, start_refused_leavesThePanelModelessAndCanBeRepeated) {
    auto& panel = makePanel();
    QPushButton other("other window");
    int clicks = 0;
    QObject::connect(&other, &QPushButton::clicked, [&clicks] { ++clicks; });
    other.show();
    fromTheEventLoop([this] {
        EXPECT_NE(modalWindow(), nullptr);
        fromTheEventLoop([] {
            EXPECT_EQ(modalWindow(), nullptr);
            answerAlert("OK");
        });
        pressStart();
    });
    runModalForWindow(panel.window());
    EXPECT_TRUE(panel.window().isVisible());
    clickOnScreen(other);
    EXPECT_EQ(clicks, 1);
    expectRefusal(kChooseFolder);
}

TEST_F(CutStartTest, start_afterAnExistingFileWithANewName_proceeds) {
    showPanel();
    writeFile(folder_.path() / "clip.mov", "kept");
    typeFolder(path(""));
    expectRefusal(kFileExists);
    typeName("other");
    runToItsEnd();
    EXPECT_NEAR(lengthOf(path("other.mov")), 1.5, 0.6);
}

TEST_F(CutStartTest, start_direct_copiesTheWindowIntoTheSourcesFormat) {
    auto& panel = showPanel();
    const NodeSetting before = *currentSetting;
    typeFolder(path(""));
    runToItsEnd();
    const auto& engine = ConversionEngine::instance();
    EXPECT_EQ(engine.reencode, 0);
    EXPECT_EQ(engine.joinMode, 0);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/clip.mov");
    EXPECT_EQ(cutterFileList->front()->startTime, 500.0F);
    EXPECT_EQ(cutterFileList->front()->endTime, 2000.0F);
    EXPECT_EQ(currentSetting->vEncoder, before.vEncoder);
    EXPECT_EQ(currentSetting->width, before.width);
    EXPECT_FALSE(panel.window().isVisible());
    EXPECT_EQ(streamsOf(path("clip.mov"))[0].at("width"), 320);
    EXPECT_EQ(streamsOf(path("clip.mov"))[0].at("codec_name"), "h264");
    EXPECT_NEAR(lengthOf(path("clip.mov")), 1.5, 0.6);
}

TEST_F(CutStartTest, start_reencode_encodesWithThePanelsChoices) {
    auto& panel = showPanel();
    selectRow(1);
    choose("mVideoSize", 1);
    typeFolder(path(""));
    runToItsEnd();
    EXPECT_EQ(ConversionEngine::instance().reencode, 1);
    EXPECT_EQ(ConversionEngine::instance().joinMode, 0);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/clip.mp4");
    EXPECT_EQ(currentSetting->vResolution, "640x480");
    EXPECT_EQ(currentSetting->width, 640);
    EXPECT_EQ(currentSetting->height, 480);
    EXPECT_EQ(currentSetting->vFrameRate, "0");
    const auto streams = streamsOf(path("clip.mp4"));
    EXPECT_EQ(streams[0].at("codec_name"), "h264");
    EXPECT_EQ(streams[0].at("width"), 640);
    EXPECT_EQ(streams[0].at("r_frame_rate"), "30/1");
    EXPECT_EQ(streams[1].at("codec_name"), "aac");
    EXPECT_EQ(streams[1].at("channels"), 2);
    EXPECT_EQ(streams[1].at("sample_rate"), "44100");
    EXPECT_NEAR(lengthOf(path("clip.mp4")), 1.5, 0.3);
}

TEST_F(CutStartTest, start_panelRunModally_returnsAfterTheRun) {
    auto& panel = makePanel();
    panel.window();
    typeFolder(path(""));
    fromTheEventLoop([this] { runToItsEnd(); });
    runModalForWindow(panel.window());
    EXPECT_EQ(modalWindow(), nullptr);
    EXPECT_FALSE(panel.window().isVisible());
    EXPECT_GT(lengthOf(path("clip.mov")), 1.0);
}

TEST_F(CutStartTest, start_second_usesTheSameProgressWindow) {
    auto& panel = showPanel();
    typeFolder(path(""));
    runToItsEnd();
    const auto* const first = panel.converterController.get();
    panel.window().show();
    typeName("second");
    runToItsEnd();
    EXPECT_EQ(panel.converterController.get(), first);
    EXPECT_GT(lengthOf(path("second.mov")), 1.0);
}

TEST_F(CutStartTest, start_severalItems_allGetTheWindow) {
    showPanel();
    const auto second = std::make_shared<NodeInfo>(*cutterFileList->front());
    cutterFileList->push_back(second);
    typeFolder(path(""));
    const AlertReader alerts;
    pressStart();
    EXPECT_EQ(second->startTime, 500.0F);
    EXPECT_EQ(second->endTime, 2000.0F);
}

TEST_F(CutStartTest, start_joinersListOnShow_itsItemsKeepTheirTimes) {
    showPanel();
    joinerFileList->push_back(std::make_shared<NodeInfo>());
    sharedFileList = joinerFileList;
    typeFolder(path(""));
    const AlertReader alerts;
    pressStart();
    EXPECT_EQ(cutterFileList->front()->startTime, 500.0F);
    EXPECT_EQ(cutterFileList->front()->endTime, 2000.0F);
    EXPECT_EQ(joinerFileList->front()->startTime, 0.0F);
    EXPECT_EQ(joinerFileList->front()->endTime, 0.0F);
}

TEST_F(CutStartTest, start_timesChangedInTheSetting_areTakenAsTheyAreThen) {
    showPanel();
    currentSetting->cutStartTime = 1000.0F;
    typeFolder(path(""));
    runToItsEnd();
    EXPECT_EQ(cutterFileList->front()->startTime, 1000.0F);
}

TEST_F(CutStartTest, start_direct_logsExtensionAndThePreviousPath) {
    auto& panel = showPanel();
    writeFile(folder_.path() / "clip.mov", "kept");
    LogLines lines;
    expectRefusal(kChooseFolder);
    EXPECT_EQ(lines.all(), QStringList({"test test:mp4)", "Output path: exist:0"}));
    typeFolder(path(""));
    expectRefusal(kFileExists);
    lines.clear();
    expectRefusal(kFileExists);
    EXPECT_EQ(lines.all(),
              QStringList({"test test:mp4)", "Output path:" + panel.mOutputFilename + " exist:1"}));
}

TEST_F(CutStartTest, start_reencode_logsTheSixBoxesFirst) {
    showPanel();
    selectRow(1);
    typeInto("mVideoSize", "%1");
    const LogLines lines;
    expectRefusal(kChooseFolder);
    EXPECT_EQ(lines.all().value(0),
              "\nFormat:Video (*.mp4)\nVideo Quality:300 kbps\nVideo Size:%1\n"
              "Frame Rate:same as original file\nAudio Quality:128\nSample Rate:44100");
    EXPECT_EQ(lines.all().value(1), "test test:mp4)");
}

TEST_F(CutStartTest, start_reencodeRefusedForTheFile_hasTakenTheChoices) {
    showPanel();
    selectRow(1);
    writeFile(folder_.path() / "clip.mp4", "kept");
    typeFolder(path(""));
    expectRefusal(kFileExists);
    EXPECT_EQ(currentSetting->vEncoder, "H264");
    EXPECT_EQ(currentSetting->width, 160);
}

TEST_F(CutStartTest, start_textsWithBlanksAndSlashes_areTakenAsTyped) {
    auto& panel = showPanel();
    std::filesystem::create_directory(folder_.path() / " a");
    writeFile(folder_.path() / " a" / "b .mov", "kept");
    typeFolder(path("") + "/");
    typeName(" a/b ");
    expectRefusal(kFileExists);
    EXPECT_EQ(panel.mOutputFilename, path("") + "// a/b .mov");
}

TEST_F(CutStartTest, start_emptyName_isAFileNamedByItsExtension) {
    auto& panel = showPanel();
    writeFile(folder_.path() / ".mov", "kept");
    typeFolder(path(""));
    typeName("");
    expectRefusal(kFileExists);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/.mov");
}

TEST_F(CutStartTest, start_folderMissing_isLeftToTheRunToFail) {
    showPanel();
    typeFolder(path("none"));
    AlertReader alerts;
    pressStart();
    EXPECT_EQ(alerts.messages, QStringList("File failed! please use re-encoding mode"));
    EXPECT_EQ(alerts.sentences, QStringList("The folder “" + path("none") +
                                            "” does not exist. Choose another folder."));
}

TEST_F(CutStartTest, start_frameSizeThatIsNone_failsWithTheUsualMessage) {
    showPanel();
    selectRow(1);
    typeInto("mVideoSize", "big");
    typeFolder(path(""));
    AlertReader alerts;
    pressStart();
    EXPECT_EQ(alerts.messages, QStringList("File failed! please use re-encoding mode"));
    EXPECT_EQ(alerts.sentences.size(), 1);
    EXPECT_TRUE(alerts.sentences.value(0).startsWith("Pictures of this size cannot be encoded"));
}

} // namespace
} // namespace velmora::test
