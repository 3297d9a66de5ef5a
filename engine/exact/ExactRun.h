#pragma once

#include "Job.h"
#include "RunProgress.h"
#include "StopFlag.h"

namespace velmora {

/// Carries out a job in which what was marked is what is written: every picture of the windows at
/// its own time, and the sound from the first of them on, re-encoded. Blocks until that is done or
/// `stop` is raised. The job has inputs. Throws only what the standard library throws without
/// memory or threads.
void runExactly(const Job& job, RunProgress& progress, const StopFlag& stop);

} // namespace velmora
