#include "AudioCopier.h"

#include "CopiedPacket.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora {

AudioCopier::AudioCopier(OutputMedia& output, OutputStream& stream, const AVStream& source)
    : output_(output), stream_(stream), source_(source) {}

PacketOutcome AudioCopier::handle() {
    const PacketHandle packet = std::move(prepared_.front());
    prepared_.pop_front();
    if (packet->size == 0) {
        return PacketOutcome::Done;
    }
    const std::int64_t samples = samplesIn(*packet);
    stripToContent(*packet);
    PacketClock& clock = stream_.clock;
    packet->pts = packet->dts = clock.ticks();
    packet->duration = clock.ticksAt(clock.units() + samples) - packet->dts;
    // A failed write does not end a copy, unless the file itself takes no more.
    if (output_.write(stream_, *packet) >= 0) {
        clock.advance(samples);
    }
    return output_.fileError() < 0 ? PacketOutcome::FailedEnd : PacketOutcome::Done;
}

std::int64_t AudioCopier::samplesIn(const AVPacket& packet) {
    const int byCodec = av_get_audio_frame_duration2(source_.codecpar, packet.size);
    return byCodec > 0 ? byCodec : samplesByTime(packet);
}

// A container's time stamps may be much coarser than a sample. Counting from the first packet to
// the end of this one lets no error add up.
std::int64_t AudioCopier::samplesByTime(const AVPacket& packet) {
    const std::int64_t duration = toSamples(packet.duration);
    std::int64_t samples = duration;
    if (timedFrom_ != AV_NOPTS_VALUE && packet.pts != AV_NOPTS_VALUE) {
        samples = toSamples(packet.pts + packet.duration - timedFrom_) - timedSamples_;
    }
    const std::int64_t tolerance = 2 * toSamples(1) + 1;
    if (timedFrom_ == AV_NOPTS_VALUE || std::abs(samples - duration) > tolerance) {
        timedFrom_ = packet.pts; // the first packet, or one after a gap
        timedSamples_ = 0;
        samples = duration;
    }
    samples = std::max(samples, INT64_C(1));
    timedSamples_ += samples;
    return samples;
}

std::int64_t AudioCopier::toSamples(std::int64_t sourceTicks) const {
    return av_rescale_q(sourceTicks, source_.time_base, stream_.unit);
}

} // namespace velmora
