#pragma once

#include "OutputSettings.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

class ConversionEngine;

/// What a run needs of the engine's tables and settings, copied when it starts: what others write
/// there meanwhile does not reach the run.
struct Job {
    explicit Job(const ConversionEngine& engine);

    std::vector<std::string> inputPaths;
    std::vector<std::string> outputPaths; ///< per input; all is written to the first
    std::vector<double> startSeconds;     ///< per input
    std::vector<double> spanSeconds;      ///< per input; in a join, of the whole job
    VideoSettings video;
    AudioSettings audio;
    bool joins = false;     ///< else the inputs are cut
    bool reencodes = false; ///< else packets are copied
};

} // namespace velmora
