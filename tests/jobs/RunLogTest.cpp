#include "RunLog.h"

#include <gtest/gtest.h>

#include <thread>

namespace velmora::test {
namespace {

void addElsewhere(const QString& line, int times = 1) {
    std::thread([&] {
        for (int i = 0; i < times; ++i) {
            RunLog::instance().add(line);
        }
    }).join();
}

TEST(RunLogTest, run_hasItsLinesInOrder) {
    RunLog::instance().begin("first");
    addElsewhere("of the first");
    RunLog::instance().begin("second");
    addElsewhere("one");
    addElsewhere("two");
    EXPECT_EQ(RunLog::instance().text(), "second\none\ntwo\n");
}

TEST(RunLogTest, mainThread_isNotOfTheRun) {
    RunLog::instance().begin("run");
    RunLog::instance().add("a probe");
    EXPECT_EQ(RunLog::instance().text(), "run\n");
}

TEST(RunLogTest, damagedFile_linesComeToAnEnd) {
    RunLog::instance().begin("run");
    addElsewhere("line", 5000);
    const QString text = RunLog::instance().text();
    EXPECT_EQ(text.count('\n'), 2001);
    EXPECT_TRUE(text.endsWith("line\n…\n"));
}

TEST(RunLogTest, threadThatIsLeftOut_addsNothing) {
    RunLog::instance().begin("a run");
    std::thread([] {
        RunLog::leaveOutThisThread();
        RunLog::instance().add("about something else");
    }).join();
    std::thread([] { RunLog::instance().add("about the run"); }).join();
    EXPECT_EQ(RunLog::instance().text(), "a run\nabout the run\n");
}

} // namespace
} // namespace velmora::test
