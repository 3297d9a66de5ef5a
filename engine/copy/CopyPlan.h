#pragma once

#include "CodedPictures.h"
#include "CopyForecast.h"
#include "CutPlan.h"
#include "Job.h"
#include "WindowTimes.h"

#include <cstdint>
#include <string>

namespace velmora {

/// Where the parts of an exact copy come from, or why there is none.
struct CopyPlan {
    CopyForecast forecast;
    WindowTimes window;
    CutPlan cut;           ///< times in ticks of the source's pictures
    std::int64_t end = 0;  ///< likewise: after all of the window; CutRule::kToTheEnd: where the
                           ///< source ends
    std::int64_t last = 0; ///< likewise: of the picture that is shown last; of a window to the end,
                           ///< only of those that were read
    int depth = 0;         ///< by how many pictures decoding may run ahead of showing

    bool isPossible() const { return forecast.refusal.empty(); }
    /// The time of the first picture.
    std::int64_t origin() const { return cut.head.empty() ? cut.copied->first : cut.head.front(); }
};

/// Plans an exact copy from a source that has been opened into a file of this format. Blocks for a
/// fraction of a second; for a transport stream as long as reading it takes.
CopyPlan planCopy(CodedPictures& source, const Window& window, const AVOutputFormat& format);

/// What an exact copy of the window of the source at `path` into this output would do. Nothing is
/// written. Ends early once `stop` is raised; null: never.
CopyForecast forecastCopy(const std::string& path, const Window& window,
                          const std::string& outputPath, const StopFlag* stop);

} // namespace velmora
