#include "KeyPackets.h"

#include "InputMedia.h"

namespace velmora {
namespace {

// Several groups of pictures of any usual length; beyond, the stream has no key pictures.
constexpr int kMaxPacketsBeforeKey = 600;

} // namespace

PacketHandle readKeyPacket(InputMedia& input) {
    for (int i = 0; i < kMaxPacketsBeforeKey; ++i) {
        PacketHandle packet = input.readVideoPacket();
        if (packet == nullptr || (packet->flags & AV_PKT_FLAG_KEY) != 0) {
            return packet;
        }
    }
    return nullptr;
}

} // namespace velmora
