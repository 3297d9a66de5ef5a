#pragma once

#include <QString>

#include <cstdint>

namespace velmora {

/// Results of an item's last run. Any other value stands for no result.
enum ItemState : std::int32_t { Ready = 0, Completed = 1, Failure = 2 };

/// What a table shows of an item's state; a null text where it stands for no result.
QString stateText(std::int32_t state);

/// One media item: a source file, what is known of it, the stretch to take and how the last run
/// went. Main thread, but for a run, which reads it.
struct NodeInfo {
    QString inputFile;                  ///< full path
    QString outPutFile;                 ///< stays empty: a run writes to the one path of its job
    QString outFromat;                  ///< file extension of the output
    QString inFromat;                   ///< file extension of the source
    QString resolution;                 ///< "1280x720"
    float startTime = 0;                ///< milliseconds in the cutter, seconds in the joiner
    float endTime = 0;                  ///< the same unit as `startTime`
    std::int32_t converteState = Ready; ///< an ItemState
    std::int32_t isSeleted = 0;         ///< 1: the check box of its row is set
    std::int32_t width = 0;             ///< pixels
    std::int32_t height = 0;            ///< pixels
    float frame_rate = 0;               ///< pictures per second
    float duration = 0;                 ///< seconds
};

} // namespace velmora
