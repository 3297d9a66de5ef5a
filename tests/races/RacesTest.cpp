#include "AlertReader.h"
#include "Desktop.h"
#include "MainWindow.h"
#include "MediaReader.h"
#include "OpenedUrls.h"
#include "Player.h"
#include "Screen.h"
#include "SettingControler.h"
#include "SharedState.h"

#include <QApplication>
#include <QDir>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>

namespace velmora::test {
namespace {

constexpr int kEventsOfARound = 300;

int fromEnvironment(const char* name, int otherwise) {
    bool isNumber = false;
    const int value = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber ? value : otherwise;
}

/// What the process holds between two lives of the program in it.
struct Holdings {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
};

class RacesTest : public ::testing::Test {
protected:
    RacesTest() { QDir::setCurrent(files_.outputs()); }
    ~RacesTest() override { QDir::setCurrent("/"); }

    /// Starts the program, plays, quits it in the middle of things and takes it down.
    void playRound(int events) {
        auto controller = std::make_unique<MainController>();
        controller->awakeFromNib();
        controller->mainWin().show();
        Round round{*controller, files_, random_};
        Player player(round, watchdog_);
        player.play(events);
        EXPECT_TRUE(player.hasQuit());
        depth_ = std::max(depth_, player.depth());
        watchdog_.note("takes the program down");
        controller.reset();
        dropState();
    }

    /// Starts the program anew and makes a cut, which must work at once.
    void expectACutWorks() {
        watchdog_.note("makes a cut");
        MainController controller;
        controller.awakeFromNib();
        controller.mainWin().show();
        AlertReader alerts;
        EXPECT_TRUE(dropFiles(*onScreen("mCustomImage"), {files_.video()}));
        const QString name = QString("proof-%1").arg(++proofs_);
        fromTheEventLoop([&] { startDirectCut(name); });
        click("mButtonCutterSetting");
        EXPECT_EQ(alerts.messages, QStringList("Congratulations! file has completed!"));
        expectVideo(files_.outputs() + '/' + name + ".mp4");
    }

    Holdings holdings() {
        const std::size_t expected = before_ ? before_->threads : 0;
        return {openDescriptors(), expected > 0 ? threadsOnceEnded(expected) : threads()};
    }

    Sources files_;
    OpenedUrls opened_;
    Watchdog watchdog_;
    Random random_{static_cast<unsigned>(fromEnvironment("VELMORA_SEED", 1))};
    std::optional<Holdings> before_;
    int depth_ = 0;

private:
    static void dropState() {
        for (auto* const list : {&cutterFileList, &joinerFileList, &sharedFileList}) {
            list->reset();
        }
        currentSetting.reset();
        editorProfileStore.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(std::ranges::none_of(QApplication::topLevelWidgets(), &QWidget::isVisible));
    }

    void startDirectCut(const QString& name) const {
        typeInto("mTextField1", files_.outputs());
        typeInto("mTextField2", name);
        clickMark("mRadioDirect");
        click("mButStartCut");
    }

    static void expectVideo(const QString& path) {
        const auto facts = ffprobeJson(path.toStdString(), {"-show_streams"});
        EXPECT_EQ(facts["streams"][0]["codec_type"], "video");
        EXPECT_GT(std::stod(facts["streams"][0]["duration"].get<std::string>()), 3.5);
    }

    int proofs_ = 0;
};

// Each round is a life of the program. What Qt and the libraries keep from the first one is theirs.
TEST_F(RacesTest, windows_usedInAnyOrder_goOnWorkingAndLeaveNothing) {
    const int events = fromEnvironment("VELMORA_EVENTS", 600);
    std::cout << "VELMORA_SEED=" << fromEnvironment("VELMORA_SEED", 1)
              << " VELMORA_EVENTS=" << events << std::endl;
    for (int done = 0; done < events && !HasFailure(); done += kEventsOfARound) {
        playRound(std::min(kEventsOfARound, events - done));
        expectACutWorks();
        const Holdings now = holdings();
        if (!before_) {
            before_ = now;
        }
        EXPECT_LE(now.descriptors, before_->descriptors);
        EXPECT_LE(now.threads, before_->threads);
        EXPECT_TRUE(files_.areUntouched());
    }
    if (HasFailure()) {
        watchdog_.tell();
    }
    std::cout << "event loops within each other: " << depth_ << std::endl;
}

} // namespace
} // namespace velmora::test
