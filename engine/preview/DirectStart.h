#pragma once

#include "DirectStretch.h"
#include "StopFlag.h"

#include <optional>
#include <string>

namespace velmora {

/// What a direct cut of the file at `path` from `startSeconds` to `endSeconds` would show: goes
/// where it would go and looks what comes there. Nothing when that cannot be told, or once `stop`
/// is raised; null: never.
std::optional<DirectStretch> directStretch(const std::string& path, double startSeconds,
                                           double endSeconds, const StopFlag* stop);

} // namespace velmora
