#include "KeyPackets.h"

#include "InputMedia.h"

namespace velmora {
namespace {

// Several groups of pictures of any usual length; beyond, the stream has no key pictures.
constexpr int kMaxPacketsBeforeKey = 600;

} // namespace

PacketHandle readVideoPacket(InputMedia& input) {
    PacketHandle packet(av_packet_alloc());
    while (packet != nullptr && input.read(*packet) >= 0) {
        if (packet->stream_index == input.videoStreamIndex()) {
            return packet;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

PacketHandle readKeyPacket(InputMedia& input) {
    for (int i = 0; i < kMaxPacketsBeforeKey; ++i) {
        PacketHandle packet = readVideoPacket(input);
        if (packet == nullptr || (packet->flags & AV_PKT_FLAG_KEY) != 0) {
            return packet;
        }
    }
    return nullptr;
}

} // namespace velmora
