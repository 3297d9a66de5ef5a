#pragma once

#include "AvHandles.h"

namespace velmora {

/// What became of a packet, and so what the run does next.
enum class PacketOutcome {
    Done,        ///< go on
    FailedGoOn,  ///< the input has failed, but is read to its end
    FailedEnd,   ///< the input has failed and is read no further
    EndUnmarked, ///< the input is read no further, but has not failed for that
};

/// What happens to the packets of one stream of one input on their way to the output.
class PacketHandler {
public:
    PacketHandler() = default;
    PacketHandler(const PacketHandler&) = delete;
    PacketHandler& operator=(const PacketHandler&) = delete;
    virtual ~PacketHandler() = default;

    virtual PacketOutcome handle(PacketHandle packet) = 0;
    /// No packet of this input follows: writes what is held back.
    virtual PacketOutcome finish() = 0;
};

} // namespace velmora
