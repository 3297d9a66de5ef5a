#pragma once

#include <cstdint>

namespace velmora {

/// What a direct cut shows of its source, microseconds from the container's start. It begins at a
/// key frame and keeps the length that was marked, so its end lies elsewhere as well. It may begin
/// before the container's start, with pictures that an edit list hides.
struct DirectStretch {
    std::int64_t beginUs = 0;
    std::int64_t endUs = 0;

    bool operator==(const DirectStretch&) const = default;
};

} // namespace velmora
