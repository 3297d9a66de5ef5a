#include "ConversionEngine.h"
#include "TestMedia.h"

extern "C" {
#include <libavcodec/codec_id.h>
#include <libavutil/avutil.h>
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

ConversionEngine& engine() {
    return ConversionEngine::instance();
}

int probeOf(const std::string& path) {
    engine().probePath = path;
    return engine().probe();
}

/// Values that no probe leaves by chance.
void spoilResults() {
    engine().streamCount = engine().videoStreamIndex = engine().audioStreamIndex = -77;
    engine().sourceWidth = engine().sourceHeight = -77;
    engine().sourceFrameRate = -77;
    engine().sourceFrameRateNum = engine().sourceFrameRateDen = -77;
    engine().videoCodecId = engine().videoBitRate = -77;
    engine().audioCodecId = engine().audioBitRate = -77;
    engine().audioSampleRate = engine().audioChannels = -77;
    engine().durationUs = engine().durationFloor = engine().durationSeconds = -77;
}

class Probe : public ::testing::Test {
protected:
    void SetUp() override {
        av_log_set_level(AV_LOG_QUIET);
        spoilResults();
    }
    void TearDown() override {
        engine().reset();
        av_log_set_level(AV_LOG_INFO);
    }
};

/// The last stream of the type; covers are no video.
std::optional<json> lastStream(const json& shown, const std::string& type) {
    std::optional<json> last;
    for (const json& stream : shown.at("streams")) {
        if (stream.value("codec_type", "") == type &&
            stream.at("disposition").at("attached_pic") == 0) {
            last = stream;
        }
    }
    return last;
}

int number(const json& stream, const char* key) {
    const json value = stream.value(key, json());
    if (value.is_string()) {
        return std::stoi(value.get<std::string>());
    }
    return value.is_number() ? value.get<int>() : 0;
}

std::pair<int, int> fraction(const std::string& text) {
    const auto slash = text.find('/');
    return {std::stoi(text.substr(0, slash)), std::stoi(text.substr(slash + 1))};
}

/// "4.023222" in microseconds; digit by digit, since a double may be one off.
std::int64_t microseconds(const std::string& seconds) {
    std::string digits = seconds;
    digits.erase(digits.find('.'), 1);
    return std::stoll(digits);
}

void expectFrameRate(const json& video) {
    auto [num, den] = fraction(video.at("r_frame_rate").get<std::string>());
    ASSERT_NE(den, 0);
    if (num / den > 1000) {
        den = 1001;
    }
    EXPECT_EQ(engine().sourceFrameRateNum, num);
    EXPECT_EQ(engine().sourceFrameRateDen, den);
    EXPECT_EQ(engine().sourceFrameRate, num / den);
}

void expectVideo(const std::optional<json>& video) {
    if (!video) {
        EXPECT_EQ(engine().videoStreamIndex, -1);
        EXPECT_EQ(engine().sourceWidth, 0);
        EXPECT_EQ(engine().sourceHeight, 0);
        EXPECT_EQ(engine().videoCodecId, 0);
        EXPECT_EQ(engine().videoBitRate, 0);
        EXPECT_EQ(engine().sourceFrameRate, -77); // as they were
        EXPECT_EQ(engine().sourceFrameRateNum, -77);
        EXPECT_EQ(engine().sourceFrameRateDen, -77);
        return;
    }
    EXPECT_EQ(engine().videoStreamIndex, video->at("index"));
    EXPECT_EQ(engine().sourceWidth, video->at("width"));
    EXPECT_EQ(engine().sourceHeight, video->at("height"));
    EXPECT_EQ(avcodec_get_name(static_cast<AVCodecID>(engine().videoCodecId)),
              video->at("codec_name").get<std::string>());
    EXPECT_EQ(engine().videoBitRate, number(*video, "bit_rate"));
    expectFrameRate(*video);
}

void expectAudio(const std::optional<json>& audio) {
    if (!audio) {
        EXPECT_EQ(engine().audioStreamIndex, -1);
        EXPECT_EQ(engine().audioCodecId, 0);
        EXPECT_EQ(engine().audioChannels, 0);
        EXPECT_EQ(engine().audioSampleRate, 0);
        EXPECT_EQ(engine().audioBitRate, 0);
        return;
    }
    EXPECT_EQ(engine().audioStreamIndex, audio->at("index"));
    EXPECT_EQ(avcodec_get_name(static_cast<AVCodecID>(engine().audioCodecId)),
              audio->at("codec_name").get<std::string>());
    EXPECT_EQ(engine().audioChannels, audio->at("channels"));
    EXPECT_EQ(engine().audioSampleRate, number(*audio, "sample_rate"));
    EXPECT_EQ(engine().audioBitRate, number(*audio, "bit_rate"));
}

void expectDuration(const json& format) {
    const std::int64_t expected = format.contains("duration")
                                      ? microseconds(format.at("duration").get<std::string>())
                                      : AV_NOPTS_VALUE;
    EXPECT_EQ(engine().durationUs, expected);
    EXPECT_EQ(engine().durationFloor, 0);
    EXPECT_EQ(engine().durationSeconds, expected / 1'000'000);
}

class ProbeOf : public Probe, public ::testing::WithParamInterface<std::string> {};

/// In transport streams, ffprobe looks further into the file than others unless it is told not to.
std::vector<std::string> arguments(const std::string& path) {
    std::vector<std::string> all{"-show_streams", "-show_format"};
    if (path.ends_with(".ts")) {
        all.insert(all.end(), {"-scan_all_pmts", "0"});
    }
    return all;
}

TEST_P(ProbeOf, EveryField_is_what_ffprobe_says) {
    const std::string path = mediaPath(GetParam());
    const json shown = ffprobeJson(path, arguments(path));

    ASSERT_EQ(probeOf(path), 0);

    EXPECT_EQ(engine().streamCount, shown.at("format").at("nb_streams"));
    expectVideo(lastStream(shown, "video"));
    expectAudio(lastStream(shown, "audio"));
    expectDuration(shown.at("format"));
}

INSTANTIATE_TEST_SUITE_P(Media, ProbeOf, ::testing::ValuesIn(readableMedia()),
                         [](const auto& tested) { return asTestName(tested.param); });

TEST_F(Probe, SameFileTwice_says_the_same) {
    const std::string path = mediaPath("h264-bframes.mp4");
    ASSERT_EQ(probeOf(path), 0);
    const std::int64_t durationUs = engine().durationUs;
    spoilResults();
    ASSERT_EQ(probeOf(path), 0);
    EXPECT_EQ(engine().durationUs, durationUs);
    EXPECT_EQ(engine().sourceWidth, 320);
}

TEST_F(Probe, ThirtyThousandPicturesPerSecond_are_29_with_denominator_1001) {
    ASSERT_EQ(probeOf(mediaPath("rate-30000.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
}

TEST_F(Probe, OneThousandPicturesPerSecond_stay_so) {
    ASSERT_EQ(probeOf(mediaPath("rate-1000.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 1000.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 1000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1);
}

TEST_F(Probe, NtscRates_are_whole_numbers_beside_their_fraction) {
    ASSERT_EQ(probeOf(mediaPath("h264-2997.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
    ASSERT_EQ(probeOf(mediaPath("h264-23976.mp4")), 0);
    EXPECT_EQ(engine().sourceFrameRate, 23.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 24000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
}

TEST_F(Probe, AudioOnlyFile_gives_zero_size_and_keeps_the_old_rate) {
    ASSERT_EQ(probeOf(mediaPath("h264-2997.mp4")), 0);
    ASSERT_EQ(probeOf(mediaPath("audio-only.m4a")), 0);
    EXPECT_EQ(engine().sourceWidth, 0);
    EXPECT_EQ(engine().sourceHeight, 0);
    EXPECT_EQ(engine().videoCodecId, 0);
    EXPECT_EQ(engine().videoBitRate, 0);
    EXPECT_EQ(engine().sourceFrameRate, 29.0);
    EXPECT_EQ(engine().sourceFrameRateNum, 30000);
    EXPECT_EQ(engine().sourceFrameRateDen, 1001);
    EXPECT_EQ(engine().audioCodecId, AV_CODEC_ID_AAC);
}

TEST_F(Probe, VideoOnlyFile_gives_zeros_for_the_sound) {
    ASSERT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    ASSERT_EQ(probeOf(mediaPath("video-only.mp4")), 0);
    EXPECT_EQ(engine().audioStreamIndex, -1);
    EXPECT_EQ(engine().audioCodecId, 0);
    EXPECT_EQ(engine().audioChannels, 0);
    EXPECT_EQ(engine().audioSampleRate, 0);
    EXPECT_EQ(engine().audioBitRate, 0);
    EXPECT_EQ(engine().streamCount, 1);
}

TEST_F(Probe, SeveralStreamsOfAType_last_of_each_counts) {
    ASSERT_EQ(probeOf(mediaPath("two-streams.mkv")), 0);
    EXPECT_EQ(engine().streamCount, 4);
    EXPECT_EQ(engine().videoStreamIndex, 2);
    EXPECT_EQ(engine().audioStreamIndex, 3);
    EXPECT_EQ(engine().videoCodecId, AV_CODEC_ID_MPEG4);
    EXPECT_EQ(engine().sourceWidth, 160);
    EXPECT_EQ(engine().sourceHeight, 120);
    EXPECT_EQ(engine().sourceFrameRate, 25.0);
    EXPECT_EQ(engine().audioCodecId, AV_CODEC_ID_MP3);
    EXPECT_EQ(engine().audioSampleRate, 48000);
}

TEST_F(Probe, Cover_is_no_video_but_counts_as_a_stream) {
    for (const char* name : {"cover.mp3", "cover.m4a"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().streamCount, 2) << name;
        EXPECT_EQ(engine().videoStreamIndex, -1) << name;
        EXPECT_EQ(engine().sourceWidth, 0) << name;
        EXPECT_EQ(engine().videoCodecId, 0) << name;
    }
}

TEST_F(Probe, CoverAfterTheVideo_video_counts) {
    for (const char* name : {"cover.mp4", "cover.mkv"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().streamCount, 3) << name;
        EXPECT_EQ(engine().videoStreamIndex, 0) << name;
        EXPECT_EQ(engine().sourceWidth, 320) << name;
        EXPECT_EQ(engine().sourceHeight, 180) << name;
        EXPECT_EQ(engine().videoCodecId, AV_CODEC_ID_H264) << name;
        EXPECT_EQ(engine().sourceFrameRate, 30.0) << name;
    }
}

TEST_F(Probe, UnknownDuration_gives_negative_seconds) {
    for (const char* name : {"raw.h264", "raw.m4v", "piped.mkv", "pixel.png"}) {
        ASSERT_EQ(probeOf(mediaPath(name)), 0) << name;
        EXPECT_EQ(engine().durationUs, AV_NOPTS_VALUE) << name;
        EXPECT_LT(engine().durationSeconds, 0) << name;
        EXPECT_EQ(engine().durationFloor, 0) << name;
    }
}

TEST_F(Probe, DurationWithFraction_seconds_are_truncated) {
    ASSERT_EQ(probeOf(mediaPath("mpeg4.avi")), 0);
    EXPECT_EQ(engine().durationUs, 4'048'980);
    EXPECT_EQ(engine().durationSeconds, 4);
    ASSERT_EQ(probeOf(mediaPath("rate-30000.mp4")), 0);
    EXPECT_EQ(engine().durationUs, 10'000);
    EXPECT_EQ(engine().durationSeconds, 0);
}

TEST_F(Probe, OddSize_is_told_as_it_is) {
    ASSERT_EQ(probeOf(mediaPath("odd-size.avi")), 0);
    EXPECT_EQ(engine().sourceWidth, 321);
    EXPECT_EQ(engine().sourceHeight, 241);
    ASSERT_EQ(probeOf(mediaPath("odd-size.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 175);
    EXPECT_EQ(engine().sourceHeight, 99);
}

TEST_F(Probe, RotatedPictures_size_is_that_of_the_coded_ones) {
    ASSERT_EQ(probeOf(mediaPath("tagged-rotated.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
    EXPECT_EQ(engine().sourceHeight, 180);
}

class ProbeFailure : public Probe {
protected:
    void SetUp() override {
        Probe::SetUp();
        descriptors_ = openDescriptors();
    }
    void TearDown() override {
        EXPECT_EQ(openDescriptors(), descriptors_);
        Probe::TearDown();
    }

private:
    std::size_t descriptors_ = 0;
};

void expectNoStreams() {
    EXPECT_EQ(engine().videoStreamIndex, -1);
    EXPECT_EQ(engine().audioStreamIndex, -1);
}

TEST_F(ProbeFailure, FileThatIsNoMedia_is_not_opened) {
    for (const char* name : {"text.mp4", "empty.mp4", "truncated.mp4"}) {
        EXPECT_EQ(probeOf(mediaPath(name)), -1) << name;
        expectNoStreams();
    }
}

TEST_F(ProbeFailure, MissingFile_is_not_opened) {
    const TemporaryFolder folder;
    EXPECT_EQ(probeOf(folder / "missing.mp4"), -1);
    EXPECT_EQ(probeOf(""), -1);
    EXPECT_EQ(probeOf(mediaPath("h264.mp4") + "/below"), -1);
    EXPECT_EQ(probeOf(folder / std::string(300, 'x')), -1);
    EXPECT_EQ(probeOf("https://example.invalid/a.mp4"), -1);
    expectNoStreams();
}

TEST_F(ProbeFailure, Directory_is_not_opened) {
    const TemporaryFolder folder;
    EXPECT_EQ(probeOf(folder.path()), -1);
    EXPECT_EQ(probeOf("/"), -1);
}

TEST_F(ProbeFailure, Pipe_is_not_waited_for) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(probeOf(pipe), -1);
}

TEST_F(ProbeFailure, Device_is_not_opened) {
    EXPECT_EQ(probeOf("/dev/zero"), -1);
    EXPECT_EQ(probeOf("/dev/null"), -1);
}

TEST_F(ProbeFailure, UnreadableFile_is_not_opened) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser reads every file";
    }
    const TemporaryFolder folder;
    const std::string path = copyOfMedia("h264.mp4", folder);
    fs::permissions(path, fs::perms::none);
    EXPECT_EQ(probeOf(path), -1);
}

TEST_F(ProbeFailure, PicturesThatCannotBe_give_no_stream_info) {
    EXPECT_EQ(probeOf(mediaPath("impossible-pictures.ivf")), -2);
    expectNoStreams();
}

TEST_F(ProbeFailure, VideoOfUnknownCodec_has_no_decoder) {
    EXPECT_EQ(probeOf(mediaPath("unknown-codec.avi")), -4);
    EXPECT_EQ(engine().streamCount, 2);
    EXPECT_EQ(engine().videoStreamIndex, 0);
    EXPECT_EQ(engine().audioStreamIndex, 1);
    EXPECT_EQ(probeOf(mediaPath("unknown-codec-only.avi")), -4);
    EXPECT_EQ(engine().streamCount, 1);
}

TEST_F(ProbeFailure, DamagedDecoderHeader_decoder_does_not_open) {
    EXPECT_EQ(probeOf(mediaPath("damaged-decoder-header.avi")), -5);
    EXPECT_EQ(engine().streamCount, 1);
    EXPECT_EQ(engine().videoStreamIndex, 0);
}

TEST_F(ProbeFailure, AfterAFailure_next_file_is_probed_as_ever) {
    EXPECT_EQ(probeOf(mediaPath("damaged-decoder-header.avi")), -5);
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
}

TEST_F(ProbeFailure, AllMedia_leave_no_descriptor_open) {
    for (const std::string& name : readableMedia()) {
        const std::string path = mediaPath(name);
        const std::size_t before = openDescriptors();
        EXPECT_EQ(probeOf(path), 0) << name;
        EXPECT_EQ(openDescriptors(), before) << name;
    }
}

// A name is a name, whatever characters it has.
class ProbeOfName : public Probe, public ::testing::WithParamInterface<std::string> {};

TEST_P(ProbeOfName, AnyName_is_opened) {
    const TemporaryFolder folder;
    const std::string path = folder / GetParam();
    fs::copy_file(mediaPath("h264.mp4"), path);
    EXPECT_EQ(probeOf(path), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
    EXPECT_EQ(engine().durationUs, 4'000'000);
}

INSTANTIATE_TEST_SUITE_P(Names, ProbeOfName,
                         ::testing::Values("a:b.mp4", "http:x.mp4", "pipe:1", "concat:a|b.mp4",
                                           "100%.mp4", "%d.mp4", "%03d%s%n.mp4",
                                           "it's \"quoted\".mp4", "`$(id)`.mp4", "two\nlines.mp4",
                                           "tab\there.mp4", "  spaces  .mp4", "-i.mp4", "~.mp4",
                                           "#?&;*[a].mp4", "back\\slash.mp4", "Größe é.mp4",
                                           "видео.mp4", "動画ファイル.mp4", "فيديو.mp4",
                                           "वीडियो.mp4", "🎬.mp4", "not utf-8 \xff\xfe.mp4",
                                           "no extension", "wrong.txt", "misleading.png"));

TEST_F(Probe, RelativeNameWithColon_is_a_plain_name) {
    const TemporaryFolder folder;
    fs::copy_file(mediaPath("h264.mp4"), folder / "file:x.mp4");
    fs::copy_file(mediaPath("h264.mp4"), folder / "data:x.mp4");
    const auto before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(probeOf("file:x.mp4"), 0);
    EXPECT_EQ(probeOf("data:x.mp4"), 0);
    EXPECT_EQ(probeOf("./data:x.mp4"), 0);
    fs::current_path(before);
}

TEST_F(Probe, Link_is_followed) {
    const TemporaryFolder folder;
    fs::create_symlink(mediaPath("h264.mp4"), folder / "link.mp4");
    EXPECT_EQ(probeOf(folder / "link.mp4"), 0);
}

// Cancelling a run does not reach the main thread's probe.
TEST_F(Probe, StopRequested_does_not_end_it) {
    engine().stopRequested = 1;
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().stopRequested, 1);
}

TEST_F(Probe, JobTable_is_left_alone) {
    engine().currentIndex = 3;
    engine().currentPercent = 44;
    engine().startTimes[3] = 1.25;
    engine().fileStates[3] = 9;
    engine().videoWidth = 640;
    engine().videoFrameRate = 12.0;
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().currentIndex, 3);
    EXPECT_EQ(engine().currentPercent, 44);
    EXPECT_EQ(engine().startTimes[3], 1.25);
    EXPECT_EQ(engine().fileStates[3], 9);
    EXPECT_EQ(engine().videoWidth, 640);
    EXPECT_EQ(engine().videoFrameRate, 12.0);
}

} // namespace
} // namespace velmora::test
