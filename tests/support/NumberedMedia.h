#pragma once

#include <cstdint>
#include <string>

namespace velmora::test {

/// There is no picture.
inline constexpr int kNoNumber = -1;

/// The path of a file of fifty pictures, two seconds, 256 x 128, encoded by libx264 unless
/// `options` of ffmpeg say otherwise. Each picture carries its number, from 0. Made on first use
/// and shared by all tests: never write to it.
std::string numberedMedia(const std::string& name, const std::string& options);

/// The number in such a picture of any size, of which each pixel has so many bytes.
int numberIn(const std::uint8_t* pixels, int width, int height, int bytesPerPixel);

} // namespace velmora::test
