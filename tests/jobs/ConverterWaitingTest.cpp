#include "ControllerSupport.h"
#include "FirstInput.h"
#include "MediaReader.h"
#include "ModalSession.h"

#include <QTest>

#include <thread>

namespace velmora::test {
namespace {

/// Runs that go on behind a closed window, and those that wait for them.
class ConverterWaitingTest : public ControllerTest {
protected:
    /// Starts a run and closes its window by the close box.
    void leaveGoing(ConverterController& controller, const ConverterInfo& job) {
        show(controller, job, [&] { windowOf(controller).close(); });
    }
    void expectPictures(const std::string& name, std::size_t count) const {
        EXPECT_EQ(packetsOf(folder_ / name, "v:0").size(), count) << name;
    }

    ConverterController first_;
    ConverterController second_;
};

TEST_F(ConverterWaitingTest, closedByItsBox_theRunGoesOnAndIsToldInTheEnd) {
    NodeInfo& item = addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("out.mp4", 1280, 720));
    EXPECT_FALSE(windowOf(first_).isVisible());
    EXPECT_EQ(modalWindow(), nullptr);
    EXPECT_EQ(engine_.stopRequested, 0);
    EXPECT_TRUE(waitForAlerts(1));
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    EXPECT_EQ(item.converteState, Completed);
    EXPECT_FALSE(isRefreshing(first_));
    expectPictures("out.mp4", 119);
}

TEST_F(ConverterWaitingTest, previewAsTheRunEnds_theOutcomeIsTheRuns) {
    NodeInfo& item = addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("out.mp4", 320, 180));
    while (engine_.currentIndex != 1) { // its end is not looked for before the next tick
        std::this_thread::yield();
    }
    {
        const FirstInput previewed;
        EXPECT_EQ(engine_.currentIndex, 0);
    }
    EXPECT_TRUE(waitForAlerts(1));
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    EXPECT_EQ(item.converteState, Completed);
}

TEST_F(ConverterWaitingTest, previewWithoutARun_leavesTheFirstInput) {
    engine_.currentIndex = 3;
    { const FirstInput previewed; }
    EXPECT_EQ(engine_.currentIndex, 0);
}

TEST_F(ConverterWaitingTest, listReplacedMeanwhile_resultsReachTheItemsOfTheRun) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    const auto item = sharedFileList->front();
    leaveGoing(first_, slowJob("out.mp4", 1280, 720));
    sharedFileList->clear();
    addItem("/nowhere/other.mp4", 0, 1);
    currentSetting->vEncoder = "none";
    EXPECT_TRUE(waitForAlerts(1));
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    EXPECT_EQ(item->converteState, Completed);
    EXPECT_EQ(sharedFileList->front()->converteState, Ready);
}

TEST_F(ConverterWaitingTest, endOfARunBehind_leavesTheSessionOfAnotherWindow) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("out.mp4", 640, 360));
    QWidget panel;
    bool stillModal = false;
    QTimer::singleShot(0, &panel, [&] {
        EXPECT_TRUE(waitForAlerts(1));
        stillModal = modalWindow() == &panel;
        panel.close();
    });
    runModalForWindow(panel);
    EXPECT_TRUE(stillModal);
}

TEST_F(ConverterWaitingTest, nextRun_waitsForTheOneBefore) {
    NodeInfo& item = addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("slow.mp4", 1280, 720));
    item.startTime = 1000;
    item.endTime = 2000;
    show(first_, directJob("next.mp4"), [&] {
        EXPECT_EQ(textOf(first_, "singleTxt"), "Waiting for the previous conversion…");
        EXPECT_EQ(engine_.stopRequested, 0);
    });
    EXPECT_EQ(alerts_.messages, (QStringList{kCompleted, kCompleted}));
    expectPictures("slow.mp4", 119);
    expectPictures("next.mp4", 30);
    EXPECT_FALSE(isRefreshing(first_));
}

TEST_F(ConverterWaitingTest, runOfAnotherController_waitsToo) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("slow.mp4", 1280, 720));
    sharedFileList->clear();
    NodeInfo& item = addItem("/nowhere/in.mp4", 0, 1000);
    show(second_, directJob("next.mp4"));
    EXPECT_EQ(alerts_.messages, (QStringList{kCompleted, kFailed}));
    EXPECT_EQ(item.converteState, Failure);
    expectPictures("slow.mp4", 119);
    EXPECT_FALSE(isRefreshing(first_));
    EXPECT_FALSE(isRefreshing(second_));
}

