#pragma once

#include "Job.h"
#include "RunProgress.h"
#include "RunReport.h"
#include "StopFlag.h"

namespace velmora {

/// Carries out a job in which what was marked is what is written: every picture of the windows at
/// its own time, and the sound from the first of them on, re-encoded. Blocks until that is done or
/// `stop` is raised. What was written is looked at again; what is not as it should be fails the
/// run, and the report says so. The job has inputs. Throws only what the standard library throws
/// without memory or threads.
RunReport runExactly(const Job& job, RunProgress& progress, const StopFlag& stop);

} // namespace velmora
