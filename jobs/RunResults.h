#pragma once

#include "SharedState.h"

#include <cstdint>

namespace velmora {

// What the engine's counters and states say, put into the items that were run. Only for the run
// whose counters they are. Main thread.

enum class RunOutcome : std::uint8_t { Completed, Failed };

/// The states of the first `count` inputs.
void copyStates(const FileList& items, std::int32_t count);
/// The states of the inputs that have been gone over; these items are no longer selected.
void copyResults(const FileList& items);
/// The results of a run that is over, also of inputs that it did not reach. How it went is told by
/// its first input only.
RunOutcome collectOutcome(const FileList& items);
/// Whether the run has gone over all of its inputs, and has any.
bool isOverAllInputs();

} // namespace velmora
