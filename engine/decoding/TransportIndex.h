#pragma once

#include "ClockUnroller.h"
#include "InputMedia.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// Where decoding of one stream of a transport stream can begin. Such files have no index: this one
/// is made by reading them, as far as it is needed, and kept. Belongs to one thread.
class TransportIndex {
public:
    struct Place {
        std::int64_t time;     ///< of the packet there, ticks, on the one time line
        std::int64_t position; ///< bytes
        ClockUnroller clock;   ///< as it is before that packet
    };

    /// Reading ends early once `stop` is raised; null: never.
    TransportIndex(std::string path, const StopFlag* stop) : input_(std::move(path), stop) {}

    /// Of the key frames of the stream, or of its packets if `allPackets`. 0 or a negative code.
    int open(int streamIndex, bool allPackets);
    /// The last place that is not after `time`; nothing before the first one.
    std::optional<Place> placeBefore(std::int64_t time);

private:
    bool readNext();

    InputMedia input_;
    ClockUnroller clock_;
    int streamIndex_ = -1;
    bool allPackets_ = false;
    bool ended_ = false;
    std::vector<Place> places_; ///< in the order of their times
};

} // namespace velmora
