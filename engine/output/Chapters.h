#pragma once

#include "AvHandles.h"

#include <cstdint>

namespace velmora {

/// Gives the output those chapters of the input that lie, if only in part, between both times, on
/// the input's own time line: microseconds. The output's begins at `startUs`. 0 or a negative libav
/// error code. Before the header is written.
int copyChapters(const AVFormatContext& input, std::int64_t startUs, std::int64_t endUs,
                 AVFormatContext& output);

} // namespace velmora
