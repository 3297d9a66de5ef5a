#include "ConversionEngine.h"
#include "EngineLog.h"
#include "Job.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <string>
#include <type_traits>

namespace velmora::test {
namespace {

// There is one engine.
static_assert(!std::is_default_constructible_v<ConversionEngine> &&
              !std::is_copy_constructible_v<ConversionEngine> &&
              !std::is_copy_assignable_v<ConversionEngine>);

ConversionEngine& engine() {
    return ConversionEngine::instance();
}

void dropLogLine(const char* /*line*/) {}

/// What `reset` is to put back.
struct ResetState {
    std::string probePath;
    std::int32_t videoStreamIndex = 0;
    std::int32_t audioStreamIndex = 0;
    std::int32_t currentIndex = 0;
    std::int32_t currentPercent = 0;
    int stopRequested = 0;

    bool operator==(const ResetState&) const = default;
};

ResetState resetState() {
    return {engine().probePath,    engine().videoStreamIndex, engine().audioStreamIndex,
            engine().currentIndex, engine().currentPercent,   engine().stopRequested};
}

const ResetState kFirst{"", -1, -1, -1, 0, 0};

/// Looks at the engine before any test has used it.
class FirstUse : public ::testing::Environment {
public:
    void SetUp() override { seen = resetState(); }
    ResetState seen;
};

const FirstUse* const kFirstUse = dynamic_cast<const FirstUse*>(
    ::testing::AddGlobalTestEnvironment(new FirstUse)); // which owns it

class Engine : public ::testing::Test {
protected:
    void TearDown() override {
        engine().inputCount = 0;
        engine().joinMode = 0;
        engine().reencode = 0;
        engine().joinTotalMs = 0;
        engine().inputPaths.clear();
        engine().outputPaths.clear();
        engine().reset();
        setLogSink(nullptr);
    }
};

TEST_F(Engine, firstUse_fieldsHaveTheirInitialValues) {
    EXPECT_EQ(kFirstUse->seen, kFirst);
}

TEST_F(Engine, anotherCallOfInstance_givesTheSameEngine) {
    EXPECT_EQ(&ConversionEngine::instance(), &ConversionEngine::instance());
}

TEST_F(Engine, reset_putsPathsIndexesAndCountersBack) {
    engine().probePath = "/some/file.mp4";
    engine().videoStreamIndex = 3;
    engine().audioStreamIndex = 4;
    engine().currentIndex = 5;
    engine().currentPercent = 60;
    engine().stopRequested = 1;

    engine().reset();

    EXPECT_EQ(resetState(), kFirst);
}

TEST_F(Engine, reset_leavesSettingsAsTheyAre) {
    engine().videoCodecId = 1;
    engine().audioCodecId = 2;
    engine().videoBitRate = 3;
    engine().videoWidth = 4;
    engine().videoHeight = 5;
    engine().videoFrameRate = 29.97;
    engine().audioBitRate = 6;
    engine().audioSampleRate = 7;
    engine().audioChannels = 8;

    engine().reset();

    EXPECT_EQ(engine().videoCodecId, 1);
    EXPECT_EQ(engine().audioCodecId, 2);
    EXPECT_EQ(engine().videoBitRate, 3);
    EXPECT_EQ(engine().videoWidth, 4);
    EXPECT_EQ(engine().videoHeight, 5);
    EXPECT_EQ(engine().videoFrameRate, 29.97);
    EXPECT_EQ(engine().audioBitRate, 6);
    EXPECT_EQ(engine().audioSampleRate, 7);
    EXPECT_EQ(engine().audioChannels, 8);
}

TEST_F(Engine, reset_leavesJobTableAndModesAsTheyAre) {
    engine().inputCount = 2;
    engine().jobCount = 3;
    engine().inputPaths = {"a", "b"};
    engine().outputPaths = {"c", "c"};
    engine().startTimes[1] = 1.5;
    engine().endTimes[1] = 2.5;
    engine().spans[1] = 1.0;
    engine().fileStates[1] = ConversionEngine::Failed;
    engine().joinTotalMs = 77;
    engine().joinMode = 1;
    engine().reencode = 1;
    engine().videoCodecChosen = 1;

    engine().reset();

    EXPECT_EQ(engine().inputCount, 2);
    EXPECT_EQ(engine().jobCount, 3);
    EXPECT_EQ(engine().inputPaths, (StringTable{"a", "b"}));
    EXPECT_EQ(engine().outputPaths, (StringTable{"c", "c"}));
    EXPECT_EQ(engine().startTimes[1], 1.5);
    EXPECT_EQ(engine().endTimes[1], 2.5);
    EXPECT_EQ(engine().spans[1], 1.0);
    EXPECT_EQ(engine().fileStates[1], ConversionEngine::Failed);
    EXPECT_EQ(engine().joinTotalMs, 77);
    EXPECT_EQ(engine().joinMode, 1);
    EXPECT_EQ(engine().reencode, 1);
    EXPECT_EQ(engine().videoCodecChosen, 1);
}

TEST_F(Engine, tables_haveRoomFor999InputsAnd1000States) {
    EXPECT_EQ(engine().startTimes.size(), 999U);
    EXPECT_EQ(engine().endTimes.size(), 999U);
    EXPECT_EQ(engine().spans.size(), 999U);
    EXPECT_EQ(engine().fileStates.size(), 1000U);
    EXPECT_EQ(ConversionEngine::kMaxInputs, 999U);
}

TEST_F(Engine, fileStates_haveTheirNumbers) {
    EXPECT_EQ(ConversionEngine::Pending, 255);
    EXPECT_EQ(ConversionEngine::Done, 1);
    EXPECT_EQ(ConversionEngine::Failed, 2);
}

// Whoever looks on must never wait for a run.
TEST_F(Engine, sharedCounters_areReadWithoutLocks) {
    EXPECT_TRUE(engine().currentIndex.is_lock_free());
    EXPECT_TRUE(engine().currentPercent.is_lock_free());
    EXPECT_TRUE(engine().jobCount.is_lock_free());
    EXPECT_TRUE(engine().stopRequested.is_lock_free());
    EXPECT_TRUE(engine().fileStates[0].is_lock_free());
}

/// Whether the field keeps each of the values.
template <typename Field, typename Value>
void expectKept(Field& field, std::initializer_list<Value> values) {
    const auto before = field;
    for (const Value value : values) {
        field = static_cast<Field>(value);
        EXPECT_EQ(static_cast<Value>(field), value);
    }
    field = before;
}

TEST_F(Engine, numbers_keepWhatJobsNeed) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (std::int32_t ConversionEngine::*field :
         {&ConversionEngine::inputCount, &ConversionEngine::joinTotalMs,
          &ConversionEngine::videoCodecId, &ConversionEngine::audioCodecId,
          &ConversionEngine::videoBitRate, &ConversionEngine::videoWidth,
          &ConversionEngine::videoHeight, &ConversionEngine::audioBitRate,
          &ConversionEngine::audioSampleRate, &ConversionEngine::audioChannels}) {
        expectKept(engine().*field, {kLeast, -1, 0, kMost});
    }
    expectKept(engine().videoFrameRate, {0.0, 23.976, 30000.0 / 1001.0});
}

TEST_F(Engine, probeResults_keepWhatFilesTell) {
    constexpr std::int64_t kTenHoursUs = 36'000'000'000;
    for (std::int64_t ConversionEngine::*field :
         {&ConversionEngine::durationUs, &ConversionEngine::durationFloor,
          &ConversionEngine::durationSeconds}) {
        expectKept(engine().*field, {std::numeric_limits<std::int64_t>::min(), kTenHoursUs});
    }
    for (std::int32_t ConversionEngine::*field :
         {&ConversionEngine::streamCount, &ConversionEngine::videoStreamIndex,
          &ConversionEngine::audioStreamIndex, &ConversionEngine::sourceWidth,
          &ConversionEngine::sourceHeight, &ConversionEngine::sourceFrameRateNum,
          &ConversionEngine::sourceFrameRateDen}) {
        expectKept(engine().*field, {-1, 0, 1'000'000'000});
    }
    expectKept(engine().sourceFrameRate, {59.94});
}

TEST_F(Engine, lastInput_hasEntriesOfItsOwnInEveryTable) {
    engine().startTimes[998] = 1.0;
    engine().endTimes[0] = 2.0;
    engine().endTimes[998] = 3.0;
    engine().spans[0] = 4.0;
    engine().spans[998] = 5.0;
    engine().fileStates[999] = 6;

    EXPECT_EQ(engine().startTimes[998], 1.0);
    EXPECT_EQ(engine().endTimes[0], 2.0);
    EXPECT_EQ(engine().endTimes[998], 3.0);
    EXPECT_EQ(engine().spans[0], 4.0);
    EXPECT_EQ(engine().spans[998], 5.0);
    EXPECT_EQ(engine().fileStates[999], 6);
}

void fillJob(int count, const std::string& input, const std::string& output) {
    setLogSink(dropLogLine);
    Job job;
    job.joins = true;
    for (int i = 0; i < count; ++i) {
        job.add(input, output, 0.0, 0.001);
    }
    load(engine(), job);
    std::ranges::fill(engine().fileStates, std::uint8_t{7});
}

TEST_F(Engine, jobOf999Inputs_runReachesThemAll) {
    const TemporaryFolder folder;
    fillJob(999, folder / "missing.mp4", folder / "joined.mp4");

    engine().run();

    EXPECT_EQ(engine().currentIndex, 999);
    EXPECT_TRUE(std::all_of(engine().fileStates.begin(), engine().fileStates.end() - 1,
                            [](const auto& state) { return state == ConversionEngine::Failed; }));
    EXPECT_EQ(engine().fileStates[999], 7); // not an input's
}

TEST_F(Engine, jobOf1000Inputs_runRefusesWithoutMakingAFile) {
    const TemporaryFolder folder;
    fillJob(1000, mediaPath("h264.mp4"), folder / "joined.mp4");

    engine().run();

    EXPECT_EQ(engine().fileStates[0], ConversionEngine::Failed);
    EXPECT_EQ(engine().currentIndex, 1000); // so that whoever waits for the end sees it
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(Engine, jobWithoutInputs_runEndsAtOnce) {
    fillJob(0, "", "");
    engine().currentIndex = -1;
    engine().currentPercent = -1;

    engine().run();

    EXPECT_EQ(engine().currentIndex, 0);
    EXPECT_EQ(engine().currentPercent, 0);
    EXPECT_EQ(engine().fileStates[0], 7);
}

TEST_F(Engine, negativeInputCount_runTouchesNothing) {
    fillJob(0, "", "");
    engine().inputCount = -5;

    engine().run();

    EXPECT_EQ(engine().fileStates[0], 7);
}

} // namespace
} // namespace velmora::test
