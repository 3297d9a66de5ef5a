#include "SoundPackets.h"

#include "CopiedPacket.h"
#include "TimeBases.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/intreadwrite.h>
}

#include <algorithm>
#include <cstdlib>

namespace velmora {
namespace {

// Longer than what any decoder needs before the first sample that is heard.
constexpr std::int64_t kBeforeOriginUs = 1'000'000;

int bytesPerSample(const AVCodecParameters& parameters) {
    const int bits = av_get_exact_bits_per_sample(parameters.codec_id);
    return bits > 0 && bits % 8 == 0 ? bits / 8 * parameters.ch_layout.nb_channels : 0;
}

/// Tells readers how many samples at the end are not to be heard.
int markEnd(AVPacket& packet, std::int64_t samples) {
    constexpr std::size_t kBytes = 10;
    constexpr std::size_t kEndAt = 4;
    std::uint8_t* data = av_packet_new_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, kBytes);
    if (data == nullptr) {
        return AVERROR(ENOMEM);
    }
    std::fill_n(data, kBytes, std::uint8_t{0});
    AV_WL32(data + kEndAt, static_cast<std::uint32_t>(samples));
    return 0;
}

} // namespace

int SoundPackets::open() {
    const int result = sound_.open();
    return result >= 0 && stream().codecpar->sample_rate <= 0 ? AVERROR_INVALIDDATA : result;
}

int SoundPackets::goTo(std::int64_t origin, AVRational timeBase, std::int64_t endUs,
                       const AVOutputFormat& format) {
    const AVCodecParameters& parameters = *stream().codecpar;
    origin_ = av_rescale_q(origin, timeBase, this->timeBase());
    bytesPerSample_ = bytesPerSample(parameters);
    marksEnd_ = av_match_name(format.name, "matroska,webm") != 0 && bytesPerSample_ == 0;
    cut_.emplace(SoundCut::Rule{.end = endUs == SoundCut::kToTheEnd
                                           ? SoundCut::kToTheEnd
                                           : av_rescale_q(endUs, kMicrosecond, this->timeBase()),
                                .abilities = soundAbilities(format),
                                .preRoll = soundPreRoll(parameters.codec_id),
                                .splits = bytesPerSample_ > 0});
    const std::int64_t from = av_rescale_q(origin, timeBase, stream().time_base) -
                              av_rescale_q(kBeforeOriginUs, kMicrosecond, stream().time_base);
    const bool isAtStart = from <= stream().start_time && stream().start_time != AV_NOPTS_VALUE;
    return !isAtStart && sound_.seek(from) >= 0 ? 0 : sound_.rewind();
}

/// By the codec where it tells, else by the container.
std::int64_t SoundPackets::samplesOf(const AVPacket& packet) const {
    if (bytesPerSample_ > 0) {
        return packet.size / bytesPerSample_;
    }
    const int told = av_get_audio_frame_duration2(stream().codecpar, packet.size);
    return told > 0 ? told : av_rescale_q(packet.duration, stream().time_base, timeBase());
}

/// Coarse ticks are not to move packets that follow each other.
std::int64_t SoundPackets::timeOf(const AVPacket& packet) {
    const std::int64_t ticks = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (ticks == AV_NOPTS_VALUE) {
        return expected_ != AV_NOPTS_VALUE ? expected_ : -origin_;
    }
    const std::int64_t told = av_rescale_q(ticks, stream().time_base, timeBase()) - origin_;
    const std::int64_t tolerated =
        std::max(av_rescale_q(2, stream().time_base, timeBase()), INT64_C(2));
    const bool follows = expected_ != AV_NOPTS_VALUE && std::llabs(told - expected_) <= tolerated;
    return follows ? expected_ : told;
}

/// False at the end.
bool SoundPackets::readOne() {
    PacketHandle packet = sound_.readPacket();
    if (packet == nullptr) {
        return false;
    }
    const std::int64_t samples = samplesOf(*packet);
    if (samples <= 0) {
        return true; // holds nothing
    }
    const std::int64_t time = timeOf(*packet);
    expected_ = time + samples;
    held_.push_back(std::move(packet));
    for (const SoundCut::Part& part : cut_->add(time, samples)) {
        ready_.push_back(written(part, *held_[part.number - firstHeld_]));
    }
    const std::size_t kept = ready_.empty() ? 4 : 0;
    while (held_.size() > kept) {
        held_.pop_front();
        ++firstHeld_;
    }
    return !cut_->hasEnded();
}

PacketHandle SoundPackets::written(const SoundCut::Part& part, const AVPacket& packet) const {
    PacketHandle copy(av_packet_clone(&packet));
    if (copy == nullptr) {
        return nullptr;
    }
    stripToContent(*copy);
    copy->flags &= ~AV_PKT_FLAG_DISCARD;
    copy->pts = copy->dts = part.time;
    copy->duration = part.duration;
    if (bytesPerSample_ > 0) {
        copy->data += part.skipped * bytesPerSample_;
        copy->size = static_cast<int>(part.duration) * bytesPerSample_;
    } else if (part.left > 0 && marksEnd_) {
        copy->duration += part.left;
        if (markEnd(*copy, part.left) < 0) {
            return nullptr;
        }
    }
    return copy;
}

const AVPacket* SoundPackets::peek() {
    while (ready_.empty() && !ended_) {
        ended_ = !readOne();
    }
    return ready_.empty() ? nullptr : ready_.front().get();
}

PacketHandle SoundPackets::next() {
    if (peek() == nullptr) {
        return nullptr;
    }
    PacketHandle packet = std::move(ready_.front());
    ready_.pop_front();
    return packet;
}

} // namespace velmora
