#include "Job.h"

#include "ConversionEngine.h"
#include "Saturated.h"

#include <algorithm>

namespace velmora {
namespace {

constexpr int kPathBytes = 256; // of a new row; the path that replaces it may be longer

/// A row up to its first NUL; a row that is missing is empty.
std::string rowOf(const StringTable& table, std::size_t index) {
    return index < table.size() ? table[index].substr(0, table[index].find('\0')) : std::string();
}

StringTable tableOf(const std::vector<std::string>& paths) {
    StringTable table =
        ConversionEngine::allocStringTable(static_cast<int>(paths.size()), kPathBytes);
    std::ranges::copy(paths, table.begin());
    return table;
}

void loadInputs(ConversionEngine& engine, const Job& job) {
    engine.jobCount = job.inputCount;
    engine.inputCount = job.inputCount;
    engine.inputPaths = tableOf(job.inputPaths);
    engine.outputPaths = tableOf(job.outputPaths);
    // A longer job is refused by the engine; its tables end here.
    const std::size_t rows = std::min(job.startSeconds.size(), ConversionEngine::kMaxInputs);
    for (std::size_t i = 0; i < rows; ++i) {
        engine.startTimes[i] = job.startSeconds[i];
        engine.endTimes[i] = job.endSeconds[i];
        if (!job.joins) {
            engine.spans[i] = job.spanSeconds[i];
        }
    }
    engine.joinTotalMs = job.joinSeconds;
}

void loadSettings(ConversionEngine& engine, const VideoSettings& video,
                  const AudioSettings& audio) {
    engine.audioCodecId = audio.codec;
    engine.audioBitRate = saturated(audio.bitRate);
    engine.audioSampleRate = audio.sampleRate;
    engine.audioChannels = audio.channels;
    engine.videoCodecId = video.codec;
    engine.videoBitRate = saturated(video.bitRate);
    engine.videoWidth = video.width;
    engine.videoHeight = video.height;
    engine.videoFrameRate = video.frameRate;
}

} // namespace

Job::Job(const ConversionEngine& engine)
    : inputCount(std::max(engine.inputCount, 0)),
      joinSeconds(engine.joinTotalMs), video{.codec = static_cast<AVCodecID>(engine.videoCodecId),
                                             .bitRate = engine.videoBitRate,
                                             .width = engine.videoWidth,
                                             .height = engine.videoHeight,
                                             .frameRate = engine.videoFrameRate},
      audio{.codec = static_cast<AVCodecID>(engine.audioCodecId),
            .bitRate = engine.audioBitRate,
            .sampleRate = engine.audioSampleRate,
            .channels = engine.audioChannels},
      videoCodecChosen(engine.videoCodecChosen != 0), joins(engine.joinMode != 0),
      reencodes(engine.reencode != 0) {
    const std::size_t rows =
        std::min(static_cast<std::size_t>(inputCount), ConversionEngine::kMaxInputs);
    for (std::size_t i = 0; i < rows; ++i) {
        inputPaths.push_back(rowOf(engine.inputPaths, i));
        outputPaths.push_back(rowOf(engine.outputPaths, i));
        startSeconds.push_back(engine.startTimes[i]);
        endSeconds.push_back(engine.endTimes[i]);
        spanSeconds.push_back(engine.spans[i]);
    }
}

void Job::add(const std::string& input, const std::string& output, double start, double end) {
    constexpr double kPartsOfLength = 1000.0;
    ++inputCount;
    inputPaths.push_back(input);
    outputPaths.push_back(output);
    startSeconds.push_back(start);
    endSeconds.push_back(end);
    spanSeconds.push_back(end - start);
    if (joins) {
        joinSeconds = truncated(joinSeconds + end * kPartsOfLength);
    }
}

void load(ConversionEngine& engine, const Job& job) {
    loadInputs(engine, job);
    engine.videoCodecChosen = job.videoCodecChosen ? 1 : 0;
    if (job.inputCount > 0) {
        loadSettings(engine, job.video, job.audio);
    }
    engine.currentIndex = -1;
    engine.stopRequested = 0;
    engine.currentPercent = 0;
    engine.joinMode = job.joins ? 1 : 0;
    engine.reencode = job.reencodes ? 1 : 0;
}

} // namespace velmora
