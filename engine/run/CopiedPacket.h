#pragma once

extern "C" {
#include <libavcodec/packet.h>
}

namespace velmora {

/// Leaves of a packet what a copy carries: data, size and flags.
inline void stripToContent(AVPacket& packet) {
    av_packet_free_side_data(&packet);
    packet.pos = -1;
}

} // namespace velmora
