#pragma once

#include "FailureCause.h"
#include "FirstFailure.h"
#include "Job.h"

namespace velmora {

/// What made a file unusable that is not part of a job. May look at the file again.
FailureCause causeOf(const Failure& failure);
/// What made a run fail. May look at the job's files and at the disk again, and try encoders.
FailureCause causeOf(const Failure& failure, const Job& job);

} // namespace velmora
