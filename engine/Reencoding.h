#pragma once

#include "Conversion.h"
#include "OutputSettings.h"
#include "Timing.h"
#include "VideoEncoder.h"

namespace velmora {

/// Pictures and sound are decoded and encoded anew. One video encoder takes the pictures of all
/// inputs; each input has an audio encoder of its own.
class Reencoding : public Conversion {
public:
    Reencoding(const VideoSettings& video, const AudioSettings& audio, Timing timing)
        : video_(video), audio_(audio), timing_(timing) {}

    int setUpVideo(InputMedia& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler) override;
    /// Sound that cannot be decoded is left out.
    int setUpAudio(InputMedia& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler) override;
    void setUpDone(InputMedia& /*input*/) override {}
    std::size_t readAhead() const override;

private:
    int addVideo(InputMedia& input, OutputMedia& output);

    VideoSettings video_;
    const AudioSettings audio_;
    const Timing timing_;
    VideoEncoder encoder_;
};

} // namespace velmora
