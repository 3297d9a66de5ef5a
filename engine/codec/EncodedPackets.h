#pragma once

#include "AvHandles.h"

#include <vector>

namespace velmora {

/// Gives the encoder a frame, or with null its end, and appends the packets that have come of it,
/// in their order. 0 or a negative libav error code.
int appendEncoded(AVCodecContext& encoder, const AVFrame* frame,
                  std::vector<PacketHandle>& packets);

} // namespace velmora
