#pragma once

#include "NodeInfo.h"

#include <QString>

#include <cstdint>
#include <memory>

// A file that the user gives to a workspace, as the engine's probe finds it. Main thread.

namespace velmora {

/// Probes the file, which blocks, and returns the probe's code.
std::int32_t probeFile(const QString& path);

/// Whether the probe that returned `code` has found a file that can be worked with. If it has not,
/// an alert says so before the call returns.
bool acceptProbe(std::int32_t code);

/// An item of the file that has been probed last: all of it, ready to be run.
std::shared_ptr<NodeInfo> probedItem(const QString& path);

} // namespace velmora
