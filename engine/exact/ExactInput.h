#pragma once

#include "Job.h"
#include "PictureFilter.h"
#include "PictureReader.h"
#include "PictureTiming.h"
#include "SoundReader.h"
#include "WindowTimes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// One input of an exact job: the pictures of its window, in the form of the output, and the sound
/// that belongs to them. Belongs to one thread.
class ExactInput {
public:
    /// Without a window, all of the source.
    ExactInput(const std::string& path, std::optional<Window> window, const StopFlag* stop)
        : path_(path), window_(window), stop_(stop), pictures_(path, stop) {}

    /// Opens the source and goes to the window's first picture. 0, AVERROR_STREAM_NOT_FOUND without
    /// pictures, AVERROR(ERANGE) when the window has none, or another negative libav error code.
    int open();
    /// Whether there is sound to be had in this format, which begins with the first picture.
    bool openSound(const AudioFormat& format);

    const AVStream& pictureStream() const { return pictures_.stream(); }
    const InputMedia& media() const { return pictures_.input(); }
    /// The time of the first picture, in ticks of the stream.
    std::int64_t origin() const { return origin_; }
    /// Where the window ends, in seconds since the first picture; nothing where the source does.
    std::optional<double> endSeconds() const;
    /// Whether the source goes on until there. One that does not tell its length may have ended.
    bool isEndSure() const;
    /// Where the window ends on the container's time line, microseconds; the largest number where
    /// the source does.
    std::int64_t endUs() const { return times_.endUs.value_or(INT64_MAX); }

    /// A picture's time and duration, ticks of the stream, since the first picture.
    struct Shown {
        FrameHandle picture;
        std::int64_t time = 0;
    };
    /// The next picture in the form of an output; null at the end.
    Shown nextPicture(const PictureForm& form);
    /// Why there was no next picture, if that is not the end: a negative libav error code; or 0.
    int failure() const { return failure_; }
    /// When the last picture that was given ends by itself, in ticks since the first picture; at
    /// the source's end, when the last one there ends that could not be decoded.
    std::int64_t picturesEnd() const { return picturesEnd_; }
    /// The next samples; null at the end, or without sound.
    FrameHandle nextSound();

    /// Pictures that could not be decoded, or not wholly.
    std::int64_t damagedPictures() const { return pictures_.damagedPackets(); }
    /// Packets of the sound that could not be decoded.
    std::int64_t damagedSounds() const;

private:
    bool isInWindow(const AVFrame& picture) const;
    FrameHandle nextOfWindow();

    std::string path_;
    std::optional<Window> window_;
    const StopFlag* stop_;
    PictureReader pictures_;
    std::unique_ptr<SoundReader> sound_;
    std::unique_ptr<PictureFilter> filter_;
    FrameHandle first_;
    std::int64_t origin_ = 0;
    std::int64_t picturesEnd_ = 0;
    WindowTimes times_; ///< without a window, nothing is left out at the end
    bool ended_ = false;
    bool sourceEnded_ = false;
    int failure_ = 0;
};

} // namespace velmora
