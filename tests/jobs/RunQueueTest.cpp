#include "RunQueue.h"
#include "ConversionEngine.h"
#include "JobsSupport.h"

#include <QTest>

#include <array>
#include <filesystem>
#include <set>

namespace velmora::test {
namespace {

using State = ConversionRun::State;

/// Runs of two owners, in a queue of the test's own.
class RunQueueTest : public SharedStateTest {
protected:
    /// Asks for a run over one item, which fails at once, or copies packets of a file to `name`.
    void add(RunOwner owner, const std::string& name = "out.mp4",
             const std::string& input = "/nowhere/in.mp4") {
        sharedFileList->clear();
        addItem(input, 0, 4000);
        queue_.add(owner, {.fullPath = output(name), .isDirectly = 1, .isCutter = 1});
    }
    /// Asks for a run that goes on for long enough to be stopped.
    void addLong(RunOwner owner, const std::string& name = "long.mp4") {
        sharedFileList->clear();
        addItem(mediaPath("h264.mp4"), 0, 4000);
        currentSetting->vEncoder = "H264";
        currentSetting->vBitrate = "4000";
        currentSetting->vFrameRate = "30";
        currentSetting->width = 3840;
        currentSetting->height = 2160;
        currentSetting->aEncoder = "AAC";
        currentSetting->aBitrate = "128";
        currentSetting->aSamplerate = "44100";
        currentSetting->aChannels = "2";
        queue_.add(owner, {.fullPath = output(name), .isDirectly = 0, .isCutter = 1});
    }
    void start(RunOwner owner) {
        queue_.startNext(owner);
        ASSERT_NE(queue_.current(owner), nullptr);
    }
    bool waitForEnd(RunOwner owner) const {
        return QTest::qWaitFor([&] { return !queue_.current(owner)->isAtWork(); }, 60000);
    }
    void runToItsEnd(RunOwner owner) {
        start(owner);
        ASSERT_TRUE(waitForEnd(owner));
    }
    QString pathOf(RunOwner owner) const { return queue_.current(owner)->items()[0]->inputFile; }

