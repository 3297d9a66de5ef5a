#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/rational.h>
}

namespace velmora {

/// When the pictures of a file that was written are to be shown, and where its parts meet.
struct WrittenPictures {
    std::vector<std::int64_t> times; ///< sorted, the first is 0
    AVRational timeBase{1, 1};
    std::size_t head = 0; ///< pictures before the first seam
    std::size_t tail = 0; ///< pictures behind the last one
};

/// Decodes the file around its seams, such that the smallest error counts, and compares how many
/// pictures come out and when they are shown. Whether all is as it should be.
bool hasSoundSeams(const std::string& path, const WrittenPictures& expected);

} // namespace velmora
