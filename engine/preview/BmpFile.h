#pragma once

#include <cstdint>
#include <string>

struct AVCodecContext;
struct AVFrame;

namespace velmora {

/// See ConversionEngine::writeBmp and ConversionEngine::scaleToBmp.
void writeBmp(std::uint8_t* pixels, const std::string& path, int width, int height);
void scaleToBmp(const std::string& path, AVCodecContext& decoder, const AVFrame& frame, int width,
                int height);

} // namespace velmora
