// All that a probe tells, of all media, against what ffprobe tells.

#include "ProbeSupport.h"
#include "TestMedia.h"

extern "C" {
#include <libavcodec/codec_id.h>
#include <libavutil/avutil.h>
}

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

using nlohmann::json;

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

/// In transport streams, ffprobe looks further into the file than others unless it is told not to.
std::vector<std::string> arguments(const std::string& path) {
    std::vector<std::string> all{"-show_streams", "-show_format"};
    if (path.ends_with(".ts")) {
        all.insert(all.end(), {"-scan_all_pmts", "0"});
    }
    return all;
}

class ProbeOf : public Probe, public ::testing::WithParamInterface<std::string> {
protected:
    static void expectVideo(const std::optional<json>& video);
    static void expectAudio(const std::optional<json>& audio);
    static void expectDuration(const json& format);

private:
    static void expectFrameRate(const json& video);
};

void ProbeOf::expectFrameRate(const json& video) {
    auto [num, den] = fraction(video.at("r_frame_rate").get<std::string>());
    ASSERT_NE(den, 0);
    if (num / den > 1000) {
        den = 1001;
    }
    EXPECT_EQ(engine().sourceFrameRateNum, num);
    EXPECT_EQ(engine().sourceFrameRateDen, den);
    EXPECT_EQ(engine().sourceFrameRate, num / den);
}

void ProbeOf::expectVideo(const std::optional<json>& video) {
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

void ProbeOf::expectAudio(const std::optional<json>& audio) {
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

void ProbeOf::expectDuration(const json& format) {
    const std::int64_t expected = format.contains("duration")
                                      ? microseconds(format.at("duration").get<std::string>())
                                      : AV_NOPTS_VALUE;
    EXPECT_EQ(engine().durationUs, expected);
    EXPECT_EQ(engine().durationFloor, 0);
    EXPECT_EQ(engine().durationSeconds, expected / 1'000'000);
}

TEST_P(ProbeOf, everyField_isWhatFfprobeSays) {
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

} // namespace
} // namespace velmora::test
