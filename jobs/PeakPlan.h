#pragma once

#include "SoundPeaks.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace velmora {

/// What of a file's sound is to be read next: from what is visible outwards, to the right before
/// the left, at most a minute or so at a time. `isMissing` tells of a block of `all`; nothing when
/// none is.
std::optional<PeakBlocks> nextToRead(PeakBlocks all, PeakBlocks visible,
                                     const std::function<bool(std::int64_t block)>& isMissing);

} // namespace velmora
