#pragma once

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/rational.h>
}

namespace velmora {

inline constexpr AVRational kMicrosecond{1, AV_TIME_BASE};

} // namespace velmora
