#pragma once

#include "AudioFormat.h"
#include "DecodedStream.h"

extern "C" {
#include <libswresample/swresample.h>
}

#include <cstdint>
#include <string>

namespace velmora {

using ResamplerHandle = std::unique_ptr<SwrContext, FreeByAddress<swr_free>>;

/// The sound of a source from one moment on, without gaps, in one format: where the source has
/// none there is silence, what it has twice is left out, and where its samples and its times drift
/// apart, they are stretched to its times. Belongs to one thread.
class SoundReader {
public:
    /// Reads end early once `stop` is raised; null: never.
    SoundReader(std::string path, const StopFlag* stop)
        : sound_(std::move(path), DecodedStream::Kind::Sound, stop) {}

    /// 0, AVERROR_STREAM_NOT_FOUND without sound, or another negative libav error code.
    int open(const AudioFormat& format);
    const AVStream& stream() const { return sound_.stream(); }

    /// What is given next begins at `origin`, in ticks of `timeBase` on the container's time line.
    /// 0 or a negative code.
    int goTo(std::int64_t origin, AVRational timeBase);
    /// The next samples in the format; null at the end of the sound.
    FrameHandle next();

    /// Packets that could not be decoded so far.
    std::int64_t damagedPackets() const { return sound_.damagedPackets(); }

private:
    int prepareResampler(const AVFrame& sound);
    FrameHandle placed(FrameHandle sound);
    FrameHandle silence(std::int64_t samples, const AVFrame& like);
    FrameHandle converted(const AVFrame* sound);
    std::int64_t samplesFromOrigin(const AVFrame& sound) const;
    bool isBeyondTheEnd(const AVFrame& sound) const;
    void follow(std::int64_t early, int rate);

    DecodedStream sound_;
    AudioFormat format_;
    std::int64_t origin_ = 0;
    AVRational originTimeBase_{1, AV_TIME_BASE};
    std::int64_t expected_ = 0; ///< samples of the source since the origin
    double drift_ = 0;          ///< mean of how far the times are from the count, samples
    FrameHandle waiting_;       ///< comes after a silence that was put before it
    ResamplerHandle resampler_;
    ChannelLayout inputLayout_;
    int inputRate_ = 0;
    int inputFormat_ = AV_SAMPLE_FMT_NONE;
    bool drained_ = false;
};

} // namespace velmora
