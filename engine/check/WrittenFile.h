#pragma once

#include "Job.h"
#include "StopFlag.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// What a written file should be.
struct WrittenPlan {
    bool hasSound = false;
    std::optional<std::int64_t> pictures; ///< how many; nothing: not counted
    double seconds = 0;                   ///< how long; 0: not known
    double lastPictureSeconds = 0;        ///< when the last one begins: some containers end there
    bool isExact = false; ///< to the picture; else what a copy of packets can be expected to give
};

/// Opens the file again and looks whether it is what was planned: whether it opens and has its
/// streams, whether its first and its last picture can be shown, how many pictures it has and how
/// long it is. What differs, as one sentence; empty when nothing does,
/// and once `stop` is raised; null: never.
std::string differenceOf(const std::string& path, const WrittenPlan& plan, const StopFlag* stop);

/// The same for what a job that is not exact has written: its length is that of the
/// marked stretch, or of all inputs of a join, within a second and a tenth of it.
std::string differenceOf(const Job& job, const StopFlag* stop);

} // namespace velmora
