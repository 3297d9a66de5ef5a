#pragma once

#include "AvHandles.h"

namespace velmora {

/// Opens the filter that the packets of `source` need in a container of `format`: it replaces the
/// length before each part of an H.264 or HEVC packet by a start code. Packets that need none leave
/// `filter` null. 0 or a negative libav error code.
int openStartCodeFilter(const AVStream& source, const AVOutputFormat& format,
                        BitstreamFilterHandle& filter);

} // namespace velmora
