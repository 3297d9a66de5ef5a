#pragma once

#include "TestFiles.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace velmora::test {

/// What a preview is to be, found in the plainest way: the file is opened anew each time and every
/// packet is decoded until there is a picture.
struct ReferenceSnapshot {
    std::optional<Bytes> file; ///< nothing: no picture is written
    double startSeconds = 0.0; ///< what becomes of the time that was asked for
};
ReferenceSnapshot referenceSnapshot(const std::string& path, double seconds);

/// Seconds; nothing when the container does not tell.
std::optional<double> durationOf(const std::string& path);

/// The file that rows of BGR24 pixels, top row first, are to become.
Bytes bmpFileOf(std::span<const std::uint8_t> pixels, std::uint32_t width, std::uint32_t height);

} // namespace velmora::test
