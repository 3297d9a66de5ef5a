#include "SoundReader.h"

#include "EngineLog.h"
#include "MediaLimits.h"
#include "TimeBases.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace velmora {
namespace {

// What is further from its place than this is a gap, or there twice; less is drift.
constexpr double kGapSeconds = 0.03;
constexpr double kDriftSeconds = 0.002;
// A longer one must lie within the file.
constexpr std::int64_t kLongestGapSeconds = 60;

FrameHandle emptySound(AVSampleFormat format, int rate, const AVChannelLayout& layout, int count) {
    FrameHandle frame(av_frame_alloc());
    if (frame == nullptr) {
        return nullptr;
    }
    frame->format = format;
    frame->sample_rate = rate;
    frame->nb_samples = count;
    if (av_channel_layout_copy(&frame->ch_layout, &layout) < 0 ||
        av_frame_get_buffer(frame.get(), 0) < 0) {
        return nullptr;
    }
    return frame;
}

/// A frame whose layout is not known has the usual one for its number of channels.
void completeLayout(AVFrame& sound) {
    if (sound.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(&sound.ch_layout, sound.ch_layout.nb_channels);
    }
}

/// The frame without its first `count` samples; null when none is left.
FrameHandle withoutFirst(const AVFrame& sound, std::int64_t count) {
    if (count >= sound.nb_samples) {
        return nullptr;
    }
    const auto format = static_cast<AVSampleFormat>(sound.format);
    FrameHandle rest = emptySound(format, sound.sample_rate, sound.ch_layout,
                                  sound.nb_samples - static_cast<int>(count));
    if (rest != nullptr) {
        av_samples_copy(rest->extended_data, sound.extended_data, 0, static_cast<int>(count),
                        rest->nb_samples, sound.ch_layout.nb_channels, format);
    }
    return rest;
}

} // namespace

int SoundReader::open(const AudioFormat& format) {
    format_ = format;
    return sound_.open();
}

int SoundReader::goTo(std::int64_t origin, AVRational timeBase) {
    origin_ = origin;
    originTimeBase_ = timeBase;
    expected_ = 0;
    drift_ = 0;
    drained_ = false;
    waiting_.reset();
    resampler_.reset();
    inputRate_ = 0;
    return sound_.beginBefore(av_rescale_q(origin_, originTimeBase_, kMicrosecond));
}

FrameHandle SoundReader::next() {
    for (;;) {
        FrameHandle sound = waiting_ != nullptr ? std::move(waiting_) : sound_.next();
        if (sound == nullptr) {
            return drained_ || resampler_ == nullptr ? nullptr : converted(nullptr);
        }
        completeLayout(*sound);
        sound = placed(std::move(sound));
        if (sound == nullptr) {
            continue;
        }
        if (prepareResampler(*sound) < 0) {
            return nullptr;
        }
        expected_ += sound->nb_samples;
        FrameHandle result = converted(sound.get());
        if (result == nullptr || result->nb_samples > 0) {
            return result;
        }
    }
}

std::int64_t SoundReader::samplesFromOrigin(const AVFrame& sound) const {
    const AVRational sample{1, sound.sample_rate};
    return av_rescale_q(sound.pts, stream().time_base, sample) -
           av_rescale_q(origin_, originTimeBase_, sample);
}

/// What of the sound is to come next: all of it, what has not been yet, the silence before it, or
/// nothing.
FrameHandle SoundReader::placed(FrameHandle sound) {
    const int rate = sound->sample_rate;
    if (inputRate_ != 0 && rate != inputRate_) {
        expected_ = av_rescale(expected_, rate, inputRate_);
    }
    const std::int64_t early =
        sound->pts == AV_NOPTS_VALUE ? 0 : samplesFromOrigin(*sound) - expected_;
    const bool begins = expected_ == 0;
    const auto gap = static_cast<std::int64_t>(kGapSeconds * rate);
    if (std::abs(early) <= gap && !begins) {
        follow(early, rate);
        return sound;
    }
    drift_ = 0;
    if (early > kLongestGapSeconds * rate && isBeyondTheEnd(*sound)) {
        return nullptr;
    }
    if (early > 0) {
        FrameHandle before = silence(early, *sound);
        waiting_ = before != nullptr ? std::move(sound) : nullptr;
        return before;
    }
    return early < 0 ? withoutFirst(*sound, -early) : std::move(sound);
}

