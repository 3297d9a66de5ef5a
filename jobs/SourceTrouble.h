#pragma once

#include "SourceFacts.h"

#include <QString>

#include <vector>

namespace velmora {

/// Why this source comes out wrong unless it is cut exactly, as a sentence; empty if it does not.
QString troubleOf(const SourceFacts& facts);

/// Likewise, of sources that are joined.
QString troubleOf(const std::vector<SourceFacts>& facts);

} // namespace velmora
