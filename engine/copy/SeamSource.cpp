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

int SeamSource::encode(const std::vector<std::int64_t>& times, SeamEncoder& encoder,
                       const Write& write) {
    int result = open();
    if (result >= 0) {
        result = pictures_->goTo(
            av_rescale_q_rnd(times.front(), pictures_->timeBase(), kMicrosecond, AV_ROUND_DOWN));
    }
    const std::int64_t damaged = result >= 0 ? pictures_->damagedPackets() : 0;
    if (result >= 0) {
        result = encodeAll(times, encoder, write);
    }
    if (result >= 0 && pictures_->damagedPackets() != damaged) {
        result = AVERROR_INVALIDDATA;
    }
    if (result < 0 && !isRaised(stop_)) {
        logFailure(path_, Operation::EncodeEnds, result);
    }
    return result;
}

int SeamSource::encodeAll(const std::vector<std::int64_t>& times, SeamEncoder& encoder,
                          const Write& write) {
    std::size_t written = 0;
    int result = 0;
    for (std::size_t i = 0; i <= times.size() && result >= 0; ++i) {
        if (i < times.size()) {
            const FrameHandle picture = isRaised(stop_) ? nullptr : pictures_->next();
            const bool isIt = picture != nullptr && picture->pts == times[i];
            result = isIt ? encoder.encode(*picture) : AVERROR_INVALIDDATA;
        } else {
            result = encoder.finish();
        }
        for (const PacketHandle& packet : encoder.releasePackets()) {
            if (result >= 0 && written == times.size()) {
                result = AVERROR_INVALIDDATA; // more than there were pictures
            }
            result = result >= 0 ? write(*packet, times[written++]) : result;
        }
    }
    return result;
}

} // namespace velmora
