#include "MediaJob.h"

#include "ConversionEngine.h"
#include "EngineLog.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace velmora::fuzz {
namespace {

/// A folder in memory, removed at the end of the process.
class OutputFolder {
public:
    OutputFolder() : path_("/dev/shm/velmora-fuzz-" + std::to_string(getpid())) {
        std::filesystem::create_directory(path_);
    }
    ~OutputFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    std::string operator/(const std::string& name) const { return path_ + '/' + name; }

private:
    std::string path_;
};

const OutputFolder& outputFolder() {
    static const OutputFolder folder;
    return folder;
}

void fill(ConversionEngine& engine, const std::vector<std::string>& inputs,
          const std::string& output) {
    const auto count = static_cast<int>(inputs.size());
    engine.inputCount = count;
    engine.jobCount = count;
    engine.inputPaths = inputs;
    engine.outputPaths.assign(inputs.size(), output);
    engine.currentIndex = -1;
    engine.stopRequested = 0;
}

void chooseEncoders(ConversionEngine& engine) {
    engine.reencode = 1;
    engine.videoCodecId = AV_CODEC_ID_MPEG4;
    engine.audioCodecId = AV_CODEC_ID_AAC;
    engine.videoBitRate = 200'000;
    engine.audioBitRate = 128'000;
    engine.videoWidth = 64;
    engine.videoHeight = 48;
    engine.videoFrameRate = 0.0;
    engine.audioSampleRate = 44'100;
    engine.audioChannels = 2;
}

/// A finished run leaves every input done or failed, or pending where the run itself has ended.
void requireStates(const ConversionEngine& engine) {
    for (int i = 0; i < engine.inputCount; ++i) {
        const int state = engine.fileStates[static_cast<std::size_t>(i)];
        const bool known = state == ConversionEngine::Done || state == ConversionEngine::Failed ||
                           state == ConversionEngine::Pending;
        if (!known || engine.currentPercent < 0 || engine.currentPercent > 100) {
            std::abort();
        }
    }
}

} // namespace

ConversionEngine& cleanEngine() {
    setLogSink([](const char*) {});
    ConversionEngine& engine = ConversionEngine::instance();
    engine.reset();
    engine.reencode = 0;
    engine.joinMode = 0;
    engine.joinTotalMs = 0;
    return engine;
}

void probeAndPreview(const std::string& path) {
    ConversionEngine& engine = cleanEngine();
    engine.probePath = path;
    engine.snapshotPath = outputFolder() / "picture.bmp";
    engine.currentIndex = 0;
    engine.startTimes[0] = 0.0;
    const int code = engine.probe();
    engine.snapshot();
    if (code == 0 && engine.durationUs > 0) {
        engine.startTimes[0] = static_cast<double>(engine.durationUs) / 2e6;
        engine.snapshot();
    }
}

void cutAndJoin(const std::string& path, const std::string& extension, bool reencode) {
    ConversionEngine& engine = cleanEngine();
    if (reencode) {
        chooseEncoders(engine);
    }
    fill(engine, {path}, outputFolder() / ("cut." + extension));
    engine.startTimes[0] = 0.1;
    engine.spans[0] = 1.0;
    engine.run();
    requireStates(engine);

    fill(engine, {path, path}, outputFolder() / ("join." + extension));
    engine.startTimes[0] = 0.0;
    engine.startTimes[1] = 0.0;
    engine.joinMode = 1;
    engine.joinTotalMs = 2;
    engine.run();
    requireStates(engine);
}

} // namespace velmora::fuzz
