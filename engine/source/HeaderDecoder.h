#pragma once

#include "AvHandles.h"

#include <optional>

namespace velmora {

/// Completes `parameters` with what a coded picture's headers say, without decoding the picture:
/// its size, pixel format, sample aspect ratio, colour description and reorder delay. Gives the
/// pictures per second that they tell, 0/1 when they tell nothing of that. Nothing when the headers
/// do not tell all the rest; the parameters are then as they were.
std::optional<AVRational> completeFromHeaders(AVCodecParameters& parameters,
                                              const AVPacket& packet);

} // namespace velmora
