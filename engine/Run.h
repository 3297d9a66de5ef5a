#pragma once

namespace velmora {

class ConversionEngine;
struct Job;

/// See ConversionEngine::run. Of `engine`, only what a run may write while others use it.
void run(const Job& job, ConversionEngine& engine);

} // namespace velmora
