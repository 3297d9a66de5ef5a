#pragma once

#include "PacketHandler.h"
#include "SoundWriter.h"
#include "VideoTranscoder.h"

#include <memory>

namespace velmora {

/// Re-encodes the pictures of an input that has no sound, with silence beside them.
class SilentInput : public PacketHandler {
public:
    /// `output` is what both write to.
    SilentInput(const OutputMedia& output, std::unique_ptr<VideoTranscoder> pictures,
                SoundWriter sound)
        : output_(output), pictures_(std::move(pictures)), sound_(std::move(sound)) {}

    void prepare(PacketHandle packet) override { pictures_->prepare(std::move(packet)); }
    PacketOutcome handle() override;
    PacketOutcome finish() override;

private:
    const OutputMedia& output_;
    std::unique_ptr<VideoTranscoder> pictures_;
    SoundWriter sound_;
};

} // namespace velmora
