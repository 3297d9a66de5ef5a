#include "Job.h"

#include "ConversionEngine.h"

#include <algorithm>

namespace velmora {
namespace {

/// A row up to its first NUL; a row that is missing is empty.
std::string rowOf(const StringTable& table, std::size_t index) {
    return index < table.size() ? table[index].substr(0, table[index].find('\0')) : std::string();
}

} // namespace

Job::Job(const ConversionEngine& engine)
    : inputCount(std::max(engine.inputCount, 0)), video{.codec = static_cast<AVCodecID>(
                                                            engine.videoCodecId),
                                                        .bitRate = engine.videoBitRate,
                                                        .width = engine.videoWidth,
                                                        .height = engine.videoHeight,
                                                        .frameRate = engine.videoFrameRate},
      audio{.codec = static_cast<AVCodecID>(engine.audioCodecId),
            .bitRate = engine.audioBitRate,
            .sampleRate = engine.audioSampleRate,
            .channels = engine.audioChannels},
      joins(engine.joinMode != 0), reencodes(engine.reencode != 0) {
    const std::size_t rows =
        std::min(static_cast<std::size_t>(inputCount), ConversionEngine::kMaxInputs);
    for (std::size_t i = 0; i < rows; ++i) {
        inputPaths.push_back(rowOf(engine.inputPaths, i));
        outputPaths.push_back(rowOf(engine.outputPaths, i));
        startSeconds.push_back(engine.startTimes[i]);
        spanSeconds.push_back(joins ? engine.joinTotalMs : engine.spans[i].load());
    }
}

} // namespace velmora
