#pragma once

#include "Decoder.h"
#include "PacketHandler.h"
#include "SoundWriter.h"

extern "C" {
#include <libswresample/swresample.h>
}

#include <deque>
#include <functional>
#include <utility>

namespace velmora {

using ResamplerHandle = std::unique_ptr<SwrContext, FreeByAddress<swr_free>>;

/// Decodes the packets of one input's audio stream, brings the sound into the encoder's format and
/// writes it.
class AudioTranscoder : public PacketHandler {
public:
    /// `decoder` outlives this object. `drainPictures` is called once the input has ended: up
    /// to what it gives, in seconds of the output, silence follows the sound; without it, none
    /// does.
    AudioTranscoder(Decoder& decoder, SoundWriter writer, std::function<double()> drainPictures);

    void prepare(PacketHandle packet) override { prepared_.push_back(std::move(packet)); }
    PacketOutcome handle() override;
    PacketOutcome finish() override;

private:
    PacketOutcome convert(const AVFrame& sound);
    int prepareResampler(const AVFrame& sound);
    FrameHandle resampled(const AVFrame& sound);

    Decoder& decoder_;
    SoundWriter writer_;
    std::function<double()> drainPictures_;
    std::deque<PacketHandle> prepared_;
    ResamplerHandle resampler_; ///< null: the sound has the encoder's format
    ChannelLayout inputLayout_;
    int inputRate_ = 0;
    int inputFormat_ = AV_SAMPLE_FMT_NONE;
};

} // namespace velmora
