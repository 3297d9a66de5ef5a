#pragma once

#include "SourceFacts.h"
#include "StopFlag.h"

#include <string>

namespace velmora {

/// Looks at the beginning of a source, and at its index if it has one, without decoding. Nothing is
/// known of a source that cannot be opened. Blocks for some milliseconds; ends early once `stop` is
/// raised; null: never.
SourceFacts readFacts(const std::string& path, const StopFlag* stop);

} // namespace velmora
