#pragma once

#include "AudioEncoder.h"
#include "OutputMedia.h"
#include "PacketHandler.h"
#include "Timing.h"

extern "C" {
#include <libswresample/swresample.h>
}

#include <deque>
#include <utility>
#include <vector>

namespace velmora {

using ResamplerHandle = std::unique_ptr<SwrContext, FreeByAddress<swr_free>>;

/// Decodes the packets of one input's audio stream, brings the sound into the encoder's format, and
/// encodes, stamps and writes it.
class AudioTranscoder : public PacketHandler {
public:
    /// `decoder` outlives this object.
    AudioTranscoder(OutputMedia& output, OutputStream& stream, AVCodecContext& decoder,
                    AudioEncoder encoder, Timing timing);

    void prepare(PacketHandle packet) override { prepared_.push_back(std::move(packet)); }
    PacketOutcome handle() override;
    PacketOutcome finish() override;

private:
    PacketOutcome take(const AVFrame& sound);
    int prepareResampler(const AVFrame& sound);
    FrameHandle resampled(const AVFrame& sound);
    PacketOutcome queue(const AVFrame& sound);
    PacketOutcome encodeWholeChunks();
    PacketOutcome encodeChunk();
    PacketOutcome write(const std::vector<PacketHandle>& packets);
    PacketOutcome write(AVPacket& packet);
    void stampBySamples(AVPacket& packet) const;

    OutputMedia& output_;
    OutputStream& stream_;
    AVCodecContext& decoder_;
    AudioEncoder encoder_;
    const bool stampsBySamples_;
    const std::int64_t firstSample_; ///< of this input, in the output
    std::deque<PacketHandle> prepared_;
    ResamplerHandle resampler_; ///< null: the sound has the encoder's format
    ChannelLayout inputLayout_;
    int inputRate_ = 0;
    int inputFormat_ = AV_SAMPLE_FMT_NONE;
};

} // namespace velmora
