#pragma once

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

} // namespace velmora
