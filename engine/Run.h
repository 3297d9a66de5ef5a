#pragma once

namespace velmora {

class ConversionEngine;

/// See ConversionEngine::run.
void run(ConversionEngine& engine);

} // namespace velmora
