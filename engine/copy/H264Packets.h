#pragma once

#include "AvHandles.h"
#include "H264Sets.h"

namespace velmora {

/// Which units a packet keeps when it becomes one of a track whose header has all parameter sets.
enum class H264Kept {
    AllButSets,            ///< and delimiters
    AllButSetsAndSettings, ///< nor what an encoder tells of itself
};

/// Gives the packet lengths of four bytes, and leaves out what is not kept. One that needs nothing
/// of that stays as it is. 0, AVERROR_INVALIDDATA for a packet that is none, or another negative
/// libav error code.
int convertH264(AVPacket& packet, NalLengthSize lengthSize, H264Kept kept);

} // namespace velmora
