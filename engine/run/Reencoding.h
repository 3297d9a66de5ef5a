#pragma once

#include "Conversion.h"
#include "OutputSettings.h"
#include "SoundWriter.h"
#include "StopFlag.h"
#include "Timing.h"
#include "VideoEncoder.h"

namespace velmora {

class VideoTranscoder;

/// Pictures and sound are decoded and encoded anew. One video encoder takes the pictures of all
/// inputs; each input has an audio encoder of its own. In a join, silence follows sound that ends
/// before its pictures, and stands in for sound that an input does not have or that cannot be
/// decoded (a cut leaves it out), so that what comes next starts with its pictures: both stay
/// together within a picture and a frame of sound at every joint. Pictures catch up with sound that
/// is ahead. Both depend on how far each has come when a packet is handled, so a join takes its
/// packets in the order of their times: many files hold half a second of sound before the pictures
/// that go with it.
class Reencoding : public Conversion {
public:
    /// Once `stop` is raised no silence is added any more.
    Reencoding(const VideoSettings& video, const AudioSettings& audio, Timing timing,
               const StopFlag* stop)
        : video_(video), audio_(audio), timing_(timing), stop_(stop) {}

    /// Sound that cannot be decoded is left out of a cut; in a join, silence replaces it.
    int setUp(RunInput& input, OutputMedia& output, bool isFirst, InputHandlers& handlers) override;
    std::size_t readAhead() const override { return readAhead_; }

private:
    int setUpVideo(RunInput& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<VideoTranscoder>& pictures);
    int setUpAudio(RunInput& input, OutputMedia& output, bool isFirst, VideoTranscoder* pictures,
                   std::unique_ptr<PacketHandler>& handler);
    int setUpSilence(RunInput& input, OutputMedia& output, bool isFirst,
                     std::unique_ptr<VideoTranscoder> pictures,
                     std::unique_ptr<PacketHandler>& handler);
    int addVideo(RunInput& input, OutputMedia& output);
    int addAudio(const AudioEncoder& encoder, const AVStream& source, OutputMedia& output);
    bool needsSilence(const RunInput& input, OutputMedia& output, bool isFirst) const;
    SoundWriter writerOf(AudioEncoder encoder, OutputMedia& output);

    const VideoSettings video_;
    const AudioSettings audio_;
    const Timing timing_;
    const StopFlag* stop_;
    VideoEncoder encoder_;
    std::int64_t lastPictureTicks_ = 0; ///< of the last picture written, of all inputs
    VorbisParserHandle vorbis_; ///< tells how long joined Vorbis packets are; null elsewhere
    std::size_t readAhead_ = 1;
};

} // namespace velmora
