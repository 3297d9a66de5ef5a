// How the driver brings times into the engine's table, and what is shown while it fills that.

#include "ConversionEngine.h"
#include "ConverterThread.h"
#include "JobsSupport.h"

#include <QLoggingCategory>

#include <functional>
#include <utility>

namespace velmora::test {
namespace {

/// Calls a function with each line of the platform log, where that is written.
class AtPlatformLine {
public:
    explicit AtPlatformLine(std::function<void(const QString&)> action)
        : before_(qInstallMessageHandler(take)) {
        action_ = std::move(action);
        QLoggingCategory::setFilterRules("velmora.info=true");
    }
    ~AtPlatformLine() {
        QLoggingCategory::setFilterRules({});
        qInstallMessageHandler(before_);
    }
    AtPlatformLine(const AtPlatformLine&) = delete;
    AtPlatformLine& operator=(const AtPlatformLine&) = delete;

private:
    static void take(QtMsgType, const QMessageLogContext&, const QString& line) { action_(line); }

    inline static std::function<void(const QString&)> action_;
    QtMessageHandler before_;
};

/// Items whose files do not exist fail at once, and what the driver has filled in stays.
class DriverTimesTest : public SharedStateTest {
protected:
    void run(int isCutter) {
        ConverterThread::beginConverter(
            {.fullPath = output("out.mp4"), .isDirectly = 1, .isCutter = isCutter});
    }

    ConversionEngine& engine_ = ConversionEngine::instance();
};

TEST_F(DriverTimesTest, cut_oddStart_isDividedAsFloat) {
    addItem("/nowhere/in.mp4", 1234.5F, 4000);
    run(1);
    EXPECT_EQ(engine_.startTimes[0], static_cast<double>(1234.5F / 1000.0F));
    EXPECT_NE(engine_.startTimes[0], 1.2345);
}

TEST_F(DriverTimesTest, cut_oddTimes_spanIsTheirDifferenceAsDoubles) {
    addItem("/nowhere/in.mp4", 100.1F, 1234.5F);
    run(1);
    const float start = 100.1F / 1000.0F;
    const float end = 1234.5F / 1000.0F;
    EXPECT_EQ(engine_.spans[0], static_cast<double>(end) - static_cast<double>(start));
    EXPECT_NE(engine_.spans[0], static_cast<double>(end - start));
}

TEST_F(DriverTimesTest, join_startOfAnItem_isDividedTheSameWay) {
    addItem("/nowhere/in.mp4", 1.5F, 10.7F);
    run(0);
    EXPECT_EQ(engine_.startTimes[0], static_cast<double>(1.5F / 1000.0F));
    EXPECT_EQ(engine_.endTimes[0], static_cast<double>(10.7F / 1000.0F));
}

TEST_F(DriverTimesTest, tableBeingFilled_showsNoPercent) {
    addItem("/nowhere/in.mp4", 0, 1000);
    engine_.currentPercent = 77; // of a run before
    QList<int> percents;
    {
        const AtPlatformLine watch([&](const QString& line) {
            if (line.startsWith("len:") || line.startsWith("curNode.start:")) {
                percents.append(engine_.currentPercent);
            }
        });
        run(1);
    }
    EXPECT_EQ(percents, QList<int>({-1, -1}));
    EXPECT_EQ(engine_.currentPercent, 0);
}

} // namespace
} // namespace velmora::test
