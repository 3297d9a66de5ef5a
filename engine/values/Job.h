#pragma once

#include "OutputSettings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

class ConversionEngine;

/// What a run needs of the engine's tables and settings. Copied on the thread that filled them,
/// before the run has one of its own: what others write there meanwhile does not reach the run.
struct Job {
    explicit Job(const ConversionEngine& engine);

    std::int32_t inputCount = 0; ///< may be more than the engine takes; the rows end where it does
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
