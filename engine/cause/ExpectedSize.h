#pragma once

#include "Job.h"

#include <cstdint>

namespace velmora {

/// About how many bytes the job's output will have: of a copy, as much as the stretches have in
/// their sources; else by the bit rates. 0 where that cannot be told. Opens the sources.
std::int64_t expectedBytes(const Job& job);

} // namespace velmora
