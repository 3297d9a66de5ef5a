#include "AudioTranscoder.h"

#include "EngineLog.h"
#include "MediaLimits.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

/// A frame whose layout is not known has the usual one for its number of channels.
ChannelLayout layoutOf(const AVFrame& sound) {
    ChannelLayout layout;
    if (sound.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(layout.get(), sound.ch_layout.nb_channels);
    } else {
        av_channel_layout_copy(layout.get(), &sound.ch_layout);
    }
    return layout;
}

} // namespace

AudioTranscoder::AudioTranscoder(Decoder& decoder, SoundWriter writer,
                                 std::function<double()> drainPictures)
    : decoder_(decoder), writer_(std::move(writer)), drainPictures_(std::move(drainPictures)) {}

PacketOutcome AudioTranscoder::handle() {
    const PacketHandle packet = std::move(prepared_.front());
    prepared_.pop_front();
    decoder_.send(*packet); // damaged sound is left out
    auto outcome = PacketOutcome::Done;
    while (outcome == PacketOutcome::Done) {
        const FrameHandle sound = decoder_.receive();
        if (sound == nullptr) {
            break;
        }
        outcome = convert(*sound);
    }
    return outcome;
}

PacketOutcome AudioTranscoder::convert(const AVFrame& sound) {
    if (prepareResampler(sound) < 0) {
        return PacketOutcome::FailedEnd;
    }
    if (resampler_ == nullptr) {
        return writer_.write(sound);
    }
    const FrameHandle converted = resampled(sound);
    return converted != nullptr ? writer_.write(*converted) : PacketOutcome::FailedEnd;
}

// Sound may change its format in mid-stream, so every frame is asked.
int AudioTranscoder::prepareResampler(const AVFrame& sound) {
    const AVCodecContext& target = writer_.format();
    const ChannelLayout layout = layoutOf(sound);
    if (sound.sample_rate == inputRate_ && sound.format == inputFormat_ && layout == inputLayout_) {
        return 0;
    }
    inputRate_ = sound.sample_rate;
    inputFormat_ = sound.format;
    inputLayout_ = layout;
    resampler_.reset();
    if (sound.sample_rate == target.sample_rate && sound.format == target.sample_fmt &&
        layout.channels() == target.ch_layout.nb_channels) {
        return 0;
    }
    AVChannelLayout from = *layout.get();
    AVChannelLayout to = target.ch_layout;
    SwrContext* context = nullptr;
    int result = swr_alloc_set_opts2(&context, &to, target.sample_fmt, target.sample_rate, &from,
                                     static_cast<AVSampleFormat>(sound.format), sound.sample_rate,
                                     0, nullptr);
    resampler_.reset(context);
    if (result >= 0) {
        result = swr_init(resampler_.get());
    }
    if (result < 0) {
        logFailure("sound", Operation::Resample, result);
    }
    return result;
}

FrameHandle AudioTranscoder::resampled(const AVFrame& sound) {
    const AVCodecContext& target = writer_.format();
    FrameHandle converted(av_frame_alloc());
    if (converted == nullptr) {
        return nullptr;
    }
    const std::int64_t waiting = swr_get_delay(resampler_.get(), sound.sample_rate);
    const std::int64_t room = av_rescale_rnd(waiting + sound.nb_samples, target.sample_rate,
                                             sound.sample_rate, AV_ROUND_UP);
    if (room <= 0 || room > kMaxSamplesPerFrame) {
        logFailure("sound", Operation::Resample, AVERROR_INVALIDDATA);
        return nullptr;
    }
    converted->nb_samples = static_cast<int>(room);
    converted->format = target.sample_fmt;
    converted->sample_rate = target.sample_rate;
    if (av_channel_layout_copy(&converted->ch_layout, &target.ch_layout) < 0 ||
        av_frame_get_buffer(converted.get(), 0) < 0) {
        return nullptr;
    }
    const bool planar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(sound.format)) != 0;
    const int planes = planar ? sound.ch_layout.nb_channels : 1;
    std::vector<const std::uint8_t*> from(sound.extended_data, sound.extended_data + planes);
    const int count = swr_convert(resampler_.get(), converted->extended_data, converted->nb_samples,
                                  from.data(), sound.nb_samples);
    converted->nb_samples = std::max(count, 0);
    return converted;
}

PacketOutcome AudioTranscoder::finish() {
    prepared_.clear();
    auto outcome = PacketOutcome::Done;
    if (drainPictures_ != nullptr) {
        outcome = writer_.fillUntil(drainPictures_());
    }
    return worse(outcome, writer_.finish());
}

} // namespace velmora
