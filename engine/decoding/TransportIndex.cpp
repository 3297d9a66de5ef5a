#include "TransportIndex.h"

#include <algorithm>

namespace velmora {
namespace {

constexpr std::int64_t kTicksBetweenPlaces = 22'500; // a quarter of a second

} // namespace

int TransportIndex::open(int streamIndex, bool allPackets) {
    streamIndex_ = streamIndex;
    allPackets_ = allPackets;
    const int result = input_.open();
    return result < 0 ? result : input_.readStreamInfo();
}

std::optional<TransportIndex::Place> TransportIndex::placeBefore(std::int64_t time) {
    while (!ended_ && (places_.empty() || places_.back().time <= time)) {
        ended_ = !readNext();
    }
    const auto after = std::ranges::upper_bound(places_, time, {}, &Place::time);
    return after != places_.begin() ? std::optional(*(after - 1)) : std::nullopt;
}

bool TransportIndex::readNext() {
    const PacketHandle packet(av_packet_alloc());
    if (packet == nullptr || input_.read(*packet) < 0) {
        return false;
    }
    const ClockUnroller before = clock_;
    clock_.apply(*packet);
    const bool isPlace = packet->stream_index == streamIndex_ && packet->pos >= 0 &&
                         packet->pts != AV_NOPTS_VALUE &&
                         (allPackets_ || (packet->flags & AV_PKT_FLAG_KEY) != 0);
    if (isPlace && (places_.empty() ||
                    packet->pts >= places_.back().time + (allPackets_ ? kTicksBetweenPlaces : 1))) {
        places_.push_back({packet->pts, packet->pos, before});
    }
    return true;
}

} // namespace velmora
