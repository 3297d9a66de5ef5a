#include "ProbeSupport.h"

extern "C" {
#include <libavutil/log.h>
}

namespace velmora::test {

void Probe::SetUp() {
    av_log_set_level(AV_LOG_QUIET);
    spoilResults();
}

void Probe::TearDown() {
    engine().reset();
    av_log_set_level(AV_LOG_INFO);
}

int Probe::probeOf(const std::string& path) {
    engine().probePath = path;
    return engine().probe();
}

void Probe::spoilResults() {
    engine().streamCount = engine().videoStreamIndex = engine().audioStreamIndex = -77;
    engine().sourceWidth = engine().sourceHeight = -77;
    engine().sourceFrameRate = -77;
    engine().sourceFrameRateNum = engine().sourceFrameRateDen = -77;
    engine().videoCodecId = engine().videoBitRate = -77;
    engine().audioCodecId = engine().audioBitRate = -77;
    engine().audioSampleRate = engine().audioChannels = -77;
    engine().durationUs = engine().durationFloor = engine().durationSeconds = -77;
}

} // namespace velmora::test
