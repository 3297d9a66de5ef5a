#pragma once

#include "StopFlag.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

/// When the pictures between two positions of the file at `path` are shown, each after the one
/// before; all in microseconds from the container's start. At most some thousand; empty without
/// pictures, on failure, and once `stop` is raised (null: never). Blocks, for about as long as it
/// takes to read the groups of pictures there.
std::vector<std::int64_t> readShownTimes(const std::string& path, std::int64_t beginUs,
                                         std::int64_t endUs, const StopFlag* stop);

} // namespace velmora
