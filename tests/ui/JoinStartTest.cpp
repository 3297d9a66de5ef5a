#include "PanelSupport.h"

#include "ConversionEngine.h"
#include "ModalSession.h"

#include <QFileInfo>
#include <QLabel>

namespace velmora::test {
namespace {

constexpr auto kNoDirectJoin =
    "No same-type files, can not use direct join, please use indirect join!";

/// A join of two real videos; what the can-join callback answers is for the test to say.
class JoinStartTest : public PanelTest<joinerWinController> {
protected:
    void SetUp() override {
        addFile("h264.mp4");
        addFile("h264.mp4");
    }

    void addFile(const char* media) {
        const auto item = std::make_shared<NodeInfo>();
        item->inputFile = QString::fromStdString(mediaPath(media));
        item->endTime = 4;
        item->outFromat = QFileInfo(item->inputFile).suffix();
        joinerFileList->push_back(item);
    }
    OpenedPanel<joinerWinController>& showAnsweringPanel() {
        showPanel();
        answerCanJoin();
        return *panel_;
    }
    void answerCanJoin() { panel_->setFileCanJoinCB(this, &JoinStartTest::fileCanJoin); }
    bool fileCanJoin() {
        ++asked_;
        EXPECT_EQ(modalWindow(), nullptr);
        panel_->setFileExtension(extension_);
        return canJoin_;
    }
    void runToItsEnd() const {
        AlertReader alerts;
        pressStart();
        EXPECT_EQ(alerts.messages, QStringList("Congratulations! file has completed!"));
    }
    static nlohmann::json streamsOf(const QString& file) {
        return ffprobeJson(file.toStdString(), {"-show_streams"}).at("streams");
    }

