#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace velmora {

/// A coded picture, as far as a plan needs it. All times are ticks of one time base.
struct IndexedPicture {
    std::int64_t time = 0; ///< when it is shown
    /// Decoding can begin here: whatever follows it in the stream and is shown after it needs
    /// nothing from before it.
    bool isEntry = false;
};

/// The coded pictures around both ends of a window, each list in decoding order.
struct PicturesAround {
    std::vector<IndexedPicture> start; ///< all that may belong to the window's first pictures
    /// All that may belong to its last ones; nothing where `start` holds the whole window, or where
    /// the window goes on to the end of the source.
    std::vector<IndexedPicture> end;
    bool startIsWhole = true; ///< `start` holds all of the window
};

/// Which pictures are wanted, and what is worth a seam.
struct CutRule {
    static constexpr std::int64_t kToTheEnd = std::numeric_limits<std::int64_t>::max();

    std::int64_t start = 0;         ///< the first time that is wanted
    std::int64_t end = kToTheEnd;   ///< the first one after it that is not
    std::int64_t leastCopied = 0;   ///< copying less is not worth its seams
    std::int64_t farthestEntry = 0; ///< how far from `start` an entry is looked for

    bool wants(std::int64_t time) const { return time >= start && time < end; }
};

/// How a window comes to hold its pictures, and no others: which of them are encoded again, and
/// which are the source's own. Shown one after the other: head, copied ones, tail.
struct CutPlan {
    /// The copied pictures: from an entry on, in decoding order, without those that are shown
    /// before it.
    struct Run {
        std::int64_t first = 0; ///< the time of the entry
        /// The time of the first one in decoding order that is not copied any more; nothing: the
        /// source ends first.
        std::optional<std::int64_t> stop;
    };

    std::vector<std::int64_t> head; ///< encoded, in the order of showing
    std::optional<Run> copied;      ///< nothing: the head is all of the window
    std::vector<std::int64_t> tail; ///< encoded, in the order of showing
};

/// The plan of a window that holds at least one of the pictures; nothing when no entry is found in
/// a window that is too long to encode all of it.
std::optional<CutPlan> planCut(const PicturesAround& pictures, const CutRule& rule);

} // namespace velmora
