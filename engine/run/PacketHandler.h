#pragma once

#include "AvHandles.h"

namespace velmora {

/// What became of a packet, and so what the run does next; from the best to the worst.
enum class PacketOutcome {
    Done,       ///< go on
    FailedGoOn, ///< the input has failed, but is read to its end
    FailedEnd,  ///< the input has failed and is read no further
};
static_assert(PacketOutcome::Done < PacketOutcome::FailedGoOn &&
              PacketOutcome::FailedGoOn < PacketOutcome::FailedEnd);

/// What two actions on one packet come to. They take place one after the other before: in a call
/// with both as arguments, the order of the two would be the compiler's choice.
constexpr PacketOutcome worse(PacketOutcome a, PacketOutcome b) {
    return a < b ? b : a;
}

/// What happens to the packets of one stream of one input on their way to the output.
class PacketHandler {
public:
    PacketHandler() = default;
    PacketHandler(const PacketHandler&) = delete;
    PacketHandler& operator=(const PacketHandler&) = delete;
    virtual ~PacketHandler() = default;

    /// Takes the next packet and may begin with what needs nothing of the output. Several packets
    /// may be prepared before the first of them is handled.
    virtual void prepare(PacketHandle packet) = 0;
    /// Carries out what is to be done with the packet that was prepared first. Packets that are
    /// never handled leave no trace in the output.
    virtual PacketOutcome handle() = 0;
    /// No packet of this input follows: writes what is held back.
    virtual PacketOutcome finish() = 0;
};

} // namespace velmora
