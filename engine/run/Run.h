#pragma once

#include "Job.h"
#include "RunProgress.h"
#include "StopFlag.h"

namespace velmora {

/// Carries out a job: its inputs one after another into its one output. Blocks until that is done
/// or `stop` is raised, which leaves the output as far as it was written. Throws only what the
/// standard library throws without memory or threads; what was written then stays, too.
void run(const Job& job, RunProgress& progress, const StopFlag& stop);

} // namespace velmora
