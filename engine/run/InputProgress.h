#pragma once

#include "PacketHandler.h"
#include "RunProgress.h"

#include <cstddef>

namespace velmora {

/// Tells how far the work on one input is, and whether it has failed.
class InputProgress {
public:
    /// `spanSeconds` is what the percentage is of: the length of a cut, or of a whole join, which
    /// is told with each packet.
    InputProgress(RunProgress& run, std::size_t index, double spanSeconds, bool joins)
        : run_(run), index_(index), spanSeconds_(spanSeconds), joins_(joins) {}

    /// A packet is about to be handled; `seconds` of the output have been written.
    void packetIsDue(double seconds);
    /// Anything but a success makes the input a failed one.
    void note(PacketOutcome outcome);
    void fail();
    /// Unless it has failed.
    void complete();

private:
    RunProgress& run_;
    const std::size_t index_;
    const double spanSeconds_;
    const bool joins_;
    bool failed_ = false;
};

} // namespace velmora
