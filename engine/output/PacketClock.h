#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>

namespace velmora {

/// Numbers the packets of one output stream: each starts where the one before it ended, counted in
/// whole units (a video frame, an audio sample) and rounded to the stream's time base once, from
/// the count, so that no error adds up.
class PacketClock {
public:
    PacketClock() = default;
    /// `timeBase`: the stream's, as the muxer chose it; `unit`: seconds per frame or sample. A
    /// clock whose rationals are not positive stands at 0.
    PacketClock(AVRational timeBase, AVRational unit);

    /// The start of unit number `units`, in ticks of the time base; units may be negative.
    std::int64_t ticksAt(std::int64_t units) const;

    /// How many units have been written, and where that is.
    std::int64_t units() const { return units_; }
    std::int64_t ticks() const { return ticksAt(units_); }
    double seconds() const { return secondsAt(units_); }
    double secondsAt(std::int64_t units) const;
    AVRational timeBase() const { return timeBase_; }

    void advance(std::int64_t units) { units_ += units; }
    /// Goes on from `ticks`, where a packet was written that was not numbered here.
    void continueFrom(std::int64_t ticks) { offset_ += ticks - this->ticks(); }

private:
    AVRational timeBase_{0, 1};
    std::int64_t ticksPerUnitNum_ = 0;
    std::int64_t ticksPerUnitDen_ = 1;
    std::int64_t units_ = 0;
    std::int64_t offset_ = 0; ///< ticks
};

} // namespace velmora
