#pragma once

#include "AvHandles.h"

#include <cstdint>

namespace velmora {

/// A stretch of an input and where it begins in the output. Microseconds, each on the own time
/// line.
struct ChapterStretch {
    std::int64_t startUs = 0;
    std::int64_t endUs = 0;
    std::int64_t outputUs = 0;
};

/// Gives the output those chapters of the input that lie, if only in part, in the stretch. 0 or a
/// negative libav error code. Before the trailer is written, which is early enough for containers
/// that have chapters.
int copyChapters(const AVFormatContext& input, const ChapterStretch& stretch,
                 AVFormatContext& output);

} // namespace velmora
