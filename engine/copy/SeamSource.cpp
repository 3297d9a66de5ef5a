#include "SeamSource.h"

#include "EngineLog.h"
#include "TimeBases.h"

namespace velmora {

int SeamSource::open() {
    if (pictures_) {
        return 0;
    }
    pictures_.emplace(path_, stop_);
    return pictures_->open();
}

int SeamSource::encode(const std::vector<std::int64_t>& times, SeamEncoder& encoder) {
    int result = open();
    if (result >= 0) {
        result = pictures_->goTo(
            av_rescale_q_rnd(times.front(), pictures_->timeBase(), kMicrosecond, AV_ROUND_DOWN));
    }
    const std::int64_t damaged = result >= 0 ? pictures_->damagedPackets() : 0;
    for (std::size_t i = 0; i < times.size() && result >= 0; ++i) {
        const FrameHandle picture = isRaised(stop_) ? nullptr : pictures_->next();
        const bool isIt = picture != nullptr && picture->pts == times[i];
        result = isIt ? encoder.encode(*picture) : AVERROR_INVALIDDATA;
    }
    if (result >= 0 && pictures_->damagedPackets() == damaged) {
        return encoder.finish();
    }
    if (!isRaised(stop_)) {
        logFailure(path_, Operation::EncodeEnds, result < 0 ? result : AVERROR_INVALIDDATA);
    }
    return result < 0 ? result : AVERROR_INVALIDDATA;
}

} // namespace velmora
