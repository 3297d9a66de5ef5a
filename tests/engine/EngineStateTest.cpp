#include "ConversionEngine.h"
#include "EngineLog.h"
#include "TestMedia.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
#include <libavutil/pixdesc.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

const FirstUse* const firstUse = dynamic_cast<const FirstUse*>(
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

TEST_F(Engine, FirstUse_fields_have_their_initial_values) {
    EXPECT_EQ(firstUse->seen, kFirst);
}

TEST_F(Engine, AnotherCallOfInstance_gives_the_same_engine) {
    EXPECT_EQ(&ConversionEngine::instance(), &ConversionEngine::instance());
}

TEST_F(Engine, Reset_puts_paths_indexes_and_counters_back) {
    engine().probePath = "/some/file.mp4";
    engine().videoStreamIndex = 3;
    engine().audioStreamIndex = 4;
    engine().currentIndex = 5;
    engine().currentPercent = 60;
    engine().stopRequested = 1;

    engine().reset();

    EXPECT_EQ(resetState(), kFirst);
}

TEST_F(Engine, Reset_leaves_settings_as_they_are) {
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

TEST_F(Engine, Reset_leaves_job_table_and_modes_as_they_are) {
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

TEST_F(Engine, Tables_have_room_for_999_inputs_and_1000_states) {
    EXPECT_EQ(engine().startTimes.size(), 999U);
    EXPECT_EQ(engine().endTimes.size(), 999U);
    EXPECT_EQ(engine().spans.size(), 999U);
    EXPECT_EQ(engine().fileStates.size(), 1000U);
    EXPECT_EQ(ConversionEngine::kMaxInputs, 999U);
}

TEST_F(Engine, FileStates_have_their_numbers) {
    EXPECT_EQ(ConversionEngine::Pending, 255);
    EXPECT_EQ(ConversionEngine::Done, 1);
    EXPECT_EQ(ConversionEngine::Failed, 2);
}

// Whoever looks on must never wait for a run.
TEST_F(Engine, SharedCounters_are_read_without_locks) {
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

TEST_F(Engine, Numbers_keep_what_jobs_need) {
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    for (std::int32_t ConversionEngine::*field :
         {&ConversionEngine::inputCount, &ConversionEngine::joinTotalMs,
          &ConversionEngine::videoCodecId, &ConversionEngine::audioCodecId,
          &ConversionEngine::videoBitRate, &ConversionEngine::videoWidth,
          &ConversionEngine::videoHeight, &ConversionEngine::audioBitRate,
          &ConversionEngine::audioSampleRate, &ConversionEngine::audioChannels}) {
        expectKept(engine().*field, {least, -1, 0, most});
    }
    expectKept(engine().videoFrameRate, {0.0, 23.976, 30000.0 / 1001.0});
}

TEST_F(Engine, ProbeResults_keep_what_files_tell) {
    constexpr std::int64_t tenHoursUs = 36'000'000'000;
    for (std::int64_t ConversionEngine::*field :
         {&ConversionEngine::durationUs, &ConversionEngine::durationFloor,
          &ConversionEngine::durationSeconds}) {
        expectKept(engine().*field, {std::numeric_limits<std::int64_t>::min(), tenHoursUs});
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

TEST_F(Engine, LastInput_has_entries_of_its_own_in_every_table) {
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
    engine().inputCount = count;
    engine().inputPaths = ConversionEngine::allocStringTable(count, 256);
    engine().outputPaths = ConversionEngine::allocStringTable(count, 256);
    std::ranges::fill(engine().inputPaths, input);
    std::ranges::fill(engine().outputPaths, output);
    std::ranges::fill(engine().fileStates, std::uint8_t{7});
    engine().joinMode = 1;
    engine().reencode = 0;
    engine().joinTotalMs = count;
    engine().stopRequested = 0;
}

TEST_F(Engine, JobOf999Inputs_run_reaches_them_all) {
    const TemporaryFolder folder;
    fillJob(999, folder / "missing.mp4", folder / "joined.mp4");

    engine().run();

    EXPECT_EQ(engine().currentIndex, 999);
    EXPECT_TRUE(std::all_of(engine().fileStates.begin(), engine().fileStates.end() - 1,
                            [](const auto& state) { return state == ConversionEngine::Failed; }));
    EXPECT_EQ(engine().fileStates[999], 7); // not an input's
}

TEST_F(Engine, JobOf1000Inputs_run_refuses_without_making_a_file) {
    const TemporaryFolder folder;
    fillJob(1000, mediaPath("h264.mp4"), folder / "joined.mp4");

    engine().run();

    EXPECT_EQ(engine().fileStates[0], ConversionEngine::Failed);
    EXPECT_EQ(engine().currentIndex, 1000); // so that whoever waits for the end sees it
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(Engine, JobWithoutInputs_run_ends_at_once) {
    fillJob(0, "", "");
    engine().currentIndex = -1;
    engine().currentPercent = -1;

    engine().run();

    EXPECT_EQ(engine().currentIndex, 0);
    EXPECT_EQ(engine().currentPercent, 0);
    EXPECT_EQ(engine().fileStates[0], 7);
}

TEST_F(Engine, NegativeInputCount_run_touches_nothing) {
    fillJob(0, "", "");
    engine().inputCount = -5;

    engine().run();

    EXPECT_EQ(engine().fileStates[0], 7);
}

TEST(StringTable, CountBelowOne_has_no_rows) {
    EXPECT_TRUE(ConversionEngine::allocStringTable(0, 256).empty());
    EXPECT_TRUE(ConversionEngine::allocStringTable(-1, 256).empty());
    EXPECT_TRUE(ConversionEngine::allocStringTable(std::numeric_limits<int>::min(), 256).empty());
}

TEST(StringTable, Rows_are_zeroed_and_as_large_as_asked) {
    const StringTable table = ConversionEngine::allocStringTable(3, 256);

    ASSERT_EQ(table.size(), 3U);
    for (const std::string& row : table) {
        EXPECT_EQ(row, std::string(256, '\0'));
    }
}

TEST(StringTable, RowOfNoSize_is_empty) {
    EXPECT_EQ(ConversionEngine::allocStringTable(2, 0), (StringTable{"", ""}));
    EXPECT_EQ(ConversionEngine::allocStringTable(1, -4), (StringTable{""}));
}

TEST(StringTable, Rows_do_not_share_their_bytes) {
    StringTable table = ConversionEngine::allocStringTable(2, 16);
    ConversionEngine::copyString(table[0].data(), 16, "first");

    EXPECT_STREQ(table[0].c_str(), "first");
    EXPECT_EQ(table[1], std::string(16, '\0'));
}

/// A buffer whose untouched bytes can be told.
std::string copied(int size, const char* source) {
    std::string buffer = "########";
    ConversionEngine::copyString(buffer.data(), size, source);
    return buffer;
}

using namespace std::string_literals;

TEST(CopyString, SizeZeroOrLess_nothing_is_written) {
    EXPECT_EQ(copied(0, "abc"), "########");
    EXPECT_EQ(copied(-1, "abc"), "########");
    EXPECT_EQ(copied(std::numeric_limits<int>::min(), "abc"), "########");
}

TEST(CopyString, SizeZeroOrLess_destination_may_be_null) {
    ConversionEngine::copyString(nullptr, 0, "abc");
    ConversionEngine::copyString(nullptr, -1, "abc");
}

TEST(CopyString, SizeOne_only_the_terminator_is_written) {
    EXPECT_EQ(copied(1, "abc"), "\0#######"s);
}

TEST(CopyString, LongerSource_is_cut_off_and_terminated) {
    EXPECT_EQ(copied(4, "abcdef"), "abc\0####"s);
    EXPECT_EQ(copied(4, "abcd"), "abc\0####"s);
}

TEST(CopyString, SourceThatJustFits_is_copied_whole) {
    EXPECT_EQ(copied(4, "abc"), "abc\0####"s);
}

TEST(CopyString, ShorterSource_bytes_after_the_terminator_stay) {
    EXPECT_EQ(copied(8, "ab"), "ab\0#####"s);
    EXPECT_EQ(copied(8, ""), "\0#######"s);
}

// The part that is wanted may be all there is: no byte beyond it may be read.
TEST(CopyString, UnterminatedSource_is_read_no_further_than_needed) {
    const std::array<char, 3> source{'a', 'b', 'c'};
    EXPECT_EQ(copied(4, source.data()), "abc\0####"s);
}

struct Layout {
    AVPixelFormat format;
    int width;
    int height;
};

class AllocPicture : public ::testing::TestWithParam<Layout> {};

TEST_P(AllocPicture, Planes_follow_each_other_without_padding) {
    const auto [format, width, height] = GetParam();
    const PictureHandle picture = ConversionEngine::allocPicture(format, width, height);

    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->format, format);
    EXPECT_EQ(picture->width, width);
    EXPECT_EQ(picture->height, height);
    std::array<std::uint8_t*, 4> planes{};
    std::array<int, 4> strides{};
    const int size = av_image_fill_arrays(planes.data(), strides.data(), picture->data[0], format,
                                          width, height, 1);
    ASSERT_GT(size, 0);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        EXPECT_EQ(picture->data[i], planes[i]) << "plane " << i;
        EXPECT_EQ(picture->linesize[i], strides[i]) << "plane " << i;
    }
    std::fill_n(picture->data[0], size, std::uint8_t{0x5A}); // all of it may be written
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, AllocPicture,
    ::testing::Values(Layout{AV_PIX_FMT_YUV420P, 320, 240}, Layout{AV_PIX_FMT_YUV420P, 321, 241},
                      Layout{AV_PIX_FMT_YUV411P, 720, 480}, Layout{AV_PIX_FMT_YUVJ422P, 2, 2},
                      Layout{AV_PIX_FMT_RGB24, 320, 240}, Layout{AV_PIX_FMT_BGR24, 7, 3},
                      Layout{AV_PIX_FMT_GRAY8, 1, 1}),
    [](const auto& tested) {
        const Layout& layout = tested.param;
        return asTestName(std::string(av_get_pix_fmt_name(layout.format)) + "_" +
                          std::to_string(layout.width) + "x" + std::to_string(layout.height));
    });

TEST(AllocPictureFailure, BadSize_gives_null) {
    av_log_set_level(AV_LOG_QUIET);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, 0, 240), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, 320, 0), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, -320, 240), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, 320, -240), nullptr);
    constexpr int huge = std::numeric_limits<int>::max();
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, huge, huge), nullptr);
    av_log_set_level(AV_LOG_INFO);
}

TEST(AllocPictureFailure, UnknownPixelFormat_gives_null) {
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_NONE, 320, 240), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_NB, 320, 240), nullptr);
}

} // namespace
} // namespace velmora::test
