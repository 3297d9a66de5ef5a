#pragma once

#include "AvHandles.h"

namespace velmora {

/// Completes `parameters` with what a coded picture's headers say, without decoding the picture:
/// its size, pixel format, sample aspect ratio, colour description and reorder delay. False when
/// the packet's headers do not tell; the parameters are then as they were.
bool completeFromHeaders(AVCodecParameters& parameters, const AVPacket& packet);

} // namespace velmora
