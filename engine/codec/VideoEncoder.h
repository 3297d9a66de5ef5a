#pragma once

#include "AvHandles.h"
#include "OutputSettings.h"

namespace velmora {

/// Encodes the pictures of an output, from the job's first input to its last: one picture in, at
/// most one packet out. What the encoder still holds at the end is never written. There are no
/// B-frames, and groups have 12 pictures; H.264 is encoded in four slices, which hold back one
/// picture. Nothing of a source's extradata, block or frame sizes gets here.
///
/// `open` and `encode` may be called from different threads, one after another.
class VideoEncoder {
public:
    /// `source` tells the colour description of the pictures. 0 or a negative libav error code.
    int open(const VideoSettings& settings, AVRational frameDuration, const AVOutputFormat& format,
             const AVCodecParameters& source);

    /// Puts what the muxer has to know into `parameters`. 0 or a negative libav error code.
    int describe(AVCodecParameters& parameters) const;

    /// Does not change once opened: may be read on any thread.
    const AVCodecContext& context() const { return *encoder_; }

    /// Takes a picture of the encoder's size and format. Null when the encoder keeps it for now or
    /// cannot encode it.
    PacketHandle encode(AVFrame& frame);

private:
    void configure(const VideoSettings& settings, AVRational frameDuration,
                   const AVCodecParameters& source);

    CodecContextHandle encoder_;
    std::int64_t encoded_ = 0; ///< pictures given to the encoder
};

} // namespace velmora