/// A damaged time must not become years of silence.
bool SoundReader::isBeyondTheEnd(const AVFrame& sound) const {
    const std::int64_t lengthUs = sound_.input().container()->duration;
    return lengthUs > 0 && av_compare_ts(sound.pts, stream().time_base,
                                         sound_.input().startUs() + lengthUs, kMicrosecond) > 0;
}

/// At most a second at a time, however long the gap is.
FrameHandle SoundReader::silence(std::int64_t samples, const AVFrame& like) {
    const auto format = static_cast<AVSampleFormat>(like.format);
    const int count = static_cast<int>(std::min<std::int64_t>(samples, like.sample_rate));
    FrameHandle frame = emptySound(format, like.sample_rate, like.ch_layout, count);
    if (frame != nullptr) {
        av_samples_set_silence(frame->extended_data, 0, count, like.ch_layout.nb_channels, format);
    }
    return frame;
}

/// One frame's time may be rounded; when many agree, the sound is stretched over a second.
void SoundReader::follow(std::int64_t early, int rate) {
    constexpr double kWeight = 0.05;
    drift_ += kWeight * (static_cast<double>(early) - drift_);
    if (resampler_ == nullptr || std::abs(drift_) < kDriftSeconds * rate) {
        return;
    }
    const double delta = drift_ * format_.rate / rate;
    if (swr_set_compensation(resampler_.get(), static_cast<int>(std::lround(delta)),
                             format_.rate) >= 0) {
        expected_ += std::llround(drift_);
        drift_ = 0;
    }
}

int SoundReader::prepareResampler(const AVFrame& sound) {
    ChannelLayout layout;
    av_channel_layout_copy(layout.get(), &sound.ch_layout);
    if (resampler_ != nullptr && sound.sample_rate == inputRate_ && sound.format == inputFormat_ &&
        layout == inputLayout_) {
        return 0;
    }
    inputRate_ = sound.sample_rate;
    inputFormat_ = sound.format;
    inputLayout_ = layout;
    SwrContext* context = nullptr;
    int result = swr_alloc_set_opts2(&context, format_.layout.get(), format_.format, format_.rate,
                                     inputLayout_.get(), static_cast<AVSampleFormat>(inputFormat_),
                                     inputRate_, 0, nullptr);
    resampler_.reset(context);
    if (result >= 0) {
        result = swr_init(resampler_.get());
    }
    if (result < 0) {
        logFailure(sound_.input().path(), Operation::Resample, result);
    }
    return result;
}

/// Without sound: what the resampler still holds.
FrameHandle SoundReader::converted(const AVFrame* sound) {
    drained_ = sound == nullptr;
    const int count = sound != nullptr ? sound->nb_samples : 0;
    const int room = swr_get_out_samples(resampler_.get(), count);
    if (room < 0 || room > kMaxSamplesPerFrame) {
        logFailure(sound_.input().path(), Operation::Resample, AVERROR_INVALIDDATA);
        return nullptr;
    }
    FrameHandle result =
        emptySound(format_.format, format_.rate, *format_.layout.get(), std::max(room, 1));
    if (result == nullptr) {
        return nullptr;
    }
    std::vector<const std::uint8_t*> planes;
    if (sound != nullptr) {
        const bool isPlanar =
            av_sample_fmt_is_planar(static_cast<AVSampleFormat>(sound->format)) != 0;
        planes.assign(sound->extended_data,
                      sound->extended_data + (isPlanar ? sound->ch_layout.nb_channels : 1));
    }
    const int made = swr_convert(resampler_.get(), result->extended_data, result->nb_samples,
                                 sound != nullptr ? planes.data() : nullptr, count);
    result->nb_samples = std::max(made, 0);
    return result;
}

} // namespace velmora
