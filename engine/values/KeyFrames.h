#pragma once

#include <cstdint>
#include <vector>

namespace velmora {

/// Where decoding of a source's pictures can begin: the positions of its key frames, microseconds
/// from the container's start, each after the one before. One that only what is shown later needs
/// may lie before 0.
using KeyFrames = std::vector<std::int64_t>;

} // namespace velmora
