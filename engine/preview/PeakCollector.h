#pragma once

#include "AvHandles.h"
#include "SoundPeaks.h"

#include <cstdint>
#include <vector>

namespace velmora {

/// Gathers the peaks of decoded sound in whatever format it comes: nothing is converted, mixed or
/// resampled, so no peak is lost. Each block goes to the sink once sound of a later one has come.
class PeakCollector {
public:
    PeakCollector(PeakBlocks wanted, PeakSink sink);

    /// Takes sound whose first sample is `place` samples after the container's start. What lies
    /// before the block in hand or after the last one is passed over, as is a format that is none.
    void add(const AVFrame& sound, std::int64_t place);
    /// Gives out the block in hand and those up to the end; what has not come is silent.
    void finish();
    /// Gives out the block in hand if there is sound in it.
    void finishAtSoundEnd();

    bool isComplete() const { return block_ == wanted_.end(); }

private:
    void giveOut();
    SoundPeak* peakAt(std::int64_t peak);

    const PeakBlocks wanted_;
    const PeakSink sink_;
    std::int64_t block_; ///< in hand
    bool hasSound_ = false;
    std::vector<SoundPeak> peaks_;
};

} // namespace velmora
