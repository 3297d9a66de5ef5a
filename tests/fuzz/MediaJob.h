#pragma once

#include <string>

namespace velmora {
class ConversionEngine;
}

namespace velmora::fuzz {

/// The engine, quiet, with a job table that is as empty as at first.
ConversionEngine& cleanEngine();

/// Probes and previews `path` at its beginning and in its middle.
void probeAndPreview(const std::string& path);

/// Cuts a second out of `path`, then joins it with itself; each into a file of its own in memory
/// whose name ends in `extension`. With `reencode` both are encoded anew, as small pictures.
void cutAndJoin(const std::string& path, const std::string& extension, bool reencode);

} // namespace velmora::fuzz
