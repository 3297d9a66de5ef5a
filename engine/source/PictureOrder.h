#pragma once

#include "AvHandles.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <queue>
#include <vector>

namespace velmora {

/// Finds the place of each coded picture of one input in display order. Packets come and go in
/// coding order; one is held until its place is certain, which needs as many later packets as a
/// codec may put between a picture's coding and its display.
class PictureOrder {
public:
    struct Placed {
        PacketHandle packet;
        std::int64_t place = 0; ///< 0 for the input's first picture shown
    };

    /// Takes the packet with its source timestamps.
    void add(PacketHandle packet);

    bool hasNext() const { return !held_.empty() && held_.front().place.has_value(); }
    /// The next packet in coding order, once its place is known.
    std::optional<Placed> next();

    /// By how many pictures coding runs ahead of display in the packets that are held.
    int delay() const;

    /// No packet follows: all that are held get their places.
    void finish();

private:
    struct Waiting {
        std::int64_t pts;
        std::uint64_t number; ///< in coding order, from 0
        bool operator>(const Waiting& other) const {
            return pts != other.pts ? pts > other.pts : number > other.number;
        }
    };
    struct Held {
        PacketHandle packet;
        std::optional<std::int64_t> place;
    };

    std::int64_t displayTime(const AVPacket& packet);
    void placeEarliest();

    std::deque<Held> held_;
    std::uint64_t firstHeld_ = 0; ///< the number of held_.front()
    std::uint64_t added_ = 0;
    std::int64_t placed_ = 0;
    std::int64_t lastKeyTime_ = AV_NOPTS_VALUE;
    std::int64_t lastTime_ = 0;
    std::priority_queue<Waiting, std::vector<Waiting>, std::greater<>> waiting_;
};

} // namespace velmora
