#include "DirectStart.h"

#include "InputMedia.h"
#include "KeyPackets.h"
#include "Saturated.h"
#include "TimeBases.h"

#include <algorithm>

namespace velmora {
namespace {

constexpr double kMicroseconds = 1'000'000.0;

/// From the container's start, microseconds; nothing when the packet does not tell, or tells what
/// cannot be.
std::optional<std::int64_t> positionOf(const InputMedia& input, const AVPacket& packet) {
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (time == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    const std::int64_t us =
        av_rescale_q(time, input.videoStream()->time_base, kMicrosecond) - input.startUs();
    const std::int64_t lengthUs = input.container()->duration;
    const bool canBe = lengthUs <= 0 || (us >= -lengthUs && us <= lengthUs);
    return canBe ? std::optional(us) : std::nullopt;
}

/// It lasts as long as was marked, from its first packet on; nothing is seen of it before the
/// first key packet.
std::optional<DirectStretch> stretchFromHere(InputMedia& input, double lengthSeconds) {
    const PacketHandle first = input.readVideoPacket();
    const auto begin = first != nullptr ? positionOf(input, *first) : std::nullopt;
    if (!begin) {
        return std::nullopt;
    }
    const std::int64_t sum = *begin + truncatedTo64Bits(lengthSeconds * kMicroseconds);
    const std::int64_t lengthUs = input.container()->duration;
    DirectStretch stretch{.beginUs = *begin, .endUs = lengthUs > 0 ? std::min(sum, lengthUs) : sum};
    if ((first->flags & AV_PKT_FLAG_KEY) == 0) {
        const PacketHandle key = readKeyPacket(input);
        const auto seen = key != nullptr ? positionOf(input, *key) : std::nullopt;
        stretch.beginUs = seen && *seen < stretch.endUs ? *seen : *begin;
    }
    return stretch;
}

} // namespace

std::optional<DirectStretch> directStretch(const std::string& path, double startSeconds,
                                           double endSeconds, const StopFlag* stop) {
    const double length = endSeconds - startSeconds;
    InputMedia input(path, stop);
    if (!(length > 0) || input.open() < 0 || input.readStreamInfo() < 0 ||
        input.videoStream() == nullptr) {
        return std::nullopt;
    }
    double place = startSeconds;
    if (startSeconds > 0) {
        input.seek(place); // when that fails, a cut also begins where reading does
    }
    const auto stretch = stretchFromHere(input, length);
    return isRaised(stop) ? std::nullopt : stretch;
}

} // namespace velmora
