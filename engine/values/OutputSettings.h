#pragma once

#include "Saturated.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <cstdint>

namespace velmora {

/// Users and profiles count bit rates in thousands.
constexpr std::int32_t bitsPerSecond(std::int32_t kilobitsPerSecond) {
    constexpr std::int64_t kBitsPerKilobit = 1000;
    return saturated(kilobitsPerSecond * kBitsPerKilobit);
}

/// What the pictures of a re-encoded output are to be.
struct VideoSettings {
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::int64_t bitRate = 0; ///< bit/s
    int width = 0;            ///< pixels
    int height = 0;           ///< pixels
    double frameRate = 0.0;   ///< pictures per second; 0.0: as the source
};

/// What the sound of a re-encoded output is to be.
struct AudioSettings {
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::int64_t bitRate = 0; ///< bit/s
    int sampleRate = 0;       ///< Hz
    int channels = 0;
};

} // namespace velmora
