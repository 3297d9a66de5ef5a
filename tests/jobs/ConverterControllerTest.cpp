#include "ControllerSupport.h"
#include "MediaReader.h"
#include "ModalSession.h"

#include <QTest>

#include <pthread.h>

#include <optional>
#include <utility>

namespace velmora::test {
namespace {

TEST_F(ConverterControllerTest, tick_counters_areShown) {
    addThree();
    setCounters(1, 3, 45, {1});
    controller_.refreshProgree();
    EXPECT_EQ(textOf(controller_, "singleTxt"),
              "Current File Converting: two.mp4 45% has completed");
    EXPECT_EQ(textOf(controller_, "totleTxt"),
              "Total Progress: 1 Task Completed / Total 3 Task(s)");
    EXPECT_EQ(controller_.totleProgress()->value(), 33);
    EXPECT_EQ(controller_.singleProgress()->value(), 45);
    EXPECT_EQ(states(), (std::vector{1, 0, 0}));
    EXPECT_EQ(item(0).isSeleted, 0);
    EXPECT_EQ(item(1).isSeleted, 1);
    EXPECT_TRUE(alerts_.messages.isEmpty());
}

TEST_F(ConverterControllerTest, tick_halfOfTheItems_fillsHalfOfTheBar) {
    addThree();
    setCounters(1, 2, 0, {1});
    controller_.refreshProgree();
    EXPECT_EQ(controller_.totleProgress()->value(), 50);
}

TEST_F(ConverterControllerTest, tick_percentMinus1_keepsItemLineAndBar) {
    addThree();
    setCounters(0, 3, 45);
    controller_.refreshProgree();
    setCounters(1, 3, -1, {1});
    controller_.refreshProgree();
    EXPECT_EQ(textOf(controller_, "singleTxt"),
              "Current File Converting: one.mp4 45% has completed");
    EXPECT_EQ(controller_.singleProgress()->value(), 45);
    EXPECT_EQ(controller_.totleProgress()->value(), 33);
}

TEST_F(ConverterControllerTest, tick_percentAbove100_keepsTheBar) {
    addThree();
    setCounters(0, 3, 100);
    controller_.refreshProgree();
    EXPECT_EQ(controller_.singleProgress()->value(), 100);
    setCounters(0, 3, 10);
    controller_.refreshProgree();
    setCounters(0, 3, 101);
    controller_.refreshProgree();
    EXPECT_EQ(controller_.singleProgress()->value(), 10);
}

TEST_F(ConverterControllerTest, tick_beforeTheRunCounts_namesTheLastItem) {
    addThree();
    setCounters(-1, 3, 0);
    controller_.refreshProgree();
    EXPECT_EQ(textOf(controller_, "singleTxt"),
              "Current File Converting: three.mp4 0% has completed");
    EXPECT_EQ(textOf(controller_, "totleTxt"),
              "Total Progress: -1 Task Completed / Total 3 Task(s)");
    EXPECT_EQ(controller_.totleProgress()->value(), 0);
    EXPECT_EQ(states(), (std::vector{0, 0, 0}));
}

TEST_F(ConverterControllerTest, tick_noJobs_dividesByNothing) {
    setCounters(0, 0, 0);
    controller_.refreshProgree();
    EXPECT_EQ(textOf(controller_, "totleTxt"),
              "Total Progress: 0 Task Completed / Total 0 Task(s)");
    EXPECT_TRUE(alerts_.messages.isEmpty());
}

TEST_F(ConverterControllerTest, tick_nameWithMarksOfAnyKind_isShownAsItIs) {
    addItem("/a/<b>%1 %2.mp4", 0, 1);
    setCounters(0, 1, 5);
    controller_.refreshProgree();
    EXPECT_EQ(textOf(controller_, "singleTxt"),
              "Current File Converting: <b>%1 %2.mp4 5% has completed");
}

TEST_F(ConverterControllerTest, lastTick_firstItemFailed_saysSoWhateverTheOthersDid) {
    addThree();
    setCounters(3, 3, 100, {2, 1, 1});
    controller_.refreshProgree();
    EXPECT_EQ(alerts_.messages, QStringList{kFailed});
    EXPECT_EQ(states(), (std::vector<int>{Failure, Completed, Completed}));
    EXPECT_EQ(item(2).isSeleted, 0);
}

TEST_F(ConverterControllerTest, lastTick_firstItemDone_congratulatesWhateverTheOthersDid) {
    addThree();
    setCounters(3, 3, 100, {1, 2, 255});
    controller_.refreshProgree();
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    EXPECT_EQ(alerts_.titles, QStringList{QGuiApplication::applicationDisplayName()});
    EXPECT_EQ(alerts_.buttons, QStringList{"OK"});
    EXPECT_EQ(states(), (std::vector{1, 2, -1}));
    EXPECT_EQ(controller_.totleProgress()->value(), 100);
    EXPECT_EQ(controller_.singleProgress()->value(), 100);
}

TEST_F(ConverterControllerTest, ticksAfterTheLast_sayNothingMore) {
    addThree();
    setCounters(3, 3, 100, {1, 1, 1});
    controller_.refreshProgree();
    EXPECT_EQ(engine_.jobCount, 4);
    controller_.refreshProgree();
    EXPECT_EQ(alerts_.messages.size(), 1);
}

TEST_F(ConverterControllerTest, tickOfAStoppedRun_closesWithoutMessage) {
    addThree();
    setCounters(3, 3, 100, {1, 1, 1});
    engine_.stopRequested = 1;
    controller_.findChild<QTimer*>("refreshTimer")->start();
    controller_.refreshProgree();
    EXPECT_FALSE(isRefreshing(controller_));
    EXPECT_TRUE(alerts_.messages.isEmpty());
    EXPECT_EQ(states(), (std::vector{1, 1, 1}));
    EXPECT_EQ(item(0).isSeleted, 1);
}

TEST_F(ConverterControllerTest, windowShouldClose_copiesStatesOnly) {
    addThree();
    setCounters(2, 3, 10, {1, 2});
    EXPECT_TRUE(controller_.windowShouldClose());
    EXPECT_EQ(states(), (std::vector{1, 2, 0}));
    EXPECT_EQ(item(0).isSeleted, 1);
}

TEST_F(ConverterControllerTest, refreshTimer_ticksEveryHalfSecond) {
    const auto* timer = controller_.findChild<QTimer*>("refreshTimer");
    EXPECT_EQ(timer->interval(), 500);
    EXPECT_FALSE(timer->isSingleShot());
}

TEST_F(ConverterControllerTest, run_completed_isToldOnceAndClosesTheWindow) {
    addItem(mediaPath("h264.mp4"), 0, 1000).isSeleted = 1;
    show(controller_, directJob("out.mp4"), [&] {
        EXPECT_EQ(modalWindow(), &windowOf(controller_));
        EXPECT_EQ(controller_.totleProgress()->value(), 0);
        EXPECT_TRUE(isRefreshing(controller_));
    });
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    EXPECT_EQ(states(), std::vector<int>{Completed});
    EXPECT_EQ(item(0).isSeleted, 0);
    EXPECT_FALSE(windowOf(controller_).isVisible());
    EXPECT_FALSE(isRefreshing(controller_));
    EXPECT_EQ(packetsOf(folder_ / "out.mp4", "v:0").size(), 30U);
}

TEST_F(ConverterControllerTest, runsOneAfterTheOther_areEachToldOnce) {
    const QStringList expected{kCompleted, kFailed, kCompleted};
    for (qsizetype round = 0; round < expected.size(); ++round) {
        sharedFileList->clear();
        addItem(round == 1 ? "/nowhere/in.mp4" : mediaPath("h264.mp4"), 0, 500);
        show(controller_, directJob("out" + std::to_string(round) + ".mp4"));
        EXPECT_EQ(alerts_.messages, expected.first(round + 1));
        EXPECT_EQ(states(), std::vector<int>{round == 1 ? Failure : Completed});
    }
}

TEST_F(ConverterControllerTest, join_countsItsItems) {
    for (int i = 0; i < 3; ++i) {
        addItem(mediaPath("h264.mp4"), 0, 4);
    }
    show(controller_, directJob("out.mp4", 0));
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    EXPECT_EQ(states(), (std::vector{1, 1, 1}));
    EXPECT_EQ(packetsOf(folder_ / "out.mp4", "v:0").size(), 360U);
}

TEST_F(ConverterControllerTest, join_withoutAReadableFirst_fails) {
    addItem("/nowhere/in.mp4", 0, 4);
    addItem(mediaPath("h264.mp4"), 0, 4);
    show(controller_, directJob("out.mp4", 0));
    EXPECT_EQ(alerts_.messages, QStringList{kFailed});
    EXPECT_EQ(states(), (std::vector<int>{Failure, Failure}));
}

TEST_F(ConverterControllerTest, runThatEndsEarly_isToldAsFailed) {
    addItem(mediaPath("audio-only.m4a"), 0, 1000);
    addItem(mediaPath("h264.mp4"), 0, 1000);
    item(1).converteState = Completed; // of an earlier run
    show(controller_, directJob("out.mp4", 0));
    EXPECT_EQ(alerts_.messages, QStringList{kFailed});
    EXPECT_EQ(states(), (std::vector{-1, -1}));
    EXPECT_FALSE(windowOf(controller_).isVisible());
    EXPECT_FALSE(isRefreshing(controller_));
}

TEST_F(ConverterControllerTest, runWithoutItems_doesNotStayOpen) {
    show(controller_, directJob("out.mp4"));
    EXPECT_EQ(alerts_.messages, QStringList{kFailed});
}

TEST_F(ConverterControllerTest, countersOfAnEarlierRun_areNotTakenForThisOne) {
    addItem("/nowhere/in.mp4", 0, 1000);
    setCounters(1, 1, 100, {1});
    show(controller_, directJob("out.mp4"), [&] { controller_.refreshProgree(); });
    EXPECT_EQ(alerts_.messages, QStringList{kFailed});
}

/// While one lives, no thread can be started: each would need more memory than there are addresses.
class NoMoreThreads {
public:
    NoMoreThreads() {
        pthread_attr_init(&before_);
        pthread_getattr_default_np(&before_);
        pthread_attr_t tooLarge;
        pthread_attr_init(&tooLarge);
        pthread_attr_setstacksize(&tooLarge, std::size_t{1} << 60U);
        pthread_setattr_default_np(&tooLarge);
        pthread_attr_destroy(&tooLarge);
    }
    ~NoMoreThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t before_{};
};

TEST_F(ConverterControllerTest, runThatCannotBeStarted_isToldAsFailedWithoutStatesOfTheOneBefore) {
    addItem(mediaPath("h264.mp4"), 0, 1000);
    show(controller_, directJob("before.mp4"));
    sharedFileList->clear();
    addItem(mediaPath("h264.mp4"), 0, 1000).isSeleted = 1;
    std::optional<NoMoreThreads> none{std::in_place};
    // The bars are cleared after the start of the worker and before the window, which needs
    // threads.
    QObject::connect(controller_.totleProgress(), &QProgressBar::valueChanged,
                     [&] { none.reset(); });
    show(controller_, directJob("out.mp4"));
    EXPECT_EQ(alerts_.messages, (QStringList{kCompleted, kFailed}));
    EXPECT_EQ(states(), std::vector<int>{Ready});
    EXPECT_EQ(item(0).isSeleted, 1);
    EXPECT_FALSE(isRefreshing(controller_));
}

} // namespace
} // namespace velmora::test
