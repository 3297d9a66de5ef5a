#include "PeakPlan.h"

#include <algorithm>

namespace velmora {
namespace {

constexpr std::int64_t kMostBlocks = 6;

using IsMissing = std::function<bool(std::int64_t block)>;

/// The first missing one at `from` or further by `step`, before `end`.
std::optional<std::int64_t> firstMissing(std::int64_t from, std::int64_t end, std::int64_t step,
                                         const IsMissing& isMissing) {
    for (std::int64_t block = from; block * step < end * step; block += step) {
        if (isMissing(block)) {
            return block;
        }
    }
    return std::nullopt;
}

/// The missing ones that follow each other from `block` on by `step`.
PeakBlocks stretchFrom(std::int64_t block, std::int64_t end, std::int64_t step,
                       const IsMissing& isMissing) {
    std::int64_t count = 1;
    while (count < kMostBlocks && (block + count * step) * step < end * step &&
           isMissing(block + count * step)) {
        ++count;
    }
    return {step > 0 ? block : block - count + 1, count};
}

} // namespace

std::optional<PeakBlocks> nextToRead(PeakBlocks all, PeakBlocks visible,
                                     const IsMissing& isMissing) {
    const std::int64_t first = std::clamp(visible.first, all.first, all.end());
    const std::int64_t end = std::clamp(visible.end(), first, all.end());
    const auto right = firstMissing(first, all.end(), 1, isMissing);
    const auto left = firstMissing(first - 1, all.first - 1, -1, isMissing);
    if (right && (*right < end || !left || *right - end <= first - 1 - *left)) {
        return stretchFrom(*right, *right < end ? end : all.end(), 1, isMissing);
    }
    return left ? std::optional(stretchFrom(*left, all.first - 1, -1, isMissing)) : std::nullopt;
}

} // namespace velmora
