#include "ReencodeSettings.h"

#include "ParseNumber.h"

#include <array>
#include <utility>

namespace {

constexpr int kBitsPerKilobit = 1000;

using NamedCodec = std::pair<std::string_view, int>;

constexpr std::array kVideoCodecs = {
    NamedCodec{"MPEG4", AV_CODEC_ID_MPEG4}, NamedCodec{"H264", AV_CODEC_ID_H264},
    NamedCodec{"WMV2", AV_CODEC_ID_WMV2}, NamedCodec{"FLV", AV_CODEC_ID_FLV1}};
constexpr std::array kAudioCodecs = {
    NamedCodec{"MP3", AV_CODEC_ID_MP3}, NamedCodec{"WMA8", AV_CODEC_ID_WMAV2},
    NamedCodec{"AAC", AV_CODEC_ID_AAC}, NamedCodec{"VORBIS", AV_CODEC_ID_VORBIS}};

template <typename Codecs> bool find(const Codecs& codecs, std::string_view name, int& id) {
    for (const auto& [codecName, codecId] : codecs) {
        if (codecName == name) {
            id = codecId;
            return true;
        }
    }
    return false;
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
        return find(kVideoCodecs, value, videoCodec_);
    }
    if (key == "acodec") {
        return find(kAudioCodecs, value, audioCodec_);
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

void ReencodeSettings::store(velmora::ConversionEngine& engine) const {
    engine.videoCodecId = videoCodec_;
    engine.videoCodecChosen = 1;
    engine.videoBitRate = videoKilobits_ * kBitsPerKilobit;
    engine.videoWidth = width_;
    engine.videoHeight = height_;
    engine.videoFrameRate = frameRate_;
    engine.audioCodecId = audioCodec_;
    engine.audioBitRate = audioKilobits_ * kBitsPerKilobit;
    engine.audioSampleRate = sampleRate_;
    engine.audioChannels = channels_;
}
