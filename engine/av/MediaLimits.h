#pragma once

#include <cstdint>

namespace velmora {

/// A hostile header can ask for any picture size; this allows four times the area of 8K video.
constexpr std::int64_t kMaxPixels = std::int64_t{16384} * 8192;

/// Pictures on their way through a run may take so much memory together, bytes.
constexpr std::int64_t kMaxPictureMemory = std::int64_t{192} * 1024 * 1024;

/// A packet may not become more sound than this, samples per channel.
constexpr std::int64_t kMaxSamplesPerFrame = std::int64_t{1} << 20;

} // namespace velmora
