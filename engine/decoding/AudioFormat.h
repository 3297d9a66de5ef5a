#pragma once

#include "AvHandles.h"

namespace velmora {

/// How samples are stored.
struct AudioFormat {
    AVSampleFormat format = AV_SAMPLE_FMT_FLTP;
    int rate = 0; ///< Hz
    ChannelLayout layout;
};

} // namespace velmora
