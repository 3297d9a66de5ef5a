#include "CauseOfFailure.h"
#include "ConversionEngine.h"
#include "CopyPlan.h"
#include "DirectStart.h"
#include "EngineLog.h"
#include "EngineProgress.h"
#include "ExactCopy.h"
#include "ExactRun.h"
#include "FrameRate.h"
#include "KeyFrameReading.h"
#include "MediaOperations.h"
#include "PeakReader.h"
#include "PictureFile.h"
#include "PictureServer.h"
#include "PreviewFile.h"
#include "Probe.h"
#include "Run.h"
#include "ShownTimes.h"
#include "SourceReading.h"
#include "WrittenFile.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <exception>
#include <span>

namespace velmora {
namespace {

void storeFrameRate(ConversionEngine& engine, AVRational rate) {
    if (rate.den != 0) {
        engine.sourceFrameRate = wholeFrameRate(rate);
    }
    engine.sourceFrameRateNum = rate.num;
    engine.sourceFrameRateDen = rate.den;
}

/// Without a video stream the frame rate keeps what it was.
void storeVideo(ConversionEngine& engine, const std::optional<ProbeResults::Video>& found) {
    const auto video = found.value_or(ProbeResults::Video());
    engine.sourceHeight = video.height;
    engine.sourceWidth = video.width;
    engine.videoCodecId = video.codecId;
    engine.videoBitRate = video.bitRate;
    if (found) {
        storeFrameRate(engine, video.frameRate);
    }
}

void storeAudio(ConversionEngine& engine, const ProbeResults::Audio& audio) {
    engine.audioCodecId = audio.codecId;
    engine.audioChannels = audio.channels;
    engine.audioSampleRate = audio.sampleRate;
    engine.audioBitRate = audio.bitRate;
}

void storeStreams(ConversionEngine& engine, const std::optional<ProbeResults::Streams>& found) {
    engine.videoStreamIndex = found ? found->videoIndex : -1;
    engine.audioStreamIndex = found ? found->audioIndex : -1;
    if (found) {
        engine.streamCount = found->count;
    }
}

void storeDuration(ConversionEngine& engine, std::int64_t durationUs) {
    engine.durationUs = durationUs;
    engine.durationFloor = 0;
    engine.durationSeconds = durationUs / AV_TIME_BASE;
}

void refuse(const Job& job, ConversionEngine& engine) {
    av_log(nullptr, AV_LOG_ERROR, "a job of %d inputs is larger than %zu\n", job.inputCount,
           ConversionEngine::kMaxInputs);
    for (auto& state : engine.fileStates) {
        state = ConversionEngine::Failed;
    }
    engine.currentPercent = 0;
    engine.currentIndex = job.inputCount;
}

/// Some runs end without a word on their inputs.
bool hasFailed(const ConversionEngine& engine, const Job& job) {
    const std::span states(engine.fileStates.data(),
                           std::min(job.inputPaths.size(), engine.fileStates.size()));
    return engine.stopRequested == 0 && std::ranges::any_of(states, [](const auto& state) {
               return state != ConversionEngine::Done;
           });
}

class LibavOperations final : public MediaOperations {
public:
    LibavOperations() { routeLibraryLog(); }

    std::int32_t probe(ConversionEngine& engine) override;
    RunReport run(const Job& job, ConversionEngine& engine) override;
    SourceFacts readFacts(const std::string& path, const StopFlag& stop) override {
        return velmora::readFacts(path, &stop);
    }
    std::optional<DirectStretch> directStretch(const std::string& path, double startSeconds,
                                               double endSeconds, const StopFlag& stop) override {
        return velmora::directStretch(path, startSeconds, endSeconds, &stop);
    }
    std::unique_ptr<PeakSource> peaksOf(const std::string& path, const StopFlag& stop) override {
        return std::make_unique<PeakReader>(path, &stop);
    }
    KeyFrames readKeyFrames(const std::string& path, const StopFlag& stop) override {
        return velmora::readKeyFrames(path, &stop);
    }
    std::vector<std::int64_t> readShownTimes(const std::string& path, std::int64_t beginUs,
                                             std::int64_t endUs, const StopFlag& stop) override {
        return velmora::readShownTimes(path, beginUs, endUs, &stop);
    }
    std::unique_ptr<PictureService> openPictures(const std::string& path,
                                                 PictureService::Sink sink) override {
        return std::make_unique<PictureServer>(path, std::move(sink));
    }
    std::int32_t writePicture(const std::string& path, std::int64_t timeMs,
                              const std::string& picturePath) override {
        return velmora::writePicture(path, timeMs, picturePath);
    }
    CopyForecast forecastCopy(const std::string& path, const Window& window,
                              const std::string& outputPath, const StopFlag& stop) override {
        return velmora::forecastCopy(path, window, outputPath, &stop);
    }
    std::int32_t snapshot(ConversionEngine& engine) override;
    FailureCause causeOfRefusal() const override { return causeOfRefusal_; }
    SampleAspectRatio sampleAspectRatio() const override { return sampleAspectRatio_; }
    bool liesOnItsSide() const override { return liesOnItsSide_; }
    const char* codecName(std::int32_t codecId) override {
        return avcodec_get_name(static_cast<AVCodecID>(codecId));
    }
    void setLogSink(LogSink sink) override { velmora::setLogSink(sink); }

private:
    static RunReport carryOut(const Job& job, ConversionEngine& engine);

