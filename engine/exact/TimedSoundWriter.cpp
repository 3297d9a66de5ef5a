#include "TimedSoundWriter.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>

namespace velmora {
namespace {

/// These tell how much of what the encoder puts before the sound is to be skipped. In any other
/// container, times below 0 would push all streams back.
bool tellsLeadIn(const AVOutputFormat& format) {
    return av_match_name(format.name, "mp4,mov,ipod,3gp,3g2,matroska,webm") != 0;
}

} // namespace

TimedSoundWriter::TimedSoundWriter(OutputMedia& output, OutputStream& stream, AudioEncoder& encoder,
                                   const StopFlag& stop)
    : output_(output), stream_(stream), encoder_(encoder), stop_(stop) {}

AudioFormat TimedSoundWriter::format() const {
    const AVCodecContext& context = encoder_.context();
    AudioFormat format{.format = context.sample_fmt, .rate = context.sample_rate, .layout = {}};
    av_channel_layout_copy(format.layout.get(), &context.ch_layout);
    return format;
}

int TimedSoundWriter::write(const AVFrame& sound, std::int64_t count) {
    count = std::min<std::int64_t>(count, sound.nb_samples);
    if (count <= 0) {
        return 0;
    }
    const int result = encoder_.queue(sound, static_cast<int>(count));
    if (result < 0) {
        return result;
    }
    samples_ += count;
    return encodeWholeChunks();
}

int TimedSoundWriter::fillUntil(std::int64_t sample) {
    int result = 0;
    while (samples_ < sample && result >= 0 && !isRaised(&stop_)) {
        const std::int64_t count = std::min<std::int64_t>(sample - samples_, encoder_.frameSize());
        result = encoder_.queueSilence(static_cast<int>(count));
        samples_ += count;
        if (result >= 0) {
            result = encodeWholeChunks();
        }
    }
    return result;
}

int TimedSoundWriter::encodeWholeChunks() {
    int result = 0;
    while (encoder_.hasWholeChunk() && result >= 0) {
        std::vector<PacketHandle> packets;
        result = encoder_.encodeChunk(packets);
        if (const int written = write(packets); written < 0) {
            result = written;
        }
    }
    return result;
}

int TimedSoundWriter::finish() {
    ends_ = true;
    std::vector<PacketHandle> packets;
    int result = 0;
    if (!encoder_.isEmpty()) {
        result = encoder_.encodeChunk(packets);
    }
    if (result >= 0) {
        result = encoder_.drain(packets);
    }
    const int written = write(packets);
    return result < 0 ? result : written;
}

int TimedSoundWriter::write(std::vector<PacketHandle>& packets) {
    const AVRational sample = encoder_.context().time_base;
    for (const PacketHandle& packet : packets) {
        if (packet->pts < 0 && !tellsLeadIn(output_.format())) {
            continue;
        }
        if (ends_) {
            if (packet->pts >= samples_) {
                continue;
            }
            packet->duration = std::min(packet->duration, samples_ - packet->pts);
        }
        packet->dts = packet->pts;
        av_packet_free_side_data(packet.get());
        av_packet_rescale_ts(packet.get(), sample, stream_.stream->time_base);
        if (const int result = output_.write(stream_, *packet); result < 0) {
            return result;
        }
    }
    return 0;
}

} // namespace velmora
