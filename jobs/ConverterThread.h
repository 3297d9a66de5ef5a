#pragma once

#include "ConverterInfo.h"
#include "NodeInfo.h"
#include "NodeSetting.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace velmora {

struct Job;

/// All that a run reads of the program's state, as copies: the windows may go on changing theirs,
/// and what they probe changes the engine's codecs.
struct RunRequest {
    ConverterInfo job;
    std::vector<NodeInfo> items;
    NodeSetting setting;
    std::int32_t videoCodecId = 0; ///< an AVCodecID, where the setting's name selects none
    std::int32_t audioCodecId = 0; ///< likewise

    /// The job with what the shared list and the current setting hold now. Main thread.
    static RunRequest of(const ConverterInfo& job);
};

/// The driver: copies a job into the engine's tables and runs it.
class ConverterThread {
public:
    ConverterThread() = delete;

    /// Runs the job over the shared list with the current setting. Blocks until the run has ended.
    /// It checks nothing: the engine marks the inputs that fail. Main thread.
    static void beginConverter(const ConverterInfo& job);
    /// Fills the engine's tables, settings and counters from the request; a request to stop that
    /// was meant for an earlier run is forgotten. Main thread, while the engine carries out no run.
    static void fill(const RunRequest& request);
    /// What the engine's tables have no place for: whether the job is exact, and its windows.
    static void addExactPart(const RunRequest& request, Job& job);

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
