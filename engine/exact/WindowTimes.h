#pragma once

#include "InputMedia.h"
#include "Job.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// A window on the time line of its source's container, microseconds.
struct WindowTimes {
    std::int64_t startUs = 0; ///< the first time that a picture of it may have
    /// Where it was marked to end; a picture belongs to it that is shown more than half a
    /// millisecond before. Nothing: it goes on to the end of the source.
    std::optional<std::int64_t> endUs;

    /// Whether a picture at this time is before the end, in ticks of `timeBase`.
    bool isBeforeEnd(std::int64_t time, AVRational timeBase) const;
    /// The first time that is after all of the window, in ticks; nothing: there is none.
    std::optional<std::int64_t> endTicks(AVRational timeBase) const;
    /// The first time of it, in ticks.
    std::int64_t startTicks(AVRational timeBase) const;
};

/// The window's times in this source, of which stream info has been read. An end within a
/// millisecond of the source's length or beyond leaves nothing out.
WindowTimes timesOf(const Window& window, const InputMedia& source);

} // namespace velmora
