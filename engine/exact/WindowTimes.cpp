#include "WindowTimes.h"

#include "TimeBases.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>

namespace velmora {
namespace {

constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kHalfMsUs = 500; // times are shown and typed in whole milliseconds

/// Milliseconds from where the container begins, on its time line.
std::int64_t onTimeLine(std::int64_t ms, const InputMedia& media) {
    constexpr std::int64_t kMost = INT64_MAX / 4 / kUsPerMs;
    return std::clamp(ms, -kMost, kMost) * kUsPerMs + media.startUs();
}

} // namespace

WindowTimes timesOf(const Window& window, const InputMedia& source) {
    const std::int64_t lengthUs = source.container()->duration;
    const std::int64_t endUs = onTimeLine(window.endMs, source);
    const bool toTheEnd = lengthUs > 0 && endUs - source.startUs() >= lengthUs - kUsPerMs;
    return {.startUs = onTimeLine(window.startMs, source) - kHalfMsUs,
            .endUs = toTheEnd ? std::nullopt : std::optional(endUs)};
}

bool WindowTimes::isBeforeEnd(std::int64_t time, AVRational timeBase) const {
    return !endUs || av_compare_ts(time, timeBase, *endUs - kHalfMsUs, kMicrosecond) < 0;
}

std::optional<std::int64_t> WindowTimes::endTicks(AVRational timeBase) const {
    return endUs ? std::optional(
                       av_rescale_q_rnd(*endUs - kHalfMsUs, kMicrosecond, timeBase, AV_ROUND_UP))
                 : std::nullopt;
}

std::int64_t WindowTimes::startTicks(AVRational timeBase) const {
    return av_rescale_q_rnd(startUs, kMicrosecond, timeBase, AV_ROUND_UP);
}

} // namespace velmora
