#pragma once

#include "ConverterInfo.h"
#include "NodeInfo.h"
#include "NodeSetting.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <vector>

namespace velmora {

/// All that a run reads of the program's state, as copies: the windows may go on changing theirs.
struct RunRequest {
    ConverterInfo job;
    std::vector<NodeInfo> items;
    NodeSetting setting;

    /// The job with what the shared list and the current setting hold now. Main thread.
    static RunRequest of(const ConverterInfo& job);
};

/// What the worker of a run and the window that watches it tell each other.
struct RunMarks {
    std::atomic<bool> begun{false};     ///< by the worker: the engine's counters are this run's
    std::atomic<bool> ended{false};     ///< by the worker: it touches nothing any more
    std::atomic<bool> cancelled{false}; ///< by the window, before it sets `stopRequested`
};

/// The driver: copies a job into the engine's tables and runs it.
class ConverterThread {
public:
    ConverterThread() = delete;

    /// Runs the job over the shared list with the current setting. Blocks until the run has ended.
    /// It checks nothing: the engine marks the inputs that fail.
    static void beginConverter(const ConverterInfo& job);
    /// The body of a worker thread. The run ends at once when it has been cancelled before.
    static void beginConverter(const RunRequest& request, RunMarks& marks);

    /// Copies the parameters that the engine has probed into the current setting, in the engine's
    /// units: bit/s, and libavcodec's names of codecs. Main thread.
    static void copyProbeToSetting();

    // The parts of the texts that panels offer. A text without a number there gives 0.
    static std::int32_t getChannel(const QString& text);
    static std::int32_t getBitRate(const QString& kilobits); ///< bit/s
    static std::int32_t getSamplerate(const QString& text);  ///< Hz
    static double getFrameRate(const QString& text);         ///< pictures per second
    static std::int32_t getWidthFromResolution(const QString& resolution);
    static std::int32_t getHeightFromResolution(const QString& resolution);
    /// "mp4" of "MPEG-4 (*.mp4)". Throws std::invalid_argument when there is no "*.".
    static QString getExt(const QString& fileType);
    /// "a" of "/folder/a.b.mp4".
    static QString getFileNameExceptExtensiton(const QString& path);
};

} // namespace velmora
