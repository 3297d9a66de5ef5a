#include "KeyFrameReading.h"

#include "DecodedStream.h"
#include "TimeBases.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <functional>
#include <limits>
#include <optional>
#include <utility>

namespace velmora {
namespace {

using Ticks = std::vector<std::int64_t>;

bool isCalled(const InputMedia& input, const char* format) {
    return av_match_name(format, input.container()->iformat->name) != 0;
}

/// Of the stream's packets up to the one that is decoded at `end` or later; a packet without any
/// time follows the one before it.
Ticks readUntil(DecodedStream& pictures, std::int64_t end) {
    Ticks times;
    const std::int64_t step = ticksPerPicture(pictures.stream());
    std::int64_t expected = 0;
    while (const PacketHandle packet = pictures.readPacket()) {
        const std::int64_t time = packet->pts != AV_NOPTS_VALUE   ? packet->pts
                                  : packet->dts != AV_NOPTS_VALUE ? packet->dts
                                                                  : expected;
        if (time >= end) {
            break;
        }
        expected = time + step;
        if ((packet->flags & AV_PKT_FLAG_KEY) != 0 && packet->size > 0) {
            times.push_back(time);
        }
    }
    return times;
}

Ticks indexed(AVStream& stream) {
    Ticks times;
    const int count = avformat_index_get_entries_count(&stream);
    for (int i = 0; i < count; ++i) {
        const AVIndexEntry& entry = *avformat_index_get_entry(&stream, i);
        if ((entry.flags & AVINDEX_KEYFRAME) != 0) {
            times.push_back(entry.timestamp);
        }
    }
    return times;
}

/// Nothing if there is no index in the file, or one that leaves out key frames, as those do that
/// name one place every few seconds: then some are left out in the middle, too.
std::optional<Ticks> readIndex(DecodedStream& pictures) {
    constexpr std::size_t kTried = 2;
    if (pictures.seek(0) < 0) { // Matroska's is read when it is first needed
        return std::nullopt;
    }
    Ticks named = indexed(*pictures.input().videoStream());
    if (named.size() <= kTried) {
        return std::nullopt;
    }
    const auto middle = named.begin() + static_cast<std::ptrdiff_t>((named.size() - kTried) / 2);
    if (pictures.seek(*middle) < 0) {
        return std::nullopt;
    }
    const Ticks there = readUntil(pictures, middle[kTried]);
    const bool namesAll = std::equal(there.begin(), there.end(), middle, middle + kTried);
    return namesAll ? std::optional(std::move(named)) : std::nullopt;
}

/// By how much the key frame that is decoded at `decoded` is shown later. It is looked for as if
/// that were `guess`; nothing where that finds another one.
std::optional<std::int64_t> delayOf(DecodedStream& pictures, std::int64_t decoded,
                                    std::int64_t guess) {
    const bool found = pictures.seek(decoded + guess) >= 0;
    const PacketHandle packet = found ? pictures.readPacket() : nullptr;
    const bool isIt = packet != nullptr && packet->dts == decoded;
    return isIt ? std::optional(packet->pts - decoded) : std::nullopt;
}

/// Of those at every `step`-th of these times of decoding, for all up to the next; fewer than there
/// are where one is not found.
Ticks readDelays(DecodedStream& pictures, const Ticks& decoded, std::size_t step,
                 std::int64_t guess) {
    Ticks delays;
    for (std::size_t i = 0; i < decoded.size(); i += step) {
        const auto delay = delayOf(pictures, decoded[i], guess);
        if (!delay) {
            break;
        }
        delays.resize(std::min(i + step, decoded.size()), *delay);
    }
    return delays;
}

/// The index of mov has the times of decoding; by how much key frames are shown later, only their
/// packets tell. Where some of them are shown as late as the first one, as in closed groups, all
/// are; else each is read, which takes longer. Nothing where one is not found, or where the file is
/// in fragments and has no index of them all.
std::optional<Ticks> readDecodingIndex(DecodedStream& pictures) {
    constexpr std::size_t kTried = 16;
    const PacketHandle first = pictures.rewind() >= 0 ? pictures.readPacket() : nullptr;
    if (pictures.stream().nb_frames <= 0 || first == nullptr || first->pts == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    Ticks times = indexed(*pictures.input().videoStream());
    const std::int64_t guess = first->pts - first->dts;
    Ticks delays = readDelays(pictures, times, 1 + times.size() / kTried, guess);
    if (std::ranges::any_of(delays, [guess](std::int64_t delay) { return delay != guess; })) {
        delays = readDelays(pictures, times, 1, guess);
    }
    if (delays.size() < times.size()) {
        return std::nullopt;
    }
    std::ranges::transform(times, delays, times.begin(), std::plus<>());
    return times;
}

Ticks readTimes(DecodedStream& pictures) {
    std::optional<Ticks> times;
    if (isCalled(pictures.input(), "mov")) {
        times = readDecodingIndex(pictures);
    } else if (isCalled(pictures.input(), "matroska") || isCalled(pictures.input(), "avi")) {
        times = readIndex(pictures);
    }
    if (!times && pictures.rewind() >= 0) {
        times = readUntil(pictures, std::numeric_limits<std::int64_t>::max());
    }
    return std::move(times).value_or(Ticks());
}

} // namespace

KeyFrames readKeyFrames(const std::string& path, const StopFlag* stop) {
    DecodedStream pictures(path, DecodedStream::Kind::Pictures, stop);
    if (pictures.open() < 0) {
        return {};
    }
    KeyFrames positions;
    for (const std::int64_t time : readTimes(pictures)) {
        positions.push_back(av_rescale_q(time, pictures.stream().time_base, kMicrosecond) -
                            pictures.input().startUs());
    }
    if (isRaised(stop)) {
        return {};
    }
    std::ranges::sort(positions);
    const auto repeated = std::ranges::unique(positions);
    positions.erase(repeated.begin(), repeated.end());
    return positions;
}

} // namespace velmora
