#pragma once

#include "SampleAspectRatio.h"

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// What a probe has found out about a file. What stays unknown on a failure is absent.
struct ProbeResults {
    enum Code : std::int32_t {
        Success = 0,
        CannotOpen = -1,
        NoStreamInfo = -2,
        NoVideoDecoder = -4,
        VideoDecoderFails = -5,
    };
    struct Streams {
        std::int32_t count = 0;
        std::int32_t videoIndex = -1; ///< -1: none
        std::int32_t audioIndex = -1; ///< -1: none
    };
    struct Video {
        std::int32_t codecId = 0;   ///< an AVCodecID
        std::int32_t width = 0;     ///< pixels
        std::int32_t height = 0;    ///< pixels
        std::int32_t bitRate = 0;   ///< bit/s
        AVRational frameRate{};     ///< pictures per second; the denominator may be 0
        SampleAspectRatio aspect;   ///< 1:1 where the file does not tell
        bool liesOnItsSide = false; ///< and is turned by a quarter before it is shown
    };
    struct Audio {
        std::int32_t codecId = 0; ///< an AVCodecID
        std::int32_t channels = 0;
        std::int32_t sampleRate = 0; ///< Hz
        std::int32_t bitRate = 0;    ///< bit/s
    };

    Code code = Success;
    std::optional<Streams> streams; ///< once stream info has been read
    std::optional<Video> video;     ///< of a success with a video stream
    Audio audio;                    ///< all 0 without an audio stream
    std::int64_t durationUs = 0;    ///< microseconds; AV_NOPTS_VALUE: unknown
};

/// Opens the file, finds its streams and opens their decoders. Blocks.
ProbeResults probe(const std::string& path);

} // namespace velmora
