#pragma once

#include "CopyForecast.h"
#include "DirectStretch.h"
#include "FailureCause.h"
#include "KeyFrames.h"
#include "LogSink.h"
#include "PictureService.h"
#include "RunReport.h"
#include "SampleAspectRatio.h"
#include "SoundPeaks.h"
#include "SourceFacts.h"
#include "StopFlag.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

class ConversionEngine;
struct Job;
struct Window;

/// What the engine does with the media libraries. Apart from the engine's state, so that a program
/// can have its windows on screen before it loads those libraries, which takes longer than
/// everything else at its start.
class MediaOperations {
public:
    virtual ~MediaOperations() = default;

    /// See ConversionEngine.
    virtual std::int32_t probe(ConversionEngine& engine) = 0;
    virtual RunReport run(const Job& job, ConversionEngine& engine) = 0;
    virtual std::int32_t snapshot(ConversionEngine& engine) = 0;

    /// See velmora::readFacts. On any thread.
    virtual SourceFacts readFacts(const std::string& path, const StopFlag& stop) = 0;
    /// See velmora::directStretch. On any thread.
    virtual std::optional<DirectStretch> directStretch(const std::string& path, double startSeconds,
                                                       double endSeconds, const StopFlag& stop) = 0;
    /// See velmora::PeakReader. Its reads end early once `stop`, which outlives it, is raised. On
    /// any thread.
    virtual std::unique_ptr<PeakSource> peaksOf(const std::string& path, const StopFlag& stop) = 0;
    /// See velmora::readKeyFrames. On any thread.
    virtual KeyFrames readKeyFrames(const std::string& path, const StopFlag& stop) = 0;
    /// Gives the pictures of the file at `path` to `sink`. Does not block; what the file is turns
    /// out with the first answer.
    virtual std::unique_ptr<PictureService> openPictures(const std::string& path,
                                                         PictureService::Sink sink) = 0;
    /// See velmora::readShownTimes. On any thread.
    virtual std::vector<std::int64_t> readShownTimes(const std::string& path, std::int64_t beginUs,
                                                     std::int64_t endUs, const StopFlag& stop) = 0;
    /// See velmora::writePicture. On any thread.
    virtual std::int32_t writePicture(const std::string& path, std::int64_t timeMs,
                                      const std::string& picturePath) = 0;

    /// Why the last probe has refused its file; None when it has not.
    virtual FailureCause causeOfRefusal() const = 0;
    /// See velmora::forecastCopy. On any thread.
    virtual CopyForecast forecastCopy(const std::string& path, const Window& window,
                                      const std::string& outputPath, const StopFlag& stop) = 0;

    /// Of the video that the last successful probe has found; 1:1 where the file does not tell.
    virtual SampleAspectRatio sampleAspectRatio() const = 0;
    /// Likewise, whether its pictures are turned by a quarter before they are shown.
    virtual bool liesOnItsSide() const = 0;
    /// libavcodec's name of an AVCodecID; lives as long as the process.
    virtual const char* codecName(std::int32_t codecId) = 0;
    /// See velmora::setLogSink.
    virtual void setLogSink(LogSink sink) = 0;
};

/// Those of this process. A program whose target has LOADS_MEDIA_LATER loads them when this is
/// first called, and ends with a message when they are not there; in any other they are linked in.
MediaOperations& mediaOperations();

} // namespace velmora
