#include "ClockUnroller.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>

namespace velmora {
namespace {

constexpr std::int64_t kTicksPerSecond = 90'000;
// A sender may be silent for a while; no packet is sent before the one that comes first.
constexpr std::int64_t kMostForward = 10 * kTicksPerSecond;
constexpr std::int64_t kMostBackward = kTicksPerSecond;

bool follows(std::int64_t time, std::int64_t expected) {
    return expected == AV_NOPTS_VALUE ||
           (time - expected <= kMostForward && expected - time <= kMostBackward);
}

} // namespace

bool ClockUnroller::isNeeded(const AVFormatContext& container) {
    return av_match_name(container.iformat->name, "mpegts,mpeg") != 0;
}

ClockUnroller::Stream& ClockUnroller::streamOf(int index) {
    auto* const found =
        std::find_if(streams_.begin(), streams_.end(), [index](const Stream& known) {
            return known.index == index || known.index < 0;
        });
    Stream& stream = found != streams_.end() ? *found : streams_.back();
    stream.index = index;
    return stream;
}

/// Also a stream that was silent for long goes on where the other one is.
bool ClockUnroller::goesOn(std::int64_t time, const Stream& stream) const {
    return follows(time, stream.next) || std::ranges::any_of(streams_, [time](const Stream& other) {
               return other.next != AV_NOPTS_VALUE && follows(time, other.next);
           });
}

void ClockUnroller::apply(AVPacket& packet) {
    Stream& stream = streamOf(packet.stream_index);
    const std::int64_t told = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
    std::int64_t offset = offset_;
    if (told != AV_NOPTS_VALUE && !goesOn(told + offset_, stream)) {
        if (goesOn(told + previousOffset_, stream)) {
            offset = previousOffset_;
        } else {
            previousOffset_ = offset_;
            offset_ = stream.next - told;
            offset = offset_;
        }
    }
    if (told != AV_NOPTS_VALUE) {
        stream.next = told + offset + std::max<std::int64_t>(packet.duration, 0);
    }
    if (packet.dts != AV_NOPTS_VALUE) {
        packet.dts += offset;
    }
    if (packet.pts != AV_NOPTS_VALUE) {
        packet.pts += offset;
    }
}

} // namespace velmora
