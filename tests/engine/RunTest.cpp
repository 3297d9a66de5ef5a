// A job as a whole: its table, its count of inputs, its stop.

#include "CopySupport.h"
#include "RunSupport.h"

#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Run, emptyJob_endsAtOnce) {
    engine_.inputCount = 0;
    engine_.outputPaths = {output_};
    engine_.currentIndex = 7;
    engine_.currentPercent = 55;
    engine_.fileStates[0] = 9;

    const JobResult result = run();

    EXPECT_EQ(result.index, 0);
    EXPECT_EQ(result.percent, 0);
    EXPECT_EQ(engine_.fileStates[0], 9);
    EXPECT_FALSE(fs::exists(output_));
}

TEST_F(Run, negativeCount_isAnEmptyJob) {
    engine_.inputCount = -1;
    engine_.fileStates[0] = 9;

    EXPECT_EQ(run().index, 0);
    EXPECT_EQ(engine_.fileStates[0], 9);
}

TEST_F(Run, stopBeforeStart_leavesAllInputsPendingAndWritesNothing) {
    writeFile(output_, "earlier");
    fillJoin({source_, source_}, output_);
    engine_.fileStates[0] = 1;
    engine_.fileStates[1] = 2;
    engine_.fileStates[2] = 9;
    engine_.currentPercent = 55;
    engine_.stopRequested = 1;

    const JobResult result = run();

    EXPECT_EQ(result.states, (std::vector{255, 255}));
    EXPECT_EQ(engine_.fileStates[2], 9); // not of the job
    EXPECT_EQ(result.index, 0);
    EXPECT_EQ(result.percent, 0);
    EXPECT_EQ(fs::file_size(output_), 7U);
}

TEST_F(Run, completeJob_countsToTheNumberOfInputs) {
    const JobResult result = join({source_, source_, source_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 1, 1}));
    EXPECT_EQ(result.index, 3);
    EXPECT_EQ(videoPackets(output_), 3 * sourceVideoPackets_);
    EXPECT_EQ(decode(output_).complaints, "");
}

TEST_F(Run, afterRun_ofAnyOutcomeTheNextIsAsTheFirst) {
    const std::string first = folder_ / "first.mp4";
    const std::string later = folder_ / "later.mp4";
    join({source_, source_}, first);

    join({missing_, source_}, output_);
    EXPECT_EQ(join({source_, source_}, later).states, (std::vector{1, 1}));
    EXPECT_EQ(readFile(later), readFile(first));

    fillJoin({source_, source_}, output_);
    engine_.stopRequested = 1;
    run();
    EXPECT_EQ(join({source_, source_}, later).states, (std::vector{1, 1}));
    EXPECT_EQ(readFile(later), readFile(first));

    join({mediaPath("audio-only.m4a"), source_}, output_);
    EXPECT_EQ(join({source_, source_}, later).states, (std::vector{1, 1}));
    EXPECT_EQ(readFile(later), readFile(first));
}

TEST_F(Run, largestJob_isCarriedOut) {
    const std::string one = mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=25:duration=0.08"
                                        " -c:v mpeg4",
                                        "one.avi");
    fillPaths(std::vector(ConversionEngine::kMaxInputs, one), output_);
    engine_.joinMode = 1;
    engine_.joinTotalMs = 79;

    const JobResult result = run();

    EXPECT_EQ(result.states, std::vector(ConversionEngine::kMaxInputs, 1));
    EXPECT_EQ(result.index, 999);
    EXPECT_EQ(videoPackets(output_), 2 * ConversionEngine::kMaxInputs);
}

TEST_F(Run, largerJob_isRefusedWithoutAFileTouched) {
    for (const int count : {1000, 1001, std::numeric_limits<std::int32_t>::max()}) {
        fillPaths({source_}, output_);
        engine_.joinMode = 1;
        engine_.inputCount = count;

        engine_.run();

        EXPECT_EQ(engine_.fileStates[0], 2) << count;
        EXPECT_EQ(engine_.fileStates[999], 2) << count;
        EXPECT_FALSE(fs::exists(output_)) << count;
    }
}

TEST_F(Run, missingInputRows_failTheirInputs) {
    fillPaths({source_, source_, source_}, output_);
    engine_.joinMode = 1;
    engine_.inputPaths.resize(1);

    EXPECT_EQ(run().states, (std::vector{1, 2, 2}));
    EXPECT_EQ(videoPackets(output_), sourceVideoPackets_);
}

TEST_F(Run, missingOutputRows_failTheJob) {
    fillPaths({source_, source_}, output_);
    engine_.joinMode = 1;
    engine_.outputPaths.clear();

    EXPECT_EQ(run().states, (std::vector{2, 2}));
}

TEST_F(Run, rows_areReadUpToTheirFirstZero) {
    fillPaths({source_}, output_);
    engine_.joinMode = 1;
    engine_.inputPaths[0].append(1, '\0').append("rest");
    engine_.outputPaths[0].append(100, '\0');

    EXPECT_EQ(run().states, std::vector{1});
    EXPECT_TRUE(fs::exists(output_));
}

} // namespace
} // namespace velmora::test
