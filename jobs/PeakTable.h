#pragma once

#include "SoundPeaks.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <vector>

namespace velmora {

/// The peaks of one file's sound, as far as they are known. Places are blocks or peaks from the
/// container's start. Takes room only for what is known, whatever length a file claims.
class PeakTable {
public:
    void put(std::int64_t block, std::vector<SoundPeak> peaks);
    /// There is no sound from this block on, but for what is put there.
    void endAt(std::int64_t block);

    /// Whether the block's peaks are known, or that it has none.
    bool isKnown(std::int64_t block) const;
    /// The lowest and the highest of the peaks from `first` up to `end`; nothing when none of them
    /// is known.
    std::optional<SoundPeak> extremes(std::int64_t first, std::int64_t end) const;
    /// Whether there may be any sound.
    bool hasSound() const { return end_ > 0; }
    std::size_t bytes() const { return blocks_.size() * kPeaksPerBlock * sizeof(SoundPeak); }

private:
    std::map<std::int64_t, std::vector<SoundPeak>> blocks_;
    std::int64_t end_ = std::numeric_limits<std::int64_t>::max();
};

} // namespace velmora
