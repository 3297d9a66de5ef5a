#include "TimeOrder.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <limits>
#include <utility>

namespace velmora {
namespace {

// A stream that has nothing for as long as this, or as much of the other one, is not waited for.
constexpr std::int64_t kLongestWaitUs = 3'000'000;
constexpr std::int64_t kMostHeldBytes = 32 << 20;

int indexOf(const AVStream* stream) {
    return stream != nullptr ? stream->index : -1;
}

AVRational timeBaseOf(const AVStream* stream) {
    return stream != nullptr ? stream->time_base : AVRational{0, 1};
}

constexpr std::int64_t kBeforeAll = std::numeric_limits<std::int64_t>::min();

} // namespace

TimeOrder::TimeOrder(InputMedia& input, bool isOrdered)
    : input_(input),
      isOrdered_(isOrdered && input.videoStream() != nullptr && input.audioStream() != nullptr),
      streams_{
          Stream{indexOf(input.videoStream()), timeBaseOf(input.videoStream()), {}, kBeforeAll},
          Stream{indexOf(input.audioStream()), timeBaseOf(input.audioStream()), {}, kBeforeAll}} {}

std::int64_t TimeOrder::Stream::spanUs() const {
    // Times from a file may be anything.
    return held.empty() || held.front().timeUs == kBeforeAll
               ? 0
               : av_sat_sub64(held.back().timeUs, held.front().timeUs);
}

PacketHandle TimeOrder::next() {
    if (!isOrdered_) {
        return read();
    }
    while (!ended_ && isWaiting()) {
        PacketHandle packet = read();
        ended_ = packet == nullptr;
        if (!ended_) {
            hold(std::move(packet));
        }
    }
    return popFirst();
}

PacketHandle TimeOrder::read() {
    PacketHandle packet(av_packet_alloc());
    return packet != nullptr && input_.read(*packet) >= 0 ? std::move(packet) : nullptr;
}

/// Whether a packet that is still to be read may come before those held.
bool TimeOrder::isWaiting() const {
    const auto isEmpty = [](const Stream& stream) { return stream.held.empty(); };
    const auto isLong = [](const Stream& stream) { return stream.spanUs() > kLongestWaitUs; };
    return heldBytes_ < kMostHeldBytes && std::ranges::any_of(streams_, isEmpty) &&
           std::ranges::none_of(streams_, isLong);
}

void TimeOrder::hold(PacketHandle packet) {
    auto* const stream = std::ranges::find(streams_, packet->stream_index, &Stream::index);
    if (stream == streams_.end()) {
        return;
    }
    const std::int64_t time = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
    if (time != AV_NOPTS_VALUE) {
        stream->lastUs = av_rescale_q(time, stream->timeBase, av_get_time_base_q());
    }
    heldBytes_ += packet->size;
    stream->held.push_back({std::move(packet), stream->lastUs});
}

PacketHandle TimeOrder::popFirst() {
    Stream* first = nullptr;
    for (Stream& stream : streams_) {
        if (!stream.held.empty() &&
            (first == nullptr || stream.held.front().timeUs < first->held.front().timeUs)) {
            first = &stream;
        }
    }
    if (first == nullptr) {
        return nullptr;
    }
    PacketHandle packet = std::move(first->held.front().packet);
    first->held.pop_front();
    heldBytes_ -= packet->size;
    return packet;
}

} // namespace velmora
