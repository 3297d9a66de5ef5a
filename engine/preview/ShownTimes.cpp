#include "ShownTimes.h"

#include "DecodedStream.h"
#include "TimeBases.h"

#include <algorithm>

namespace velmora {
namespace {

constexpr std::size_t kMostTimes = 5'000;
// So many packets may be read that are shown later than those of interest before none follows.
constexpr int kReordered = 32;

std::int64_t shownUs(const DecodedStream& pictures, const AVPacket& packet) {
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    return time == AV_NOPTS_VALUE ? AV_NOPTS_VALUE
                                  : av_rescale_q(time, pictures.stream().time_base, kMicrosecond) -
                                        pictures.input().startUs();
}

} // namespace

std::vector<std::int64_t> readShownTimes(const std::string& path, std::int64_t beginUs,
                                         std::int64_t endUs, const StopFlag* stop) {
    DecodedStream pictures(path, DecodedStream::Kind::Pictures, stop);
    std::vector<std::int64_t> times;
    if (pictures.open() < 0 || pictures.beginBefore(pictures.input().startUs() + beginUs) < 0) {
        return times;
    }
    for (int after = 0; after < kReordered && times.size() < kMostTimes;) {
        const PacketHandle packet = pictures.readPacket();
        if (packet == nullptr || isRaised(stop)) {
            break;
        }
        const std::int64_t us = shownUs(pictures, *packet);
        after = us > endUs ? after + 1 : 0;
        if (us >= beginUs && us <= endUs) {
            times.push_back(us);
        }
    }
    std::ranges::sort(times);
    times.erase(std::ranges::unique(times).begin(), times.end());
    return isRaised(stop) ? std::vector<std::int64_t>() : times;
}

} // namespace velmora
