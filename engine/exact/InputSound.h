#pragma once

#include "ExactInput.h"
#include "StopFlag.h"
#include "TimedSoundWriter.h"

#include <cstdint>

namespace velmora {

/// The sound of one input of an exact job, on its way into the output. Places are samples of the
/// output. Belongs to one thread.
class InputSound {
public:
    /// Opens the input's sound, if there is any. All outlive this object.
    InputSound(ExactInput& input, TimedSoundWriter& output, const StopFlag& stop);

    /// Writes the pieces that end before `sample`. 0 or a negative libav error code.
    int writeUntil(std::int64_t sample);
    /// Writes what is left before `end`, to the sample. 0 or a negative code.
    int endAt(std::int64_t end);
    /// Writes all that is left. 0 or a negative code.
    int writeAll() { return endAt(INT64_MAX); }
    /// Writes all that is left where that is more than `most` samples behind `end`, else what is
    /// before `end`. 0 or a negative code.
    int endNear(std::int64_t end, std::int64_t most);

private:
    bool advance();

    ExactInput& input_;
    TimedSoundWriter& output_;
    const StopFlag& stop_;
    FrameHandle next_;
    bool ended_;
};

} // namespace velmora
