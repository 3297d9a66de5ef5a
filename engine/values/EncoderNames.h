#pragma once

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace velmora {

/// An encoder as profiles and the command line name it.
struct NamedEncoder {
    std::string_view name;
    AVCodecID codec;
};

inline constexpr std::array kVideoEncoders = {
    NamedEncoder{"MPEG4", AV_CODEC_ID_MPEG4}, NamedEncoder{"H264", AV_CODEC_ID_H264},
    NamedEncoder{"WMV2", AV_CODEC_ID_WMV2}, NamedEncoder{"FLV", AV_CODEC_ID_FLV1}};
inline constexpr std::array kAudioEncoders = {
    NamedEncoder{"MP3", AV_CODEC_ID_MP3}, NamedEncoder{"WMA8", AV_CODEC_ID_WMAV2},
    NamedEncoder{"AAC", AV_CODEC_ID_AAC}, NamedEncoder{"VORBIS", AV_CODEC_ID_VORBIS}};

/// The codec of the encoder with exactly this name; nothing for a name that is none.
template <std::size_t count>
std::optional<AVCodecID> codecNamed(const std::array<NamedEncoder, count>& encoders,
                                    std::string_view name) {
    const auto* const found = std::ranges::find(encoders, name, &NamedEncoder::name);
    return found != encoders.end() ? std::optional(found->codec) : std::nullopt;
}

} // namespace velmora
