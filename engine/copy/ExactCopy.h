#pragma once

#include "Job.h"
#include "RunProgress.h"
#include "RunReport.h"
#include "StopFlag.h"

namespace velmora {

/// Carries out an exact cut that copies what it can: every picture of the window at its own time,
/// those around its ends encoded again. Blocks until that is done or `stop` is raised. A file
/// that was there before is replaced once the new one has been looked at and found right; until
/// then, and after a failure or a stop, it stays as it was. The report says why there is no file.
/// The job has an input, and a window for it. Throws only what the standard library throws without
/// memory or threads.
RunReport copyExactly(const Job& job, RunProgress& progress, const StopFlag& stop);

} // namespace velmora
