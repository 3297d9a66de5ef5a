#include "CutMarks.h"

#include "TimeText.h"

namespace velmora {

bool CutMarks::markStart(float seconds, float duration) {
    mStartValMs = toMilliseconds(seconds);
    const bool passed = mStartValMs >= mEndValMs;
    if (passed) {
        mEndValMs = toMilliseconds(duration);
    }
    return passed;
}

bool CutMarks::markEnd(float seconds) {
    mEndValMs = toMilliseconds(seconds);
    const bool passed = mStartValMs >= mEndValMs;
    if (passed) {
        mStartValMs = 0;
    }
    return passed;
}

} // namespace velmora
