// What a run reports.

#include "RunSupport.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

namespace velmora::test {
namespace {

TEST_F(Run, join_putsItsLengthIntoEverySpan) {
    fillJoin({source_, source_, source_}, output_);
    engine_.joinTotalMs = 77;

    run();

    EXPECT_EQ(engine_.spans[0], 77.0);
    EXPECT_EQ(engine_.spans[1], 77.0);
    EXPECT_EQ(engine_.spans[2], 77.0);
    EXPECT_EQ(engine_.spans[3], 0.0);
}

TEST_F(Run, percent_ofAJoinIsOfItsWholeLength) {
    fillJoin({source_, source_, source_}, output_);
    EXPECT_EQ(engine_.joinTotalMs, 6);
    engine_.joinTotalMs = 70;
    EXPECT_EQ(run().percent, 8); // about 6 s of 70

    engine_.joinTotalMs = 3;
    EXPECT_EQ(run().percent, 100); // no more than that
}

TEST_F(Run, percent_ofAJoinWithoutLengthStaysWithinBounds) {
    for (const int total : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        fillPaths({source_}, output_);
        engine_.joinMode = 1;
        engine_.joinTotalMs = total;

        const JobResult result = run();

        EXPECT_EQ(result.states, std::vector{1}) << total;
        EXPECT_GE(result.percent, 0) << total;
        EXPECT_LE(result.percent, 100) << total;
    }
}

TEST_F(Run, percent_ofACutIsOfItsSpan) {
    fillCut(source_, 0, 9000, output_);
    EXPECT_EQ(run().percent, 22); // about 2 s of 9

    fillCut(source_, 0, 1000, output_);
    EXPECT_GE(run().percent, 96);
}

TEST_F(Run, counters_whileRunningTellTheInputAndGrow) {
    std::vector<int> indexes;
    std::vector<int> percents;
    std::vector<int> firstStates;
    fillJoin({source_, source_, source_}, folder_ / "out.mkv");
    const AtRunPoint watch(RunPoint::Packet, [&](int) {
        indexes.push_back(engine_.currentIndex);
        percents.push_back(engine_.currentPercent);
        firstStates.push_back(engine_.fileStates[0]);
    });

    run();

    EXPECT_EQ(indexes.size(), 3 * (sourceVideoPackets_ + audioPackets(source_)));
    EXPECT_TRUE(std::ranges::is_sorted(indexes));
    EXPECT_TRUE(std::ranges::is_sorted(percents));
    EXPECT_EQ(indexes.front(), 0);
    EXPECT_EQ(indexes.back(), 2);
    EXPECT_EQ(percents.front(), 0);
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        EXPECT_EQ(firstStates[i], indexes[i] == 0 ? 255 : 1) << i;
        EXPECT_LE(percents[i], 34 * (indexes[i] + 1)) << i; // each input is a third of it
    }
}

} // namespace
} // namespace velmora::test
