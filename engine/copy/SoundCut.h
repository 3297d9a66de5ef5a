#pragma once

#include "CopyRules.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <vector>

namespace velmora {

/// Which packets of sound belong to a window, and what of them. All times are samples since the
/// window's first picture.
class SoundCut {
public:
    static constexpr std::int64_t kToTheEnd = std::numeric_limits<std::int64_t>::max();

    struct Rule {
        std::int64_t end = kToTheEnd; ///< of the window
        SoundAbilities abilities;
        int preRoll = 0;     ///< packets that the first one heard needs before it
        bool splits = false; ///< packets may be cut between any two samples
    };
    /// What is to become of a packet.
    struct Part {
        std::size_t number = 0;    ///< of the packet, in the order in which they were added
        std::int64_t time = 0;     ///< where it is written
        std::int64_t skipped = 0;  ///< samples cut off before; 0 unless it is split
        std::int64_t duration = 0; ///< that counts
        std::int64_t left = 0;     ///< samples in it behind those
    };

    explicit SoundCut(const Rule& rule) : rule_(rule) {}

    /// Takes the next packet; the parts that are now known to be written.
    std::vector<Part> add(std::int64_t time, std::int64_t duration);
    /// Whether no packet that follows can belong to the window.
    bool hasEnded() const { return ended_; }

private:
    struct Held {
        std::size_t number;
        std::int64_t time;
        std::int64_t duration;
    };

    bool isHeard(std::int64_t time, std::int64_t duration) const;
    bool isBehind(std::int64_t time, std::int64_t duration) const;
    Part partOf(const Held& packet) const;

    const Rule rule_;
    std::deque<Held> before_; ///< packets that are not heard, as far as they may be needed
    std::size_t added_ = 0;
    bool ended_ = false;
};

} // namespace velmora