TEST_F(ConverterWaitingTest, nextRun_resultsOfTheOneBefore_reachItsItems) {
    addItem(mediaPath("h264.mp4"), 0, 4000).isSeleted = 1;
    const auto before = sharedFileList->front();
    leaveGoing(first_, slowJob("slow.mp4", 640, 360));
    sharedFileList->clear();
    const NodeInfo& next = addItem("/nowhere/in.mp4", 0, 1000);
    show(first_, directJob("next.mp4"));
    EXPECT_EQ(alerts_.messages, (QStringList{kCompleted, kFailed}));
    EXPECT_EQ(before->converteState, Completed);
    EXPECT_EQ(before->isSeleted, 0);
    EXPECT_EQ(next.converteState, Failure);
}

TEST_F(ConverterWaitingTest, waitingRunThatBeginsBehindTheMessage_keepsItsOwnCounters) {
    addItem(mediaPath("h264.mp4"), 0, 4);
    addItem("/nowhere/in.mp4", 0, 4);
    const FileList before = *sharedFileList;
    ConverterInfo job = slowJob("slow.mp4", 1280, 720);
    job.isCutter = 0;
    leaveGoing(first_, job);
    sharedFileList->clear();
    const NodeInfo& next = addItem(mediaPath("h264.mp4"), 0, 1000);
    alerts_.mayAnswer = [&] { return std::filesystem::exists(folder_ / "next.mp4"); };
    show(second_, directJob("next.mp4"));
    EXPECT_EQ(alerts_.messages, (QStringList{kCompleted, kCompleted}));
    EXPECT_EQ(before[0]->converteState, Completed);
    EXPECT_EQ(before[1]->converteState, Failure);
    EXPECT_EQ(next.converteState, Completed);
    EXPECT_EQ(engine_.jobCount, 2);
}

TEST_F(ConverterWaitingTest, cancelWhileWaiting_leavesTheRunBeforeAlone) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("slow.mp4", 1280, 720));
    for (ConverterController* controller : {&first_, &second_}) {
        show(*controller, directJob("next.mp4"), [&] { controller->closeFrom(); });
        EXPECT_FALSE(windowOf(*controller).isVisible());
        EXPECT_EQ(engine_.stopRequested, 0);
    }
    EXPECT_FALSE(isRefreshing(second_));
    EXPECT_TRUE(waitForAlerts(1));
    QTest::qWait(700); // another tick says nothing more
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    expectPictures("slow.mp4", 119);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "next.mp4"));
}

TEST_F(ConverterWaitingTest, runAfterACancelledOne_startsWhenTheWorkerHasGone) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    show(first_, slowJob("slow.mp4", 3840, 2160), [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] { return engine_.currentPercent > 0; }, 60000));
        first_.closeFrom();
    });
    show(second_, directJob("next.mp4"));
    EXPECT_EQ(alerts_.messages, QStringList{kCompleted});
    expectPictures("next.mp4", 120);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isRefreshing(first_); }));
    EXPECT_EQ(alerts_.messages.size(), 1);
}

TEST_F(ConverterWaitingTest, waitingRunClosedByItsBox_startsAllTheSame) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("slow.mp4", 640, 360));
    leaveGoing(first_, directJob("next.mp4"));
    leaveGoing(first_, directJob("third.mp4"));
    EXPECT_TRUE(waitForAlerts(3));
    EXPECT_EQ(alerts_.messages, QStringList(3, kCompleted));
    expectPictures("next.mp4", 120);
    expectPictures("third.mp4", 120);
}

TEST_F(ConverterWaitingTest, cancelOfTheSecondThatWaits_leavesTheFirstToStart) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    leaveGoing(first_, slowJob("slow.mp4", 640, 360));
    leaveGoing(second_, directJob("next.mp4"));
    show(second_, directJob("third.mp4"), [&] { second_.closeFrom(); });
    EXPECT_TRUE(isRefreshing(second_));
    EXPECT_TRUE(waitForAlerts(2));
    EXPECT_EQ(alerts_.messages, QStringList(2, kCompleted));
    expectPictures("next.mp4", 120);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "third.mp4"));
    EXPECT_FALSE(isRefreshing(second_));
}

TEST_F(ConverterWaitingTest, cancelledBeforeARunOfAnother_takesNoneOfItsStates) {
    addItem(mediaPath("h264.mp4"), 0, 4000);
    const auto cancelled = sharedFileList->front();
    show(first_, slowJob("slow.mp4", 640, 360), [&] { first_.closeFrom(); });
    first_.findChild<QTimer*>("refreshTimer")->stop(); // its next tick comes after the other run
    sharedFileList->clear();
    addItem("/nowhere/in.mp4", 0, 1000);
    show(second_, directJob("next.mp4"));
    ASSERT_EQ(alerts_.messages, QStringList{kFailed});
    cancelled->converteState = Ready;
    first_.refreshProgree();
    EXPECT_EQ(cancelled->converteState, Ready);
}

} // namespace
} // namespace velmora::test
