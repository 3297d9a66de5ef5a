#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace velmora {

/// The lowest and the highest sample of a short time over all channels; full scale is 127.
struct SoundPeak {
    std::int8_t low = 0;
    std::int8_t high = 0;

    bool operator==(const SoundPeak&) const = default;
};

inline constexpr int kPeaksPerSecond = 100;
inline constexpr int kPeaksPerBlock = 1024;
inline constexpr std::int64_t kPeakUs = 1'000'000 / kPeaksPerSecond;
inline constexpr std::int64_t kPeakBlockUs = kPeaksPerBlock * kPeakUs;

/// A stretch of a file's sound, counted in blocks from the container's start.
struct PeakBlocks {
    std::int64_t first = 0;
    std::int64_t count = 0;

    std::int64_t end() const { return first + count; }
    bool operator==(const PeakBlocks&) const = default;
};

/// Takes the peaks of one block, which are kPeaksPerBlock.
using PeakSink = std::function<void(std::int64_t block, std::vector<SoundPeak> peaks)>;

/// How the reading of a stretch has ended.
enum class PeaksEnd {
    Read,     ///< all blocks have been given
    SoundEnd, ///< there is no more sound after those that have been given
    NoSound,  ///< the file has none, or none that can be decoded
    Stopped,  ///< a block in hand is lost
};

/// Reads the peaks of one file's sound, which it keeps open. Belongs to one thread at a time;
/// blocks while it reads.
class PeakSource {
public:
    virtual ~PeakSource() = default;

    /// Gives the peaks of a stretch to `sink`, on this thread, block by block in their order.
    virtual PeaksEnd read(PeakBlocks wanted, const PeakSink& sink) = 0;
};

} // namespace velmora
