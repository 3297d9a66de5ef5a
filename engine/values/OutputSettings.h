#pragma once

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <cstdint>

namespace velmora {

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