    PreviewFile preview_;
    FailureCause causeOfRefusal_;
    SampleAspectRatio sampleAspectRatio_;
    bool liesOnItsSide_ = false;
};

std::int32_t LibavOperations::probe(ConversionEngine& engine) {
    const FirstFailure first;
    const ProbeResults results = velmora::probe(engine.probePath);
    const bool refuses = results.code != ProbeResults::Success && first.found();
    causeOfRefusal_ = refuses ? causeOf(*first.found()) : FailureCause();
    storeStreams(engine, results.streams);
    if (results.code == ProbeResults::Success) {
        storeVideo(engine, results.video);
        storeAudio(engine, results.audio);
        storeDuration(engine, results.durationUs);
        const auto video = results.video.value_or(ProbeResults::Video());
        sampleAspectRatio_ = video.aspect;
        liesOnItsSide_ = video.liesOnItsSide;
    }
    return results.code;
}

/// What the run tells goes to the log, too.
RunReport LibavOperations::run(const Job& job, ConversionEngine& engine) {
    const FirstFailure first;
    RunReport report = carryOut(job, engine);
    if (first.found() && hasFailed(engine, job)) {
        const ExpectedLogLines quiet(ExpectedLogLines::Kind::Everything);
        report.cause = causeOf(*first.found(), job);
    }
    if (!report.finding.empty()) {
        av_log(nullptr, AV_LOG_WARNING, "%s: %s\n", job.outputPaths.front().c_str(),
               report.finding.c_str());
    }
    return report;
}

RunReport LibavOperations::carryOut(const Job& job, ConversionEngine& engine) {
    if (job.inputCount > static_cast<std::int32_t>(ConversionEngine::kMaxInputs)) {
        refuse(job, engine);
        return {};
    }
    EngineProgress progress(engine, job.inputCount);
    if (job.inputCount == 0) {
        return {};
    }
    try {
        if (job.exact && !job.reencodes) {
            return copyExactly(job, progress, engine.stopRequested);
        }
        if (job.exact) {
            return runExactly(job, progress, engine.stopRequested);
        }
        velmora::run(job, progress, engine.stopRequested);
        if (engine.stopRequested == 0 && engine.fileStates[0] == ConversionEngine::Done) {
            return {.finding = differenceOf(job, &engine.stopRequested), .cause = {}};
        }
    } catch (const std::exception& failure) { // without memory or threads
        av_log(nullptr, AV_LOG_ERROR, "the run cannot go on: %s\n", failure.what());
        progress.failPending();
    }
    return {};
}

std::int32_t LibavOperations::snapshot(ConversionEngine& engine) {
    const std::int32_t index = engine.currentIndex;
    const bool inTable =
        index >= 0 && static_cast<std::size_t>(index) < ConversionEngine::kMaxInputs;
    double startSeconds = inTable ? engine.startTimes[static_cast<std::size_t>(index)].load() : 0.0;
    const int result = preview_.show(engine.probePath, startSeconds, engine.snapshotPath);
    engine.videoStreamIndex = preview_.videoStreamIndex();
    engine.audioStreamIndex = preview_.audioStreamIndex();
    if (inTable) {
        engine.startTimes[static_cast<std::size_t>(index)] = startSeconds;
    }
    return result;
}

} // namespace

MediaOperations& mediaOperations() {
    static LibavOperations operations;
    return operations;
}

} // namespace velmora
