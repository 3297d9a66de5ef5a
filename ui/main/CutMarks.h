#pragma once

#include <cstdint>

namespace velmora {

/// The stretch of a video that is to be cut out. A mark that is set at or past the other one moves
/// that to its end of the video, so the stretch is never empty unless the video is.
struct CutMarks {
    std::int64_t mStartValMs = 0;
    std::int64_t mEndValMs = 0;

    /// Sets the start, to a time that is known to the millisecond or by the bar. Whether that has
    /// moved the end, to the video's `duration`.
    bool markStartMs(std::int64_t ms, float duration);
    bool markStart(float seconds, float duration);
    /// Sets the end, likewise. Whether that has moved the start, to 0.
    bool markEndMs(std::int64_t ms);
    bool markEnd(float seconds);

    std::int64_t lengthMs() const { return mEndValMs - mStartValMs; }
};

} // namespace velmora
