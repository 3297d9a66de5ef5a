#pragma once

#include "AvHandles.h"
#include "OutputSettings.h"

namespace velmora {

/// Encodes the pictures of an output, from the job's first input to its last: one picture in, at
/// most one packet out. Pictures of any size and format are brought to the output's. What the
/// encoder still holds at the end is never written.
///
/// `open` and `encode` may be called from different threads, one after another.
class VideoEncoder {
public:
    /// `source` tells the colour description of the pictures. 0 or a negative libav error code.
    int open(const VideoSettings& settings, AVRational frameDuration, const AVOutputFormat& format,
             const AVCodecParameters& source);

    /// Puts what the muxer has to know into `parameters`. 0 or a negative libav error code.
    int describe(AVCodecParameters& parameters) const;

    /// Null when the encoder keeps the picture for now or cannot encode it.
    PacketHandle encode(const AVFrame& picture);

private:
    void configure(const VideoSettings& settings, AVRational frameDuration,
                   const AVCodecParameters& source);
    FrameHandle fitted(const AVFrame& picture);
    FrameHandle scaled(const AVFrame& picture);
    bool prepareScaled();
    bool prepareScaler(const AVFrame& picture);

    CodecContextHandle encoder_;
    ScalerHandle scaler_;
    FrameHandle scaled_; ///< reused for every picture
    bool scalesFullRange_ = false;
    std::int64_t encoded_ = 0; ///< pictures given to the encoder
};

} // namespace velmora
