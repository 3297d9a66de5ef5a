#pragma once

#include <cstdint>

namespace velmora {

class ConversionEngine;

/// See ConversionEngine::probe.
std::int32_t probe(ConversionEngine& engine);

} // namespace velmora
