#pragma once

#include <optional>
#include <string>

namespace velmora {

/// What of a source can make a copy or a re-encoded output come out otherwise than it was marked.
struct SourceFacts {
    bool hasPictures = false;
    bool hasSound = false;
    bool variesIntervals = false; ///< between pictures
    /// How much later than the pictures the sound starts, seconds; 0 without one of both.
    double soundDelay = 0;
    int quarterTurns = 0; ///< clockwise, before the pictures are shown
    bool mirrored = false;
};

/// Why the specified ways to cut this source come out wrong, as a sentence; nothing if they do not.
std::optional<std::string> troubleOf(const SourceFacts& facts);

} // namespace velmora
