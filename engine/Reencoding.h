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
    /// `frameRate` becomes the source's where the settings ask for that.
    Reencoding(const VideoSettings& video, const AudioSettings& audio, Timing timing,
               double& frameRate)
        : video_(video), audio_(audio), timing_(timing), frameRate_(frameRate) {}

    int setUpVideo(InputMedia& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler) override;
    /// Sound that cannot be decoded is left out.
    int setUpAudio(InputMedia& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler) override;
    void setUpDone(InputMedia& /*input*/) override {}
    std::size_t readAhead() const override { return readAhead_; }

private:
    int addVideo(InputMedia& input, OutputMedia& output);

    const VideoSettings video_;
    const AudioSettings audio_;
    const Timing timing_;
    double& frameRate_; ///< pictures per second; 0.0: as the source
    VideoEncoder encoder_;
    std::size_t readAhead_ = 1;
};

} // namespace velmora
