#pragma once

#include "AvHandles.h"

#include <array>
#include <cstdint>
#include <vector>

namespace velmora {

/// Makes one time line of a transport stream whose clock jumps, as it does where recordings were
/// put together or a sender started anew. All of its streams go by one clock: where a packet of one
/// of them follows neither the one before nor the other stream, the clock has jumped, and what
/// comes next goes on from there. Around the jump the packets of the other stream may still have
/// the old clock.
///
/// Has to see all packets of both streams, in the file's order. It can be copied, and so go on from
/// a place where it was.
class ClockUnroller {
public:
    /// Whether the clock of such files may jump.
    static bool isNeeded(const AVFormatContext& container);

    /// Puts the packet's times on the one time line.
    void apply(AVPacket& packet);
    bool hasJumped() const { return offset_ != 0; }

private:
    struct Stream {
        int index = -1;
        std::int64_t next = AV_NOPTS_VALUE; ///< where its next packet is expected, unrolled
    };

    Stream& streamOf(int index);
    bool goesOn(std::int64_t time, const Stream& stream) const;

    std::array<Stream, 2> streams_;
    std::int64_t offset_ = 0;         ///< ticks, as all that follows
    std::int64_t previousOffset_ = 0; ///< before the last jump
};

} // namespace velmora
