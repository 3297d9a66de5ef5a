#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// Writes the picture that is shown `timeMs` milliseconds after the container's beginning as a PNG
/// file: in full size, upright and in square pixels. 0 or a negative libav error code. Blocks.
std::int32_t writePicture(const std::string& path, std::int64_t timeMs,
                          const std::string& picturePath);

} // namespace velmora
