#pragma once

#include "OutputMedia.h"
#include "StopFlag.h"
#include "VideoEncoder.h"

#include <cstdint>
#include <deque>

namespace velmora {

/// How the pictures of an output follow each other.
struct PicturePace {
    AVRational timeBase{1, 1}; ///< of the times that pictures are written with
    /// How long each lasts, seconds, where the container or the user asks for a constant rate; 0/1
    /// where each lasts until the next one.
    AVRational constant{0, 1};

    bool isConstant() const { return constant.num > 0; }
    AVRational encoderTimeBase() const { return isConstant() ? constant : timeBase; }
};

/// Encodes and writes the pictures of an output from the job's first input to its last, each on
/// screen until the next one. At a constant rate it is the picture on screen at each tick that is
/// written, as often as there are ticks. Belongs to one thread.
class PictureWriter {
public:
    /// The encoder has been opened with the pace's encoderTimeBase(); both outlive this object.
    /// Once `stop` is raised no picture is repeated any more.
    PictureWriter(OutputMedia& output, OutputStream& stream, VideoEncoder& encoder,
                  const PicturePace& pace, const StopFlag& stop)
        : output_(output), stream_(stream), encoder_(encoder), pace_(pace), stop_(stop) {}

    /// `time` is in the pace's time base and after that of the picture before. 0 or a negative
    /// code.
    int write(FrameHandle picture, std::int64_t time);
    /// The last picture is shown until `time`. 0 or a negative code.
    int endAt(std::int64_t time);
    /// Writes what the encoder still holds. 0 or a negative code.
    int finish();

    /// Packets that have been written.
    std::int64_t count() const { return count_; }

private:
    struct Sent {
        std::int64_t time;
        std::int64_t duration;
    };

    int encodeHeld(std::int64_t until);
    int encode(AVFrame& picture, Sent sent);
    int write(std::vector<PacketHandle>& packets);

    OutputMedia& output_;
    OutputStream& stream_;
    VideoEncoder& encoder_;
    const PicturePace pace_;
    const StopFlag& stop_;
    FrameHandle held_;
    std::int64_t heldSince_ = 0;
    std::int64_t nextTick_ = 0; ///< at a constant rate
    std::deque<Sent> sent_;     ///< to the encoder, and not come back
    std::int64_t count_ = 0;
};

} // namespace velmora
