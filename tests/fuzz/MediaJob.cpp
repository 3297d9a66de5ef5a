#include "MediaJob.h"

#include "ConversionEngine.h"
#include "EngineLog.h"
#include "Job.h"

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

void chooseEncoders(Job& job) {
    job.reencodes = true;
    job.video = {.codec = AV_CODEC_ID_MPEG4, .bitRate = 200'000, .width = 64, .height = 48};
    job.audio = {.codec = AV_CODEC_ID_AAC, .bitRate = 128'000, .sampleRate = 44'100, .channels = 2};
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
    Job cut;
    Job join;
    join.joins = true;
    if (reencode) {
        chooseEncoders(cut);
        chooseEncoders(join);
    }
    cut.add(path, outputFolder() / ("cut." + extension), 0.1, 1.1);
    for (int i = 0; i < 2; ++i) {
        join.add(path, outputFolder() / ("join." + extension), 0.0, 0.001);
    }
    for (const Job& job : {cut, join}) {
        load(engine, job);
        engine.run(job);
        requireStates(engine);
    }
}

} // namespace velmora::fuzz
