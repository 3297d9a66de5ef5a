#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace velmora {

/// The number, or the nearest one that 32 bits can hold.
constexpr std::int32_t saturated(std::int64_t number) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

/// A number without its fraction; what 32 bits cannot hold gives the nearest that fits, and what is
/// no number gives 0.
inline std::int32_t truncated(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(number)) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::clamp(number, double{Limits::min()}, double{Limits::max()}));
}

/// Likewise in 64 bits, of which the least numbers and the largest are left out: they stand for
/// times that are not known, and sums with them would overflow.
inline std::int64_t truncatedTo64Bits(double number) {
    constexpr double kMost = 9.2e18;
    if (std::isnan(number)) {
        return 0;
    }
    return static_cast<std::int64_t>(std::clamp(number, -kMost, kMost));
}

} // namespace velmora
