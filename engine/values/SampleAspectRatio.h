#pragma once

#include <cstdint>

namespace velmora {

/// How wide a sample of a picture is shown for its height: 64:45 for a wide picture of 720x576
/// samples. Both are positive.
struct SampleAspectRatio {
    std::int32_t width = 1;
    std::int32_t height = 1;
};

} // namespace velmora
