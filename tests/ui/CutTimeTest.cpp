#include "LogLines.h"
#include "SharedState.h"
#include "cutterWinController.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

namespace velmora::test {
namespace {

struct Time {
    const char* text;
    std::int32_t milliseconds;
};

class TimeTest : public ::testing::TestWithParam<Time> {};

TEST_P(TimeTest, parseSpecificStringToMs_givesMillisecondsOrFails) {
    const LogLines lines;
    const std::int32_t expected = GetParam().milliseconds;
    EXPECT_EQ(cutterWinController::parseSpecificStringToMs(GetParam().text), expected);
    EXPECT_EQ(lines.count("err out"), expected < 0 ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Times, TimeTest,
                         ::testing::Values(Time{"00:00:10.000", 10000},
                                           Time{"01:00:00.000", 3600000},
                                           Time{"99:99:99.999", 362439999},
                                           Time{"00:00:60.000", 60000},
                                           Time{"00:75:80.000", 4580000},
                                           Time{"00:01:02.500", 62500}, Time{"1:2:3.4", 3723004},
                                           Time{"1.2.3.4", 3723004}, Time{"1:2:3:4", 3723004}));

INSTANTIATE_TEST_SUITE_P(MillisecondsAreACount, TimeTest,
                         ::testing::Values(Time{"00:00:01.5", 1005}, Time{"00:00:01.500", 1500},
                                           Time{"00:00:01.05", 1005}, Time{"00:00:00.1", 1}));

INSTANTIATE_TEST_SUITE_P(EmptyFieldsCount0, TimeTest,
                         ::testing::Values(Time{"::.", 0}, Time{":::", 0}, Time{"::5.", 5000},
                                           Time{"1:::", 3600000}, Time{":::7", 7}));

INSTANTIATE_TEST_SUITE_P(MissingFieldsCount0, TimeTest,
                         ::testing::Values(Time{"", 0}, Time{"00:00:01", 1000}, Time{"1", 3600000},
                                           Time{"1:1", 3660000}, Time{"00:00:01.", 1000}));

INSTANTIATE_TEST_SUITE_P(RestIsIgnored, TimeTest,
                         ::testing::Values(Time{"00:00:01.5:xyz", 1005}, Time{"0:0:1.5.", 1005},
                                           Time{"0:0:1.5:-1:€", 1005}));

INSTANTIATE_TEST_SUITE_P(Bounds, TimeTest,
                         ::testing::Values(Time{"100:00:00.000", -1}, Time{"00:100:00.000", -1},
                                           Time{"00:00:100.000", -1}, Time{"00:00:00.1000", -1},
                                           Time{"00:00:00.999", 999},
                                           Time{"00099:0:0.0", 356400000},
                                           Time{"0000000000000000001:0:0.0", 3600000}));

INSTANTIATE_TEST_SUITE_P(MoreDigitsThanFit, TimeTest,
                         ::testing::Values(Time{"2147483648:0:0.0", -1},
                                           Time{"4294967296:0:0.0", -1},
                                           Time{"0:0:0.4294967297", -1},
                                           Time{"0:18446744073709551616:0.0", -1},
                                           Time{"99999999999999999999999999:0:0.0", -1}));

INSTANTIATE_TEST_SUITE_P(NoDigits, TimeTest,
                         ::testing::Values(Time{"-00:00:01.000", -1}, Time{"+00:00:01.000", -1},
                                           Time{"00 00 00 000", -1}, Time{" 00:00:01.000", -1},
                                           Time{"00:00:01.000 ", -1}, Time{"00:0a:01.000", -1},
                                           Time{"00:00:01,500", -1}, Time{"00;00;01", -1},
                                           Time{"00:00:٣.000", -1}, Time{"é", -1}));

class CutWindowTest : public ::testing::Test {
protected:
    void SetUp() override { currentSetting = std::make_shared<NodeSetting>(); }
    void TearDown() override { currentSetting.reset(); }

    static std::int32_t set(const char* start, const char* end) {
        return cutterWinController::setStartAndEnd(start, end);
    }
    static void expectWindow(float start, float end) {
        EXPECT_EQ(currentSetting->cutStartTime, start);
        EXPECT_EQ(currentSetting->cutEndTime, end);
    }
};

TEST_F(CutWindowTest, setStartAndEnd_times_areStoredAndGiveTheLength) {
    EXPECT_EQ(set("00:00:05.000", "00:00:15.250"), 10250);
    expectWindow(5000.0F, 15250.0F);
}

TEST_F(CutWindowTest, setStartAndEnd_logsBothTexts) {
    const LogLines lines;
    set("00:00:05.000", "%1");
    EXPECT_EQ(lines.all(), QStringList({"set str start:00:00:05.000 end:%1", "err out"}));
}

TEST_F(CutWindowTest, setStartAndEnd_startEqualsEnd_is0) {
    EXPECT_EQ(set("00:00:05.000", "00:00:05.000"), 0);
}

TEST_F(CutWindowTest, setStartAndEnd_endBeforeStart_failsAndStoresBoth) {
    EXPECT_EQ(set("00:00:06.000", "00:00:05.000"), -1);
    expectWindow(6000.0F, 5000.0F);
}

TEST_F(CutWindowTest, setStartAndEnd_startIsNoTime_failsAndStoresBoth) {
    EXPECT_EQ(set("x", "00:00:05.000"), -1);
    expectWindow(-1.0F, 5000.0F);
}

TEST_F(CutWindowTest, setStartAndEnd_endIsNoTime_failsAndStoresBoth) {
    EXPECT_EQ(set("00:00:00.000", "x"), -1);
    expectWindow(0.0F, -1.0F);
    EXPECT_EQ(set("x", "x"), -1);
    expectWindow(-1.0F, -1.0F);
}

TEST_F(CutWindowTest, setStartAndEnd_lateTimes_areSubtractedAsFloats) {
    // 362439999 has no float of its own: the nearest is 362440000.
    EXPECT_EQ(set("00:00:00.000", "99:99:99.999"), 362440000);
    EXPECT_EQ(set("99:99:99.998", "99:99:99.999"), 0);
    expectWindow(362440000.0F, 362440000.0F);
}

} // namespace
} // namespace velmora::test
