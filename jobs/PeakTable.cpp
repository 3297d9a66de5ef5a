#include "PeakTable.h"

#include <algorithm>
#include <utility>

namespace velmora {

void PeakTable::put(std::int64_t block, std::vector<SoundPeak> peaks) {
    peaks.resize(kPeaksPerBlock);
    blocks_[block] = std::move(peaks);
}

void PeakTable::endAt(std::int64_t block) {
    end_ = std::min(end_, block);
}

bool PeakTable::isKnown(std::int64_t block) const {
    return block >= end_ || blocks_.contains(block);
}

std::optional<SoundPeak> PeakTable::extremes(std::int64_t first, std::int64_t end) const {
    std::optional<SoundPeak> found;
    const std::int64_t firstBlock = first / kPeaksPerBlock;
    for (auto at = blocks_.lower_bound(firstBlock);
         at != blocks_.end() && at->first * kPeaksPerBlock < end; ++at) {
        const std::int64_t begin = at->first * kPeaksPerBlock;
        const auto from = static_cast<std::size_t>(std::max<std::int64_t>(first - begin, 0));
        const auto to =
            static_cast<std::size_t>(std::min<std::int64_t>(end - begin, kPeaksPerBlock));
        found = found.value_or(SoundPeak());
        for (std::size_t i = from; i < to; ++i) {
            found->low = std::min(found->low, at->second[i].low);
            found->high = std::max(found->high, at->second[i].high);
        }
    }
    return found || !isKnown(firstBlock) ? found : std::optional(SoundPeak());
}

} // namespace velmora
