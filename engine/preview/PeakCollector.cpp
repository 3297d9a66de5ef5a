#include "PeakCollector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace velmora {
namespace {

/// The lowest and the highest of samples.
template <class Sample> struct Extremes {
    Sample low = std::numeric_limits<Sample>::max();
    Sample high = std::numeric_limits<Sample>::lowest();
};

/// Each lane has extremes of its own, so that the compiler can take many samples at a time, also of
/// floating-point numbers, whose order matters to it. What is no number is passed over.
template <class Sample> Extremes<Sample> extremesOf(const Sample* samples, std::int64_t count) {
    constexpr std::int64_t kLanes = 32 / sizeof(Sample);
    std::array<Sample, kLanes> low;
    std::array<Sample, kLanes> high;
    low.fill(Extremes<Sample>().low);
    high.fill(Extremes<Sample>().high);
    std::int64_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        for (std::int64_t lane = 0; lane < kLanes; ++lane) {
            const Sample sample = samples[i + lane];
            low[lane] = sample < low[lane] ? sample : low[lane];
            high[lane] = sample > high[lane] ? sample : high[lane];
        }
    }
    for (; i < count; ++i) {
        low[0] = samples[i] < low[0] ? samples[i] : low[0];
        high[0] = samples[i] > high[0] ? samples[i] : high[0];
    }
    return {*std::ranges::min_element(low), *std::ranges::max_element(high)};
}

/// In 8 bits.
template <class Sample> std::int8_t scaled(Sample sample) {
    double full = 1.0;
    double value = static_cast<double>(sample);
    if constexpr (std::is_integral_v<Sample>) {
        full = static_cast<double>(std::numeric_limits<Sample>::max());
    }
    if constexpr (std::is_unsigned_v<Sample>) { // of 8 bits, around its middle
        value -= 128.0;
        full = 127.0;
    }
    return static_cast<std::int8_t>(std::lround(std::clamp(value / full, -1.0, 1.0) * 127.0));
}

template <class Sample> void widen(SoundPeak& peak, const Sample* samples, std::int64_t count) {
    const Extremes<Sample> found = extremesOf(samples, count);
    if (found.low > found.high) { // none of them is a number
        return;
    }
    peak.low = std::min(peak.low, scaled(found.low));
    peak.high = std::max(peak.high, scaled(found.high));
}

template <class Sample>
void widenByFrame(SoundPeak& peak, const AVFrame& sound, std::int64_t first, std::int64_t count) {
    const bool isPlanar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(sound.format)) != 0;
    const int channels = sound.ch_layout.nb_channels;
    const int planes = isPlanar ? channels : 1;
    const std::int64_t each = isPlanar ? 1 : channels;
    for (int plane = 0; plane < planes; ++plane) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as the format says
        const auto* samples = reinterpret_cast<const Sample*>(sound.extended_data[plane]);
        widen(peak, samples + first * each, count * each);
    }
}

using Widen = void (*)(SoundPeak&, const AVFrame&, std::int64_t, std::int64_t);

Widen widenFor(int format) {
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(format))) {
    case AV_SAMPLE_FMT_U8:
        return widenByFrame<std::uint8_t>;
    case AV_SAMPLE_FMT_S16:
        return widenByFrame<std::int16_t>;
    case AV_SAMPLE_FMT_S32:
        return widenByFrame<std::int32_t>;
    case AV_SAMPLE_FMT_S64:
        return widenByFrame<std::int64_t>;
    case AV_SAMPLE_FMT_FLT:
        return widenByFrame<float>;
    case AV_SAMPLE_FMT_DBL:
        return widenByFrame<double>;
    default:
        return nullptr;
    }
}

/// The first sample of a peak; the peak of a sample is the last one that begins at or before it.
std::int64_t firstSampleOf(std::int64_t peak, int rate) {
    return (peak * rate + kPeaksPerSecond - 1) / kPeaksPerSecond;
}

} // namespace

PeakCollector::PeakCollector(PeakBlocks wanted, PeakSink sink)
    : wanted_(wanted), sink_(std::move(sink)), block_(wanted.first), peaks_(kPeaksPerBlock) {}

void PeakCollector::add(const AVFrame& sound, std::int64_t place) {
    constexpr int kHighestRate = 10'000'000;
    constexpr std::int64_t kFarthest = std::numeric_limits<std::int64_t>::max() / 1000;
    const Widen widen = widenFor(sound.format);
    const int rate = sound.sample_rate;
    if (widen == nullptr || rate <= 0 || rate > kHighestRate || std::abs(place) > kFarthest) {
        return;
    }
    std::int64_t sample = std::max<std::int64_t>(0, -place);
    while (sample < sound.nb_samples && !isComplete()) {
        const std::int64_t peak = (place + sample) * kPeaksPerSecond / rate;
        const std::int64_t end =
            std::min<std::int64_t>(sound.nb_samples, firstSampleOf(peak + 1, rate) - place);
        if (SoundPeak* const found = peakAt(peak)) {
            widen(*found, sound, sample, end - sample);
        }
        sample = end;
    }
}

/// Null when it lies outside of what is wanted. Gives out all blocks before its own.
SoundPeak* PeakCollector::peakAt(std::int64_t peak) {
    const std::int64_t block = peak / kPeaksPerBlock;
    if (block < block_ || block >= wanted_.end()) {
        return nullptr;
    }
    while (block_ < block) {
        giveOut();
    }
    hasSound_ = true;
    return &peaks_[static_cast<std::size_t>(peak % kPeaksPerBlock)];
}

void PeakCollector::giveOut() {
    sink_(block_, std::exchange(peaks_, std::vector<SoundPeak>(kPeaksPerBlock)));
    ++block_;
    hasSound_ = false;
}

void PeakCollector::finish() {
    while (!isComplete()) {
        giveOut();
    }
}

void PeakCollector::finishAtSoundEnd() {
    if (hasSound_) {
        giveOut();
    }
}

} // namespace velmora
