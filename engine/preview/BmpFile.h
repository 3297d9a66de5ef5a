#pragma once

#include <cstdint>
#include <string>

struct AVFrame;

namespace velmora {

/// See ConversionEngine::writeBmp and ConversionEngine::scaleToBmp.
void writeBmp(std::uint8_t* pixels, const std::string& path, int width, int height);
void scaleToBmp(const std::string& path, const AVFrame& frame, int width, int height);

} // namespace velmora
