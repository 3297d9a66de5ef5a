#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// What an exact copy of a window would do.
struct CopyForecast {
    std::string refusal;       ///< why it cannot be made, as a sentence; empty when it can
    std::int64_t encoded = 0;  ///< pictures that are encoded again
    std::int64_t pictures = 0; ///< of the window
    bool isEstimate = false;   ///< `pictures` is, as the source has no index of all of them
};

} // namespace velmora
