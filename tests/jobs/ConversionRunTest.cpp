#include "ConversionRun.h"
#include "ConversionEngine.h"
#include "JobsSupport.h"
#include "MediaReader.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <QTest>

#include <mutex>
#include <set>
#include <thread>

namespace velmora::test {
namespace {

/// The threads on which the log is written; what fills the engine's tables tells what it does.
class LoggingThreads {
public:
    LoggingThreads() : log_() { before_ = qInstallMessageHandler(take); }
    ~LoggingThreads() { qInstallMessageHandler(before_); }
    LoggingThreads(const LoggingThreads&) = delete;
    LoggingThreads& operator=(const LoggingThreads&) = delete;

    static std::set<std::thread::id> all() {
        const std::lock_guard lock(guard_);
        return threads_;
    }

private:
    static void take(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                     const QString& /*line*/) {
        const std::lock_guard lock(guard_);
        threads_.insert(std::this_thread::get_id());
    }

    static inline std::mutex guard_;
    static inline std::set<std::thread::id> threads_;
    LogLines log_; ///< lets the lines be written
    QtMessageHandler before_;
};

using State = ConversionRun::State;

class ConversionRunTest : public SharedStateTest {
protected:
    ConverterInfo job(int isDirectly) const {
        return {.fullPath = output("out.mp4"), .isDirectly = isDirectly, .isCutter = 1};
    }
    static bool waitForEnd(const ConversionRun& run) {
        return QTest::qWaitFor([&] { return !run.isAtWork(); }, 60000);
    }

    ConversionEngine& engine_ = ConversionEngine::instance();
};

TEST_F(ConversionRunTest, tables_areFilledBeforeTheWorkerExists) {
    addItem(mediaPath("h264.mp4"), 1000, 2000);
    ConversionRun run(job(1));
    const LoggingThreads threads;
    run.start();
    ASSERT_TRUE(waitForEnd(run));
    EXPECT_EQ(LoggingThreads::all(), std::set{std::this_thread::get_id()});
}

TEST_F(ConversionRunTest, whatIsProbedOnceItHasStarted_doesNotReachIt) {
    currentSetting->vEncoder = "MPEG4";
    currentSetting->vBitrate = "800";
    currentSetting->width = 64;
    currentSetting->height = 48;
    currentSetting->aEncoder = "AAC";
    currentSetting->aSamplerate = "44100";
    currentSetting->aChannels = "2";
    addItem(mediaPath("h264.mp4"), 1000, 2000);
    ConversionRun run(job(0));
    run.start();
    engine_.videoCodecId = AV_CODEC_ID_H264;
    engine_.audioChannels = 0;
    engine_.inputPaths.clear();
    ASSERT_TRUE(waitForEnd(run));
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Done);
    const auto written = ffprobeJson(folder_ / "out.mp4", {"-show_streams"});
    EXPECT_EQ(written["streams"][0]["codec_name"], "mpeg4");
}

// A name that selects no encoder leaves the codec as it was when the user started the run.
TEST_F(ConversionRunTest, whatIsProbedWhileItWaits_doesNotReachIt) {
    engine_.videoCodecId = AV_CODEC_ID_FLV1;
    engine_.audioCodecId = AV_CODEC_ID_MP3;
    addItem("/nowhere/in.mp4", 0, 1000);
    ConversionRun run(job(0));
    engine_.probePath = mediaPath("h264.mp4");
    ASSERT_EQ(engine_.probe(), 0);
    run.start();
    EXPECT_EQ(engine_.videoCodecId, AV_CODEC_ID_FLV1);
    EXPECT_EQ(engine_.audioCodecId, AV_CODEC_ID_MP3);
    ASSERT_TRUE(waitForEnd(run));
}

TEST_F(ConversionRunTest, stopOfTheRunBefore_isForgotten) {
    engine_.stopRequested = 1;
    addItem(mediaPath("h264.mp4"), 1000, 2000);
    ConversionRun run(job(1));
    run.start();
    ASSERT_TRUE(waitForEnd(run));
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Done);
}

TEST_F(ConversionRunTest, cancelRightAfterTheStart_isNeverLost) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    for (int i = 0; i < 50; ++i) {
        ConversionRun run(job(1));
        run.start();
        run.cancel();
        EXPECT_EQ(engine_.stopRequested, 1);
        ASSERT_TRUE(waitForEnd(run));
        EXPECT_EQ(engine_.stopRequested, 1);
        EXPECT_EQ(run.state(), State::Settled);
    }
}

TEST_F(ConversionRunTest, states_followEachOtherToTheOutcome) {
    addItem(mediaPath("h264.mp4"), 1000, 2000);
    ConversionRun run(job(1));
    EXPECT_EQ(run.state(), State::Waiting);
    EXPECT_FALSE(run.isAtWork());
    EXPECT_FALSE(run.hasOutcome());
    run.start();
    ASSERT_TRUE(waitForEnd(run));
    EXPECT_EQ(run.state(), State::Ended);
    EXPECT_TRUE(run.hasOutcome());
}

TEST_F(ConversionRunTest, cancelOfOneThatHasEnded_settlesIt) {
    addItem("/nowhere/in.mp4", 0, 1000);
    ConversionRun run(job(1));
    run.start();
    ASSERT_TRUE(waitForEnd(run));
    run.cancel();
    EXPECT_EQ(run.state(), State::Settled);
    EXPECT_FALSE(run.hasOutcome());
    run.cancel();
    EXPECT_EQ(run.state(), State::Settled);
}

TEST_F(ConversionRunTest, secondCancel_changesNothing) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    for (int i = 0; i < 50; ++i) {
        ConversionRun run(job(1));
        run.start();
        run.cancel();
        run.cancel();
        ASSERT_TRUE(waitForEnd(run));
        EXPECT_EQ(run.state(), State::Settled);
    }
}

} // namespace
} // namespace velmora::test
