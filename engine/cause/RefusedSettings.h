#pragma once

#include "FailureCause.h"
#include "Job.h"

namespace velmora {

/// Why the encoder of the job's pictures refuses what it is asked for, with the nearest that it
/// takes.
FailureCause causeOfRefusedPictures(const Job& job);
/// The same for the encoder of its sound.
FailureCause causeOfRefusedSound(const Job& job);
/// Why the container of the job's output refuses its streams: the codec that it does not take, and
/// those of the offered containers that take all of them.
FailureCause causeOfRefusedStreams(const Job& job);

} // namespace velmora
