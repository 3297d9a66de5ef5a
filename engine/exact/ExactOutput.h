#pragma once

#include "AudioEncoder.h"
#include "ExactInput.h"
#include "Job.h"
#include "OutputMedia.h"
#include "PictureWriter.h"
#include "StopFlag.h"
#include "TimedSoundWriter.h"
#include "VideoEncoder.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// The file that an exact job writes, with its encoders. What its streams are like is decided after
/// the job's first input. Belongs to one thread.
class ExactOutput {
public:
    /// Both outlive this object.
    ExactOutput(const Job& job, const StopFlag& stop) : job_(job), stop_(stop) {}

    /// Opens the encoders and the file, and writes the header. 0 or a negative libav error code.
    int begin(const ExactInput& first, bool hasSound);
    /// Those of the input, which is between both times of the output, ticks of the pace's time
    /// base. 0 or a negative code.
    int addChapters(const ExactInput& input, std::int64_t begin, std::int64_t end);
    /// Writes what the encoders hold, and the trailer. `end` is that of the last input, in ticks of
    /// the pace's time base. 0 or a negative code.
    int finish(std::int64_t end);

    // Once it has begun.
    const PictureForm& form() const { return form_; }
    const PicturePace& pace() const { return pace_; }
    PictureWriter& pictures() { return *pictures_; }
    const PictureWriter& pictures() const { return *pictures_; }
    /// Null without sound.
    TimedSoundWriter* sound() { return sound_ ? &*sound_ : nullptr; }
    /// Which sample of the output is at a time of the pace's time base.
    std::int64_t sampleAt(std::int64_t time) const {
        return av_rescale_q(time, pace_.timeBase, {1, job_.audio.sampleRate});
    }
    /// The first time that is not before a sample.
    std::int64_t timeAfter(std::int64_t sample) const {
        return av_rescale_q_rnd(sample, {1, job_.audio.sampleRate}, pace_.timeBase, AV_ROUND_UP);
    }
    double secondsAt(std::int64_t time) const {
        return static_cast<double>(time) * av_q2d(pace_.timeBase);
    }
    bool hasSound() const { return sound_.has_value(); }
    /// Of the sound so far; 0 without.
    double soundSeconds() const;

private:
    int addStreams(const ExactInput& first, bool hasSound);
    int addPictures(const ExactInput& first);
    int openVideoEncoder(const AVStream& source, AVRational duration);
    int addSound(const ExactInput& first);

    const Job& job_;
    const StopFlag& stop_;
    std::optional<OutputMedia> output_;
    VideoEncoder videoEncoder_;
    AudioEncoder audioEncoder_;
    PicturePace pace_;
    PictureForm form_;
    std::optional<PictureWriter> pictures_;
    std::optional<TimedSoundWriter> sound_;
};

} // namespace velmora
