#include "ReencodeSettings.h"

#include "EncoderNames.h"
#include "ParseNumber.h"

#include <array>
#include <utility>

namespace {

template <typename Encoders>
bool find(const Encoders& encoders, std::string_view name, AVCodecID& codec) {
    const auto found = velmora::codecNamed(encoders, name);
    codec = found.value_or(codec);
    return found.has_value();
}

template <typename Number> bool read(std::string_view text, Number& number) {
    const auto parsed = parseNumber<Number>(text);
    number = parsed.value_or(number);
    return parsed.has_value();
}

} // namespace

bool ReencodeSettings::set(std::string_view setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const std::string_view key = setting.substr(0, equals);
    const std::string_view value = setting.substr(equals + 1);
    if (key == "vcodec") {
        return find(velmora::kVideoEncoders, value, videoCodec_);
    }
    if (key == "acodec") {
        return find(velmora::kAudioEncoders, value, audioCodec_);
    }
    if (key == "size") {
        return setSize(value);
    }
    if (key == "fps") {
        return read(value, frameRate_);
    }
    const std::array<std::pair<std::string_view, int*>, 4> numbers = {{
        {"vbitrate", &videoKilobits_},
        {"abitrate", &audioKilobits_},
        {"rate", &sampleRate_},
        {"channels", &channels_},
    }};
    for (const auto& [name, number] : numbers) {
        if (name == key) {
            return read(value, *number);
        }
    }
    return false;
}

bool ReencodeSettings::setSize(std::string_view value) {
    const std::size_t cross = value.find('x');
    return cross != std::string_view::npos && read(value.substr(0, cross), width_) &&
           read(value.substr(cross + 1), height_);
}

void ReencodeSettings::store(velmora::Job& job) const {
    job.reencodes = true;
    job.videoCodecChosen = true;
    job.video = {.codec = videoCodec_,
                 .bitRate = velmora::bitsPerSecond(videoKilobits_),
                 .width = width_,
                 .height = height_,
                 .frameRate = frameRate_};
    job.audio = {.codec = audioCodec_,
                 .bitRate = velmora::bitsPerSecond(audioKilobits_),
                 .sampleRate = sampleRate_,
                 .channels = channels_};
}
