#pragma once

#include "OutputSettings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

class ConversionEngine;

/// A stretch of a source, in milliseconds from where its container's time line begins. The pictures
/// from the first one on that are not more than half a millisecond before `startMs`, up to the last
/// one that is more than that before `endMs`.
struct Window {
    std::int64_t startMs = 0;
    std::int64_t endMs = 0;
};

/// All that a run is told: what the engine's tables, settings and modes hold, as one value. A run
/// works from such a copy, made before it has a thread of its own: what others write into the
/// engine meanwhile does not reach it.
struct Job {
    Job() = default;
    /// What the engine holds now.
    explicit Job(const ConversionEngine& engine);

    /// Appends an input, times in seconds. In a join, which takes whole inputs, `end` is a
    /// thousandth of the input's length, and the lengths are added up as whole seconds.
    void add(const std::string& input, const std::string& output, double start, double end);
    /// What the percentage of an input is of, and its end where it is cut: seconds.
    double spanOf(std::size_t index) const { return joins ? joinSeconds : spanSeconds[index]; }

    std::int32_t inputCount = 0; ///< may be more than the engine takes; its rows end where it does
    std::vector<std::string> inputPaths;
    std::vector<std::string> outputPaths; ///< per input; all is written to the first
    std::vector<double> startSeconds;     ///< per input
    std::vector<double> endSeconds;       ///< per input; a run does not read it
    std::vector<double> spanSeconds;      ///< per input of a cut
    std::int32_t joinSeconds = 0;         ///< length of all inputs of a join
    VideoSettings video;
    AudioSettings audio;
    std::vector<Window> windows;   ///< per input of an exact cut
    bool exact = false;            ///< beside the modes below; nothing of the engine's
    bool videoCodecChosen = false; ///< the codec was chosen by name; a run does not read it
    bool joins = false;            ///< else the inputs are cut; before the first input is added
    bool reencodes = false;        ///< else packets are copied
};

/// Fills the engine's tables, settings and modes with the job's, and puts its counters to where
/// they are before a run: nothing is done, and nobody has asked to stop. A job without inputs
/// leaves the settings as they are. Main thread, while the engine carries out no run.
void load(ConversionEngine& engine, const Job& job);

} // namespace velmora
