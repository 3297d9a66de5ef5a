#pragma once

#include "SampleAspectRatio.h"

#include <cstdint>

namespace velmora {

class ConversionEngine;

/// See ConversionEngine::probe and, for what it puts into `aspect`,
/// MediaOperations::sampleAspectRatio.
std::int32_t probe(ConversionEngine& engine, SampleAspectRatio& aspect);

} // namespace velmora
