#pragma once

#include "AvHandles.h"
#include "OutputSettings.h"

extern "C" {
#include <libavutil/audio_fifo.h>
}

#include <vector>

namespace velmora {

using AudioFifoHandle = std::unique_ptr<AVAudioFifo, FreeByPointer<av_audio_fifo_free>>;

/// Encodes sound in chunks of the encoder's frame size. Belongs to one input: an encoder that has
/// been drained takes no more.
class AudioEncoder {
public:
    /// 0 or a negative libav error code: no such encoder, or one that refuses the settings. If it
    /// does not offer the usual sample format, it gets the first that it does offer.
    int open(const AudioSettings& settings, const AVOutputFormat& format);

    const AVCodecContext& context() const { return *encoder_; }
    /// Puts what the muxer has to know into `parameters`. 0 or a negative libav error code.
    int describe(AVCodecParameters& parameters) const;

    /// Queues samples in the encoder's format. 0 or a negative libav error code.
    int queue(const AVFrame& samples) { return queue(samples, samples.nb_samples); }
    /// Queues the first `count` of them, which is not more than there are.
    int queue(const AVFrame& samples, int count);
    /// Queues one frame's worth of silence. 0 or a negative libav error code.
    int queueSilence() { return queueSilence(frameSize()); }
    /// Queues `count` samples of silence, at most one frame's worth.
    int queueSilence(int count);
    /// Samples that have been queued since `open`, and the silence that has filled chunks up.
    std::int64_t samplesQueued() const;
    /// Samples in a chunk.
    int frameSize() const;
    bool hasWholeChunk() const;
    bool isEmpty() const;

    /// Encodes the next chunk of the queue; what the queue does not fill is silence. Packets are
    /// stamped by the count of samples since `open`, in the encoder's time base.
    /// 0 or a negative libav error code; the chunk has left the queue in either case.
    int encodeChunk(std::vector<PacketHandle>& packets);
    /// What the encoder still holds. Nothing can be encoded afterwards. 0 or a negative code.
    int drain(std::vector<PacketHandle>& packets);

private:
    FrameHandle dequeueChunk();
    FrameHandle emptyChunk() const;
    int encode(const AVFrame* chunk, std::vector<PacketHandle>& packets);

    CodecContextHandle encoder_;
    AudioFifoHandle queue_;
    std::int64_t samples_ = 0; ///< given to the encoder
};

} // namespace velmora
