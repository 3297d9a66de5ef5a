#include "CutMarks.h"

#include "TimeText.h"

namespace velmora {

bool CutMarks::markStart(float seconds, float duration) {
    return markStartMs(toMilliseconds(seconds), duration);
}

bool CutMarks::markStartMs(std::int64_t ms, float duration) {
    mStartValMs = ms;
    const bool passed = mStartValMs >= mEndValMs;
    if (passed) {
        mEndValMs = toMilliseconds(duration);
    }
    return passed;
}

bool CutMarks::markEnd(float seconds) {
    return markEndMs(toMilliseconds(seconds));
}

bool CutMarks::markEndMs(std::int64_t ms) {
    mEndValMs = ms;
    const bool passed = mStartValMs >= mEndValMs;
    if (passed) {
        mStartValMs = 0;
    }
    return passed;
}

} // namespace velmora
