#include "SoundWriter.h"

#include "EngineLog.h"

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

/// Sound that cannot be encoded fails the input, which is read to its end all the same.
PacketOutcome outcomeOf(int result) {
    if (result < 0) {
        logFailure("sound", Operation::EncodeSound, result);
    }
    return result < 0 ? PacketOutcome::FailedGoOn : PacketOutcome::Done;
}

} // namespace

SoundWriter::SoundWriter(OutputMedia& output, OutputStream& stream, AudioEncoder encoder,
                         Timing timing, const StopFlag* stop, AVVorbisParseContext* vorbis)
    : output_(output), stream_(stream), encoder_(std::move(encoder)),
      stampsBySamples_(timing == Timing::Cut || format().codec_id == AV_CODEC_ID_VORBIS),
      // Only a cut counts anew: in a join, sound that starts at 0 again would be refused.
      firstSample_(timing == Timing::Cut ? 0 : stream.clock.units()),
      startSeconds_(stream.clock.seconds()), stop_(stop), vorbis_(vorbis) {}

// Sound for which there is no memory is left out, which does not fail the input.
PacketOutcome SoundWriter::write(const AVFrame& sound) {
    if (const int result = encoder_.queue(sound); result < 0) {
        logFailure("sound", Operation::QueueSound, result);
    }
    return encodeWholeChunks();
}

PacketOutcome SoundWriter::fillUntil(double seconds) {
    auto outcome = PacketOutcome::Done;
    while (outcome == PacketOutcome::Done && !isRaised(stop_) &&
           secondsAfter(encoder_.frameSize()) <= seconds) {
        const auto queued = outcomeOf(encoder_.queueSilence());
        const auto encoded = encodeWholeChunks();
        outcome = worse(queued, encoded);
    }
    return outcome;
}

/// Where the output's sound is once all that was given to the encoder, and `samples` more, have
/// been written.
double SoundWriter::secondsAfter(std::int64_t samples) const {
    const auto queued = static_cast<double>(encoder_.samplesQueued() + samples);
    return startSeconds_ + queued / format().sample_rate;
}

PacketOutcome SoundWriter::finish() {
    auto outcome = PacketOutcome::Done;
    while (!encoder_.isEmpty()) {
        outcome = worse(outcome, encodeChunk());
    }
    std::vector<PacketHandle> packets;
    const int result = encoder_.drain(packets);
    outcome = worse(outcome, write(packets));
    return worse(outcome, outcomeOf(result));
}

PacketOutcome SoundWriter::encodeWholeChunks() {
    while (encoder_.hasWholeChunk()) {
        if (const auto outcome = encodeChunk(); outcome != PacketOutcome::Done) {
            return outcome;
        }
    }
    return PacketOutcome::Done;
}

PacketOutcome SoundWriter::encodeChunk() {
    std::vector<PacketHandle> packets;
    const int result = encoder_.encodeChunk(packets);
    const auto written = write(packets);
    return worse(written, outcomeOf(result));
}

PacketOutcome SoundWriter::write(const std::vector<PacketHandle>& packets) {
    auto outcome = PacketOutcome::Done;
    for (const PacketHandle& packet : packets) {
        outcome = worse(outcome, write(*packet));
    }
    return outcome;
}

PacketOutcome SoundWriter::write(AVPacket& packet) {
    PacketClock& clock = stream_.clock;
    const int samples = samplesIn(packet);
    if (stampsBySamples_) {
        stampBySamples(packet);
    } else {
        packet.dts = clock.ticks();
    }
    packet.pts = packet.dts;
    const std::int64_t dts = packet.dts; // the muxer takes the packet
    packet.duration = clock.ticksAt(clock.units() + samples) - clock.ticks();
    av_packet_free_side_data(&packet);
    if (output_.write(stream_, packet) < 0) {
        return PacketOutcome::FailedGoOn;
    }
    clock.continueFrom(dts);
    clock.advance(samples);
    return PacketOutcome::Done;
}

/// How many a decoder makes of it.
int SoundWriter::samplesIn(const AVPacket& packet) const {
    if (vorbis_ != nullptr) {
        // Depends on the packet before, which may be the last one of the input before: the encoder,
        // made for this input, cannot know that, and its first and last packets end up longer.
        return std::max(av_vorbis_parse_frame(vorbis_, packet.data, packet.size), 0);
    }
    return packet.duration > 0
               ? static_cast<int>(packet.duration)
               : av_get_audio_frame_duration2(stream_.stream->codecpar, packet.size);
}

void SoundWriter::stampBySamples(AVPacket& packet) const {
    const PacketClock& clock = stream_.clock;
    packet.dts = av_rescale_q(packet.pts + firstSample_, format().time_base, clock.timeBase());
    // An encoder's first packets lie before its first sample, where a joined input has ended.
    if (firstSample_ > 0) {
        packet.dts = std::max(packet.dts, clock.ticks());
    }
}

} // namespace velmora
