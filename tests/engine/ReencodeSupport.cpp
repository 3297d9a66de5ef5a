#include "ReencodeSupport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace velmora::test {
namespace {

std::string decoded(const std::string& path, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"ffmpeg", "-v", "error", "-nostdin", "-i", "file:" + path};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.emplace_back("-");
    ProgramResult result = runProgram(command);
    if (result.status != 0) {
        throw std::runtime_error(path + ": " + result.errors);
    }
    return std::move(result.output);
}

std::vector<double> pictureTimes(const std::string& path) {
    const auto frames = ffprobeJson(path, {"-select_streams", "v:0", "-show_frames",
                                           "-show_entries", "frame=best_effort_timestamp_time"})
                            .at("frames");
    std::vector<double> times;
    for (const auto& frame : frames) {
        times.push_back(
            std::stod(frame.at("best_effort_timestamp_time").template get<std::string>()));
    }
    return times;
}

} // namespace

Reencode::Reencode() {
    engine_.reencode = 1;
    engine_.videoBitRate = 400'000;
    engine_.videoWidth = 160;
    engine_.videoHeight = 120;
    engine_.videoFrameRate = 0.0;
    engine_.audioBitRate = 128'000;
    engine_.audioSampleRate = 44100;
    engine_.audioChannels = 2;
    choose(AV_CODEC_ID_H264, AV_CODEC_ID_AAC);
}

void Reencode::choose(AVCodecID video, AVCodecID audio) {
    engine_.videoCodecId = video;
    engine_.audioCodecId = audio;
}

JobResult Reencode::cut(const std::string& input, float startMs, float endMs,
                        const std::string& output) {
    fillCut(input, startMs, endMs, output);
    engine_.reencode = 1;
    return run();
}

JobResult Reencode::join(const std::vector<std::string>& inputs, const std::string& output) {
    fillJoin(inputs, output);
    engine_.reencode = 1;
    return run();
}

std::string smallSource() {
    return mediaMadeBy("-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -f lavfi -i "
                       "sine=sample_rate=44100:duration=1 -c:v mpeg4 -c:a aac -ac 2",
                       "small.mkv");
}

ReencodeEncoder::ReencodeEncoder() {
    engine_.videoWidth = 64;
    engine_.videoHeight = 48;
}

std::string ReencodeEncoder::made(const std::string& source, const std::string& extension) {
    std::string output = folder_ / ("out." + extension);
    EXPECT_EQ(cut(source, 0, 1000, output).states, std::vector{1});
    return output;
}

nlohmann::json fieldsOf(const std::string& path, const std::string& stream) {
    const auto streams =
        ffprobeJson(path, {"-show_streams", "-select_streams", stream}).at("streams");
    return streams.empty() ? nlohmann::json() : streams.at(0);
}

double endOf(const std::string& path, const std::string& stream) {
    const auto facts = ffprobeJson(
        path, {"-select_streams", stream, "-show_entries", "stream=time_base:packet=pts,duration"});
    const Fraction timeBase = fractionOf(facts.at("streams").at(0).at("time_base"));
    const auto& packets = facts.at("packets");
    const auto last = std::ranges::max_element(packets, {}, [](const nlohmann::json& packet) {
        return packet.value("pts", std::int64_t{0});
    });
    return static_cast<double>(
               (last->at("pts").get<std::int64_t>() + last->value("duration", std::int64_t{0})) *
               timeBase.num) /
           static_cast<double>(timeBase.den);
}

std::vector<double> flashesIn(const std::string& path) {
    const std::string pixels = decoded(path, {"-map", "0:v", "-vsync", "passthrough", "-vf",
                                              "scale=1:1,format=gray", "-f", "rawvideo"});
    const auto times = pictureTimes(path);
    const auto isBright = [&](std::size_t picture) {
        return static_cast<unsigned char>(pixels.at(picture)) > 128;
    };
    std::vector<double> flashes;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (isBright(i) && (i == 0 || !isBright(i - 1))) {
            flashes.push_back(times.at(i));
        }
    }
    return flashes;
}

std::vector<double> beepsIn(const std::string& path) {
    constexpr int kRate = 44100;
    constexpr float kLoud = 0.2F;
    constexpr std::size_t kQuietBefore = kRate / 20;
    // Gaps between the packets become silence, so that the place of a sample is its time.
    const std::string bytes =
        decoded(path, {"-map", "0:a", "-af", "aresample=async=1:first_pts=0", "-ac", "1", "-ar",
                       std::to_string(kRate), "-f", "f32le"});
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    std::vector<double> beeps;
    std::size_t quiet = kQuietBefore;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const bool isLoud = std::abs(samples[i]) > kLoud;
        if (isLoud && quiet >= kQuietBefore) {
            beeps.push_back(static_cast<double>(i) / kRate);
        }
        quiet = isLoud ? 0 : quiet + 1;
    }
    return beeps;
}

} // namespace velmora::test