    static constexpr std::array<int, 2> kOwners{};
    static constexpr RunOwner kFirst = kOwners.data();
    static constexpr RunOwner kSecond = kOwners.data() + 1;
    ConversionEngine& engine_ = ConversionEngine::instance();
    RunQueue queue_;
};

TEST_F(RunQueueTest, emptyQueue_isFreeAndKnowsNobody) {
    EXPECT_FALSE(queue_.isBusy());
    EXPECT_EQ(queue_.current(kFirst), nullptr);
    EXPECT_FALSE(queue_.hasWaiting(kFirst));
    queue_.startNext(kFirst);
    queue_.cancelWaiting(kFirst);
    queue_.cancelCurrent(kFirst);
    queue_.removeCurrent(kFirst);
    queue_.removeAll(kFirst);
    EXPECT_FALSE(queue_.isBusy());
}

TEST_F(RunQueueTest, runAskedFor_waitsUntilItIsStarted) {
    add(kFirst);
    EXPECT_TRUE(queue_.hasWaiting(kFirst));
    EXPECT_FALSE(queue_.hasWaiting(kSecond));
    EXPECT_EQ(queue_.current(kFirst), nullptr);
    EXPECT_FALSE(queue_.isBusy());
    start(kFirst);
    EXPECT_FALSE(queue_.hasWaiting(kFirst));
    EXPECT_TRUE(queue_.isBusy());
    EXPECT_EQ(queue_.current(kSecond), nullptr);
}

TEST_F(RunQueueTest, outcomeNotTaken_keepsTheNextOneWaiting) {
    add(kFirst);
    runToItsEnd(kFirst);
    add(kSecond);
    queue_.startNext(kSecond);
    EXPECT_TRUE(queue_.hasWaiting(kSecond));
    EXPECT_TRUE(queue_.isBusy());
    queue_.removeCurrent(kFirst);
    EXPECT_FALSE(queue_.isBusy());
    start(kSecond);
}

TEST_F(RunQueueTest, runsOfTwoOwners_startInTheOrderInWhichTheyWereAskedFor) {
    add(kFirst);
    runToItsEnd(kFirst);
    add(kSecond);
    add(kFirst);
    queue_.removeCurrent(kFirst);
    queue_.startNext(kFirst);
    EXPECT_EQ(queue_.current(kFirst), nullptr);
    EXPECT_TRUE(queue_.hasWaiting(kSecond));
    EXPECT_FALSE(queue_.isBusy());
    runToItsEnd(kSecond);
    queue_.removeCurrent(kSecond);
    start(kFirst);
}

TEST_F(RunQueueTest, cancelledRun_makesWayOnceItsWorkerIsDone) {
    addLong(kFirst);
    add(kSecond);
    start(kFirst);
    queue_.cancelCurrent(kFirst);
    EXPECT_EQ(engine_.stopRequested, 1);
    ASSERT_TRUE(waitForEnd(kFirst));
    EXPECT_EQ(queue_.current(kFirst)->state(), State::Settled);
    EXPECT_FALSE(queue_.isBusy());
    start(kSecond);
    EXPECT_EQ(engine_.stopRequested, 0);
    EXPECT_EQ(queue_.current(kFirst)->state(), State::Settled);
}

TEST_F(RunQueueTest, cancelledRun_isReplacedByTheNextOfItsOwner) {
    add(kFirst, "out.mp4", "/nowhere/one.mp4");
    runToItsEnd(kFirst);
    queue_.cancelCurrent(kFirst);
    add(kFirst, "out.mp4", "/nowhere/two.mp4");
    EXPECT_EQ(pathOf(kFirst), "/nowhere/one.mp4");
    start(kFirst);
    EXPECT_EQ(pathOf(kFirst), "/nowhere/two.mp4");
}

TEST_F(RunQueueTest, cancelWaiting_takesTheLastOfItsOwnerOnly) {
    add(kFirst, "out.mp4", "/nowhere/one.mp4");
    add(kFirst, "out.mp4", "/nowhere/two.mp4");
    add(kSecond, "out.mp4", "/nowhere/three.mp4");
    queue_.cancelWaiting(kFirst);
    EXPECT_TRUE(queue_.hasWaiting(kFirst));
    runToItsEnd(kFirst);
    EXPECT_EQ(pathOf(kFirst), "/nowhere/one.mp4");
    EXPECT_FALSE(queue_.hasWaiting(kFirst));
    queue_.removeCurrent(kFirst);
    start(kSecond);
    EXPECT_EQ(pathOf(kSecond), "/nowhere/three.mp4");
}

TEST_F(RunQueueTest, counters_areOfTheRunStartedLast) {
    add(kFirst);
    add(kSecond);
    runToItsEnd(kFirst);
    EXPECT_TRUE(queue_.countersAreOf(*queue_.current(kFirst)));
    queue_.cancelCurrent(kFirst);
    EXPECT_TRUE(queue_.countersAreOf(*queue_.current(kFirst)));
    runToItsEnd(kSecond);
    EXPECT_FALSE(queue_.countersAreOf(*queue_.current(kFirst)));
    EXPECT_TRUE(queue_.countersAreOf(*queue_.current(kSecond)));
}

// They are then neither those of a run that was cancelled before.
TEST_F(RunQueueTest, counters_ofARunThatWasRemoved_areNobodys) {
    add(kFirst);
    runToItsEnd(kFirst);
    queue_.cancelCurrent(kFirst);
    add(kSecond);
    runToItsEnd(kSecond);
    queue_.removeCurrent(kSecond);
    EXPECT_FALSE(queue_.countersAreOf(*queue_.current(kFirst)));
    EXPECT_FALSE(queue_.isBusy());
}

TEST_F(RunQueueTest, removeAll_stopsTheRunAndLeavesThoseOfOthers) {
    addLong(kFirst);
    add(kFirst);
    add(kSecond);
    start(kFirst);
    queue_.removeAll(kFirst);
    EXPECT_EQ(engine_.stopRequested, 1);
    EXPECT_EQ(engine_.fileStates[0], ConversionEngine::Pending);
    EXPECT_EQ(queue_.current(kFirst), nullptr);
    EXPECT_FALSE(queue_.hasWaiting(kFirst));
    EXPECT_FALSE(queue_.isBusy());
    start(kSecond);
}

TEST_F(RunQueueTest, removeAll_ofARunThatHasEnded_asksNobodyToStop) {
    add(kFirst);
    runToItsEnd(kFirst);
    queue_.removeAll(kFirst);
    EXPECT_EQ(engine_.stopRequested, 0);
    EXPECT_FALSE(queue_.isBusy());
}

} // namespace
} // namespace velmora::test
