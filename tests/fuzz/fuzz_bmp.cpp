// Any picture sizes, also impossible ones, and any pixels for the BMP writer.

#include "ConversionEngine.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kHeaderBytes = 54;

/// Rows are written without padding.
std::size_t fileBytes(int width, int height) {
    return kHeaderBytes + static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3;
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    int width = 0;
    int height = 0;
    if (size < sizeof width + sizeof height) {
        return 0;
    }
    std::memcpy(&width, data, sizeof width);
    std::memcpy(&height, data + sizeof width, sizeof height);
    // What can be allocated is written in full; of the rest only the refusal is tried.
    const bool real = width > 0 && height > 0 && width <= 512 && height <= 512;
    std::vector<std::uint8_t> pixels(
        real ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3 : 0);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = data[i % size];
    }
    if (!real && width > 0 && height > 0) {
        return 0; // the caller vouches for its buffer
    }
    const std::string path = "/dev/shm/velmora-fuzz-" + std::to_string(getpid()) + ".bmp";
    velmora::ConversionEngine::writeBmp(pixels.data(), path, width, height);
    std::error_code missing;
    const auto written = std::filesystem::file_size(path, missing);
    if (real && (missing || written != fileBytes(width, height))) {
        std::abort();
    }
    std::filesystem::remove(path, missing);
    return 0;
}