    bool canJoin_ = true;
    QString extension_ = "mp4";
    int asked_ = 0;
};

TEST_F(JoinStartTest, setFileCanJoinCB_isLogged) {
    auto& panel = makePanel();
    const LogLines lines;
    panel.setFileCanJoinCB([] { return true; });
    EXPECT_EQ(lines.all(), QStringList("setFileCanJoinCB"));
}

TEST_F(JoinStartTest, direct_filesOfDifferentKinds_isRefusedBeforeAllElse) {
    auto& panel = showAnsweringPanel();
    canJoin_ = false;
    expectRefusal(kNoDirectJoin, "Error");
    EXPECT_EQ(asked_, 1);
    EXPECT_EQ(panel.mOutputFilename, "");
    EXPECT_EQ(panel.converterController, nullptr);
    EXPECT_TRUE(panel.window().isVisible());
    typeFolder(path(""));
    expectRefusal(kNoDirectJoin, "Error");
}

TEST_F(JoinStartTest, direct_callbackMissing_isRefused) {
    showPanel();
    typeFolder(path(""));
    expectRefusal(kNoDirectJoin, "Error");
}

TEST_F(JoinStartTest, direct_refusedThenIndirect_proceedsWithTheProfilesExtension) {
    auto& panel = showAnsweringPanel();
    canJoin_ = false;
    typeFolder(path(""));
    expectRefusal(kNoDirectJoin, "Error");
    selectRow(1);
    runToItsEnd();
    EXPECT_EQ(asked_, 2);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/clip.mp4");
}

TEST_F(JoinStartTest, direct_extension_isTheOneThatTheCallbackGives) {
    auto& panel = showAnsweringPanel();
    extension_ = "avi";
    writeFile(folder_.path() / "clip.avi", "kept");
    typeFolder(path(""));
    expectRefusal(kFileExists);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/clip.avi");
    EXPECT_EQ(panel.mExtension, "avi");
    extension_ = "mkv";
    writeFile(folder_.path() / "clip.mkv", "kept");
    expectRefusal(kFileExists);
    EXPECT_EQ(panel.mOutputFilename, path("") + "/clip.mkv");
}

TEST_F(JoinStartTest, start_folderEmpty_isRefusedAfterThePathIsComposed) {
    auto& panel = showAnsweringPanel();
    const LogLines lines;
    expectRefusal(kChooseFolder);
    EXPECT_EQ(panel.mOutputFilename, "/clip.mp4");
    EXPECT_EQ(panel.converterController, nullptr);
    EXPECT_EQ(lines.all(), QStringList());
}

TEST_F(JoinStartTest, start_indirectFolderEmpty_hasTakenTheChoices) {
    showAnsweringPanel();
    selectRow(1);
    expectRefusal(kChooseFolder);
    EXPECT_EQ(currentSetting->vEncoder, "H264");
    EXPECT_EQ(currentSetting->vFrameRate, "25");
    EXPECT_EQ(currentSetting->width, 160);
    EXPECT_EQ(currentSetting->height, 120);
}

TEST_F(JoinStartTest, start_fileExists_isRefusedBeforeTheProgressWindowIsMade) {
    auto& panel = showAnsweringPanel();
    writeFile(folder_.path() / "clip.mp4", "kept");
    typeFolder(path(""));
    const LogLines lines;
    expectRefusal(kFileExists);
    EXPECT_EQ(lines.all(), QStringList("Joiner Output path:" + panel.mOutputFilename + " exist:1"));
    EXPECT_EQ(panel.converterController, nullptr);
    EXPECT_TRUE(panel.window().isVisible());
}

TEST_F(JoinStartTest, start_refused_leavesThePanelModeless) {
    auto& panel = makePanel();
    answerCanJoin(); // which must find the session ended
    canJoin_ = false;
    fromTheEventLoop([this] { expectRefusal(kNoDirectJoin, "Error"); });
    runModalForWindow(panel.window());
    EXPECT_EQ(asked_, 1);
    EXPECT_TRUE(panel.window().isVisible());
    EXPECT_EQ(modalWindow(), nullptr);
}

TEST_F(JoinStartTest, direct_filesOfOneKind_areJoinedAsTheyAre) {
    auto& panel = showAnsweringPanel();
    typeFolder(path(""));
    LogLines lines;
    runToItsEnd();
    EXPECT_EQ(lines.all().value(0), "Joiner Output path:" + panel.mOutputFilename + " exist:0");
    EXPECT_EQ(ConversionEngine::instance().reencode, 0);
    EXPECT_EQ(ConversionEngine::instance().joinMode, 1);
    EXPECT_FALSE(panel.window().isVisible());
    const auto packets = packetsOf((folder_ / "clip.mp4"), "v:0");
    EXPECT_EQ(packets.size(), 2 * packetsOf(mediaPath("h264.mp4"), "v:0").size());
    for (const auto& item : *joinerFileList) {
        EXPECT_EQ(item->startTime, 0.0F);
        EXPECT_EQ(item->endTime, 4.0F);
    }
}

TEST_F(JoinStartTest, direct_threeAviFiles_areJoinedUnderTheDefaultName) {
    joinerFileList->clear();
    for (int i = 0; i < 3; ++i) {
        addFile("mpeg4.avi");
    }
    auto& panel = makePanel();
    panel.setJoinerOutputFilename("join-all");
    answerCanJoin();
    extension_ = "avi";
    panel.window().show();
    typeFolder(path(""));
    runToItsEnd();
    EXPECT_EQ(packetsOf(folder_ / "join-all.avi", "v:0").size(),
              3 * packetsOf(mediaPath("mpeg4.avi"), "v:0").size());
}

TEST_F(JoinStartTest, indirect_filesOfDifferentKinds_areEncodedWithThePanelsChoices) {
    addFile("mpeg4.avi");
    showAnsweringPanel();
    canJoin_ = false;
    selectRow(1);
    choose("mComboBox", 1);
    typeFolder(path(""));
    runToItsEnd();
    EXPECT_EQ(ConversionEngine::instance().reencode, 1);
    EXPECT_EQ(ConversionEngine::instance().joinMode, 1);
    const auto streams = streamsOf(path("clip.avi"));
    EXPECT_EQ(streams[0].at("codec_name"), "mpeg4");
    EXPECT_EQ(streams[0].at("width"), 176);
    EXPECT_EQ(streams[0].at("height"), 144);
    EXPECT_EQ(streams[1].at("codec_name"), "mp3");
    EXPECT_EQ(streams[1].at("sample_rate"), "22050");
    EXPECT_EQ(streams[1].at("channels"), 1);
    // All pictures but those that the encoder still held at the end.
    EXPECT_NEAR(static_cast<double>(packetsOf(folder_ / "clip.avi", "v:0").size()), 360.0, 4.0);
}

TEST_F(JoinStartTest, indirect_start_logsTheSixBoxesOnly) {
    showAnsweringPanel();
    selectRow(1);
    const LogLines lines;
    expectRefusal(kChooseFolder);
    EXPECT_EQ(lines.all(),
              QStringList("\nFormat:Video (*.mp4)\nVideo Quality:300 kbps\nVideo Size:160x120\n"
                          "Frame Rate:25\nAudio Quality:128\nSample Rate:44100"));
}

TEST_F(JoinStartTest, indirect_start_logsTheSixBoxesBeforeItAsks) {
    auto& panel = showPanel();
    selectRow(1);
    LogLines lines;
    QStringList before;
    panel.setFileCanJoinCB([&] {
        before = lines.all();
        return true;
    });
    lines.clear();
    expectRefusal(kChooseFolder);
    ASSERT_EQ(before.size(), 1);
    EXPECT_TRUE(before[0].startsWith("\nFormat:Video (*.mp4)\n")) << before[0].toStdString();
}

TEST_F(JoinStartTest, resultPath_direct_hasTheExtensionThatTheCallbackWillGive) {
    auto& panel = showAnsweringPanel();
    joinerFileList->front()->outFromat = "ts";
    typeFolder("/out");
    EXPECT_EQ(outlet<QLabel>("mResultPath").text(), "/out/clip.ts");
    joinerFileList->front()->outFromat = "mkv";
    panel.setJoinerOutputFilename("join-all");
    EXPECT_EQ(outlet<QLabel>("mResultPath").text(), "/out/clip.mkv");
}

} // namespace
} // namespace velmora::test
