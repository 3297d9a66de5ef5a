#pragma once

#include <atomic>
#include <cstdint>

namespace velmora {

/// Set to 1 by the thread that wants a run to end; the run and its reads only look at it.
using StopFlag = std::atomic<std::uint8_t>;

/// A null flag is never raised: probes and previews are not stopped by a run's cancel.
inline bool isRaised(const StopFlag* stop) {
    return stop != nullptr && stop->load() != 0;
}

} // namespace velmora
