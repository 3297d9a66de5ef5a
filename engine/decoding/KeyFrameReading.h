#pragma once

#include "KeyFrames.h"
#include "StopFlag.h"

#include <string>

namespace velmora {

/// The key frames of the file's pictures: from the container's index where that names all of them,
/// else by reading the packets. Empty without pictures, on
/// failure, and once `stop` is raised (null: never). Blocks.
KeyFrames readKeyFrames(const std::string& path, const StopFlag* stop);

} // namespace velmora
