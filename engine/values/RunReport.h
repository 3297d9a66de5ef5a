#pragma once

#include "FailureCause.h"

#include <string>

namespace velmora {

/// What is to be told of a run besides the states of its inputs.
struct RunReport {
    /// One sentence on how the written file differs from what was to be written; empty when it does
    /// not, or when there is none.
    std::string finding;
    /// Why an input failed, the first one if there are several.
    FailureCause cause;
};

} // namespace velmora
