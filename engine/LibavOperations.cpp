#include "ConversionEngine.h"
#include "MediaOperations.h"
#include "Probe.h"
#include "Run.h"
#include "Snapshot.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace velmora {
namespace {

class LibavOperations final : public MediaOperations {
public:
    LibavOperations() { routeLibraryLog(); }

    std::int32_t probe(ConversionEngine& engine) override {
        return velmora::probe(engine, sampleAspectRatio_);
    }
    void run(const Job& job, ConversionEngine& engine) override { velmora::run(job, engine); }
    std::int32_t snapshot(ConversionEngine& engine) override;
    SampleAspectRatio sampleAspectRatio() const override { return sampleAspectRatio_; }
    const char* codecName(std::int32_t codecId) override {
        return avcodec_get_name(static_cast<AVCodecID>(codecId));
    }
    void setLogSink(LogSink sink) override { velmora::setLogSink(sink); }

private:
    Snapshot snapshot_;
    SampleAspectRatio sampleAspectRatio_;
};

std::int32_t LibavOperations::snapshot(ConversionEngine& engine) {
    const std::int32_t index = engine.currentIndex;
    const bool inTable =
        index >= 0 && static_cast<std::size_t>(index) < ConversionEngine::kMaxInputs;
    double startSeconds = inTable ? engine.startTimes[static_cast<std::size_t>(index)].load() : 0.0;
    const int result = snapshot_.take(engine.probePath, startSeconds, engine.snapshotPath);
    engine.videoStreamIndex = snapshot_.videoStreamIndex();
    engine.audioStreamIndex = snapshot_.audioStreamIndex();
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
