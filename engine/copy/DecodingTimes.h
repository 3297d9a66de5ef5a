#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <queue>
#include <vector>

namespace velmora {

/// Gives pictures that come in decoding order times of decoding: as many pictures before their
/// showing as decoding may run ahead, at the distances at which pictures are shown.
class DecodingTimes {
public:
    /// The first picture is shown at 0; `step`, ticks, is between those decoded before that.
    DecodingTimes(int depth, std::int64_t step) : depth_(depth), step_(step) {}

    /// When the next picture, shown at `time`, is decoded. Nothing when decoding runs further
    /// ahead, or when two are shown at once.
    std::optional<std::int64_t> next(std::int64_t time);

private:
    const int depth_;
    const std::int64_t step_;
    std::int64_t count_ = 0;
    std::optional<std::int64_t> last_;
    std::priority_queue<std::int64_t, std::vector<std::int64_t>, std::greater<>> waiting_;
};

} // namespace velmora
