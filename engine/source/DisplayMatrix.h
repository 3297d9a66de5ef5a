#pragma once

#include "AvHandles.h"

namespace velmora {

/// How the pictures of a stream are turned before they are shown.
struct DisplayTurn {
    bool swapsSides = false;  ///< rows become columns
    bool flipsAcross = false; ///< then left becomes right
    bool flipsDown = false;   ///< and top becomes bottom

    bool isMirrored() const { return swapsSides != (flipsAcross != flipsDown); }
    /// Clockwise, of what is left when a mirrored picture has been put right, left to right.
    int quarterTurns() const;
    bool operator==(const DisplayTurn&) const = default;
};

/// By the stream's display matrix, to the next quarter of a turn.
DisplayTurn displayTurnOf(const AVStream& stream);

} // namespace velmora
