// How a job is put together and gets into the engine.

#include "JobSupport.h"
#include "Saturated.h"

#include <cmath>
#include <limits>

namespace velmora::test {
namespace {

constexpr auto kMost = std::numeric_limits<std::int32_t>::max();

class JobLoad : public JobTest {
protected:
    ~JobLoad() override {
        engine_.videoCodecChosen = 0;
        engine_.reencode = 0;
        engine_.joinMode = 0;
    }

    static Job reencodingCut() {
        Job job;
        job.add("a", "out", 1.5, 4.0);
        job.add("b", "out", 0.25, 0.5);
        job.video = {.codec = AV_CODEC_ID_H264,
                     .bitRate = 1000,
                     .width = 64,
                     .height = 48,
                     .frameRate = 12.5};
        job.audio = {.codec = AV_CODEC_ID_AAC, .bitRate = 2000, .sampleRate = 8000, .channels = 1};
        job.videoCodecChosen = true;
        job.reencodes = true;
        return job;
    }
};

TEST_F(JobLoad, tables_settingsAndModesAreThoseOfTheJob) {
    load(engine_, reencodingCut());

    EXPECT_EQ(engine_.inputCount, 2);
    EXPECT_EQ(engine_.jobCount, 2);
    EXPECT_EQ(engine_.inputPaths, (StringTable{"a", "b"}));
    EXPECT_EQ(engine_.outputPaths, (StringTable{"out", "out"}));
    EXPECT_EQ(engine_.startTimes[0], 1.5);
    EXPECT_EQ(engine_.endTimes[0], 4.0);
    EXPECT_EQ(engine_.spans[0], 2.5);
    EXPECT_EQ(engine_.startTimes[1], 0.25);
    EXPECT_EQ(engine_.spans[1], 0.25);
    EXPECT_EQ(engine_.joinTotalMs, 0);
    EXPECT_EQ(engine_.videoCodecId, AV_CODEC_ID_H264);
    EXPECT_EQ(engine_.videoBitRate, 1000);
    EXPECT_EQ(engine_.videoWidth, 64);
    EXPECT_EQ(engine_.videoHeight, 48);
    EXPECT_EQ(engine_.videoFrameRate, 12.5);
    EXPECT_EQ(engine_.audioCodecId, AV_CODEC_ID_AAC);
    EXPECT_EQ(engine_.audioBitRate, 2000);
    EXPECT_EQ(engine_.audioSampleRate, 8000);
    EXPECT_EQ(engine_.audioChannels, 1);
    EXPECT_EQ(engine_.videoCodecChosen, 1);
    EXPECT_EQ(engine_.reencode, 1);
    EXPECT_EQ(engine_.joinMode, 0);
}

TEST_F(JobLoad, counters_areThoseBeforeARun) {
    engine_.currentIndex = 5;
    engine_.currentPercent = 77;
    engine_.stopRequested = 1;

    load(engine_, reencodingCut());

    EXPECT_EQ(engine_.currentIndex, -1);
    EXPECT_EQ(engine_.currentPercent, 0);
    EXPECT_EQ(engine_.stopRequested, 0);
}

TEST_F(JobLoad, join_hasItsLengthInWholeSecondsAndLeavesTheSpans) {
    engine_.spans[0] = 7.0;
    Job job;
    job.joins = true;
    job.add("a", "out", 0.0, 0.0107);
    job.add("b", "out", 0.0, 0.0206);

    load(engine_, job);

    EXPECT_EQ(engine_.joinTotalMs, 30);
    EXPECT_EQ(engine_.endTimes[1], 0.0206);
    EXPECT_EQ(engine_.spans[0], 7.0);
    EXPECT_EQ(engine_.joinMode, 1);
    EXPECT_EQ(job.spanOf(1), 30.0);
}

TEST_F(JobLoad, join_ofImpossibleLengthsStaysWithin32Bits) {
    Job job;
    job.joins = true;
    job.add("a", "out", 0.0, std::numeric_limits<double>::infinity());
    EXPECT_EQ(job.joinSeconds, kMost);
    job.add("a", "out", 0.0, std::nan(""));
    EXPECT_EQ(job.joinSeconds, 0);
}

TEST_F(JobLoad, what_isLoadedIsWhatARunGets) {
    const Job given = reencodingCut();
    load(engine_, given);

    const Job taken(engine_);

    EXPECT_EQ(taken.inputCount, given.inputCount);
    EXPECT_EQ(taken.inputPaths, given.inputPaths);
    EXPECT_EQ(taken.outputPaths, given.outputPaths);
    EXPECT_EQ(taken.startSeconds, given.startSeconds);
    EXPECT_EQ(taken.endSeconds, given.endSeconds);
    EXPECT_EQ(taken.spanOf(1), given.spanOf(1));
    EXPECT_EQ(taken.video.codec, given.video.codec);
    EXPECT_EQ(taken.video.frameRate, given.video.frameRate);
    EXPECT_EQ(taken.audio.codec, given.audio.codec);
    EXPECT_EQ(taken.videoCodecChosen, given.videoCodecChosen);
    EXPECT_EQ(taken.joins, given.joins);
    EXPECT_EQ(taken.reencodes, given.reencodes);
}

TEST_F(JobLoad, without_inputsLeavesTheSettings) {
    load(engine_, reencodingCut());

    load(engine_, Job());

    EXPECT_EQ(engine_.inputCount, 0);
    EXPECT_TRUE(engine_.inputPaths.empty());
    EXPECT_EQ(engine_.videoBitRate, 1000);
    EXPECT_EQ(engine_.audioCodecId, AV_CODEC_ID_AAC);
    EXPECT_EQ(engine_.videoCodecChosen, 0);
}

TEST_F(JobLoad, larger_thanTheTablesFillsThemAndTellsItsSize) {
    Job job;
    for (int i = 0; i < 1001; ++i) {
        job.add("a", "out", i, i);
    }
    engine_.fileStates[0] = 7; // next in memory to the tables

    load(engine_, job);

    EXPECT_EQ(engine_.inputCount, 1001);
    EXPECT_EQ(engine_.startTimes[998], 998.0);
    EXPECT_EQ(engine_.fileStates[0], 7);
}

TEST(Saturated, numbers_of64BitsGiveTheNearestOf32) {
    EXPECT_EQ(saturated(INT64_C(-5)), -5);
    EXPECT_EQ(saturated(INT64_C(1) << 40), kMost);
    EXPECT_EQ(saturated(-(INT64_C(1) << 40)), std::numeric_limits<std::int32_t>::min());
}

TEST(Saturated, fractions_areCutOffTowardsZero) {
    EXPECT_EQ(truncated(2.9), 2);
    EXPECT_EQ(truncated(-2.9), -2);
    EXPECT_EQ(truncatedTo64Bits(-5e12 - 0.5), INT64_C(-5'000'000'000'000));
}

TEST(Saturated, what_doesNotFitGivesTheNearestAndNoNumber0) {
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(truncated(infinite), kMost);
    EXPECT_EQ(truncated(-infinite), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(truncated(std::nan("")), 0);
    EXPECT_EQ(truncatedTo64Bits(infinite), INT64_C(9'200'000'000'000'000'000));
    EXPECT_EQ(truncatedTo64Bits(-infinite), INT64_C(-9'200'000'000'000'000'000));
    EXPECT_EQ(truncatedTo64Bits(std::nan("")), 0);
}

TEST(Saturated, bitRate_beyond32BitsIsTheLargest) {
    EXPECT_EQ(bitsPerSecond(128), 128'000);
    EXPECT_EQ(bitsPerSecond(4'000'000), kMost);
    EXPECT_EQ(bitsPerSecond(-4'000'000), std::numeric_limits<std::int32_t>::min());
}

} // namespace
} // namespace velmora::test
