#pragma once

#include "AvHandles.h"
#include "OutputSettings.h"

#include <vector>

namespace velmora {

/// Encodes the pictures of an output, from the job's first input to its last. There are no
/// B-frames, and groups have 12 pictures. Nothing of a source's extradata, block or frame sizes
/// gets here.
///
/// Opened with a frame duration, it counts its pictures: one picture in, at most one packet out.
/// What the encoder still holds at the end is never written. H.264 is encoded in four slices, which
/// hold back one picture. Opened with a timing, pictures keep the times that they are given, and
/// the encoder is drained; H.264 uses all cores, each for a picture.
///
/// `open` and `encode` may be called from different threads, one after another.
class VideoEncoder {
public:
    /// `source` tells the colour description of the pictures. 0 or a negative libav error code.
    int open(const VideoSettings& settings, AVRational frameDuration, const AVOutputFormat& format,
             const AVCodecParameters& source);

    /// How pictures with times of their own are counted.
    struct Timing {
        AVRational timeBase;  ///< of the pictures and the packets
        AVRational frameRate; ///< about how many there are in a second
    };
    int open(const VideoSettings& settings, const Timing& timing, const AVOutputFormat& format,
             const AVCodecParameters& source);

    /// Puts what the muxer has to know into `parameters`. 0 or a negative libav error code.
    int describe(AVCodecParameters& parameters) const;

    /// Does not change once opened: may be read on any thread.
    const AVCodecContext& context() const { return *encoder_; }

    /// Takes a picture of the encoder's size and format. Null when the encoder keeps it for now or
    /// cannot encode it.
    PacketHandle encode(AVFrame& frame);
    /// Takes a picture at its own time, which is after that of the one before; null drains the
    /// encoder. Appends the packets that have come of it, in their order. 0 or a negative code.
    int encodeAt(const AVFrame* frame, std::vector<PacketHandle>& packets);

private:
    int open(const VideoSettings& settings, const Timing& timing, int threadType,
             const AVOutputFormat& format, const AVCodecParameters& source);
    void configure(const VideoSettings& settings, const Timing& timing, int threadType,
                   const AVCodecParameters& source);

    CodecContextHandle encoder_;
    std::int64_t encoded_ = 0; ///< pictures given to the encoder
};

} // namespace velmora
