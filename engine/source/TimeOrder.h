#pragma once

#include "InputMedia.h"

#include <array>
#include <cstdint>
#include <deque>

namespace velmora {

/// Gives out the packets of an input's two streams in the order of their decoding times, pictures
/// before sound of the same time. Files hold them in larger blocks: read as they lie there, the
/// sound would run ahead of its pictures by as much. The packets of one stream stay in order.
class TimeOrder {
public:
    /// `input` outlives this object. With `isOrdered` false the packets come as they are read.
    TimeOrder(InputMedia& input, bool isOrdered);

    /// Null at the end of the input, or on failure.
    PacketHandle next();

private:
    struct Held {
        PacketHandle packet;
        std::int64_t timeUs;
    };
    struct Stream {
        int index; ///< -1: the input has none
        AVRational timeBase;
        std::deque<Held> held;
        std::int64_t lastUs; ///< of the packet read last

        std::int64_t spanUs() const;
    };

    PacketHandle read();
    bool isWaiting() const;
    void hold(PacketHandle packet);
    PacketHandle popFirst();

    InputMedia& input_;
    const bool isOrdered_;
    std::array<Stream, 2> streams_; ///< pictures, sound
    std::int64_t heldBytes_ = 0;
    bool ended_ = false;
};

} // namespace velmora
