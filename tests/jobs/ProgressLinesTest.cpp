// What the progress window shows at the start, during and at the end of a run.

#include "ControllerSupport.h"

#include <QRegularExpression>
#include <QTest>

namespace velmora::test {
namespace {

class ProgressLinesTest : public ControllerTest {
protected:
    ConverterController controller_;
};

TEST_F(ProgressLinesTest, secondRun_beginsWithBothBarsEmpty) {
    addItem(mediaPath("h264.mp4"), 0, 500);
    show(controller_, directJob("first.mp4"));
    ASSERT_EQ(controller_.totleProgress()->value(), 100);
    ASSERT_EQ(controller_.singleProgress()->value(), 100);
    int total = -1;
    int single = -1;
    show(controller_, directJob("second.mp4"), [&] {
        total = controller_.totleProgress()->value();
        single = controller_.singleProgress()->value();
    });
    EXPECT_EQ(total, 0);
    EXPECT_EQ(single, 0);
}

TEST_F(ProgressLinesTest, allInputsDone_itemLineStaysThatOfTheLast) {
    for (const char* const name : {"/a/one.mp4", "/a/two.mp4"}) {
        addItem(name, 0, 1000);
    }
    setCounters(1, 2, 45, {1});
    controller_.refreshProgree();
    setCounters(2, 2, 100, {1, 1});
    controller_.refreshProgree();
    EXPECT_EQ(textOf(controller_, "singleTxt"),
              "Current File Converting: two.mp4 45% has completed");
    EXPECT_EQ(textOf(controller_, "totleTxt"),
              "Total Progress: 2 Task Completed / Total 2 Task(s)");
}

TEST_F(ProgressLinesTest, timeLine_tellsTimePassedAndThenTimeLeft) {
    for (int i = 0; i < 20; ++i) {
        addItem(mediaPath("h264.mp4"), 0, 4);
    }
    ConverterInfo job = slowJob("out.mp4", 3840, 2160);
    job.isCutter = 0; // a join goes on for long enough to be foreseen
    QStringList seen;
    show(controller_, job, [&] {
        const auto take = [&] {
            const QString text = textOf(controller_, "timeTxt");
            if (!text.trimmed().isEmpty() && text != seen.value(seen.size() - 1)) {
                seen.append(text);
            }
            return text.contains("left");
        };
        EXPECT_TRUE(QTest::qWaitFor(take, 60000));
        controller_.closeFrom();
    });
    const auto matches = [](const QString& text, const char* pattern) {
        return QRegularExpression(QRegularExpression::anchoredPattern(pattern))
            .match(text)
            .hasMatch();
    };
    ASSERT_GE(seen.size(), 2);
    EXPECT_TRUE(matches(seen.first(), R"(00:00:0\d passed)")) << seen.first().toStdString();
    EXPECT_TRUE(matches(seen.last(), R"(00:\d\d:\d\d passed, about \d\d:\d\d:\d\d left)"))
        << seen.last().toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isRefreshing(controller_); }, 60000));
}

} // namespace
} // namespace velmora::test
