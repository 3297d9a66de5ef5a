#include "PeakReader.h"

#include "PeakCollector.h"
#include "TimeBases.h"

namespace velmora {
namespace {

// A damaged time may lie beyond the end by itself; so many after one another do not.
constexpr int kSureOfTheEnd = 16;

/// Follows where decoded sound lies.
class SoundPlace {
public:
    explicit SoundPlace(const DecodedStream& sound)
        : timeBase_(sound.stream().time_base), startUs_(sound.input().startUs()) {}

    /// Samples since the container's start. What has no time follows what came before it.
    std::int64_t of(const AVFrame& frame) {
        const AVRational sample{1, frame.sample_rate};
        if (frame.sample_rate > 0 && frame.pts != AV_NOPTS_VALUE) {
            next_ = av_rescale_q(frame.pts, timeBase_, sample) -
                    av_rescale_q(startUs_, kMicrosecond, sample);
        }
        const std::int64_t place = next_;
        next_ += frame.nb_samples;
        return place;
    }

private:
    const AVRational timeBase_;
    const std::int64_t startUs_;
    std::int64_t next_ = 0;
};

bool isAfter(PeakBlocks wanted, const AVFrame& frame, std::int64_t place) {
    return frame.sample_rate > 0 && av_compare_ts(place, {1, frame.sample_rate}, wanted.end(),
                                                  {kPeaksPerBlock, kPeaksPerSecond}) >= 0;
}

PeaksEnd collect(DecodedStream& sound, PeakBlocks wanted, PeakCollector& collector,
                 const StopFlag* stop) {
    SoundPlace place(sound);
    for (int after = 0; after < kSureOfTheEnd;) {
        const FrameHandle frame = sound.next();
        if (isRaised(stop)) {
            return PeaksEnd::Stopped;
        }
        if (frame == nullptr) {
            collector.finishAtSoundEnd();
            return PeaksEnd::SoundEnd;
        }
        const std::int64_t at = place.of(*frame);
        after = isAfter(wanted, *frame, at) ? after + 1 : 0;
        collector.add(*frame, at);
    }
    collector.finish();
    return PeaksEnd::Read;
}

} // namespace

bool PeakReader::goTo(std::int64_t block) {
    if (!isOpen_ && sound_.open() < 0) {
        return false;
    }
    isOpen_ = true;
    return sound_.beginBefore(sound_.input().startUs() + block * kPeakBlockUs) >= 0;
}

PeaksEnd PeakReader::read(PeakBlocks wanted, const PeakSink& sink) {
    const bool isThere = goTo(wanted.first);
    if (isRaised(stop_)) {
        return PeaksEnd::Stopped;
    }
    if (!isThere) {
        return PeaksEnd::NoSound;
    }
    PeakCollector collector(wanted, sink);
    return collect(sound_, wanted, collector, stop_);
}

} // namespace velmora
