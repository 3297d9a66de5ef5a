#pragma once

#include "CodedPictures.h"
#include "CopyPlan.h"
#include "DecodingTimes.h"
#include "OutputMedia.h"
#include "PictureTiming.h"
#include "SeamCheck.h"
#include "SoundPackets.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// The file that an exact copy writes: what its streams are, and when each of their packets is
/// shown. Belongs to one thread.
class CopyOutput {
public:
    explicit CopyOutput(const std::string& path) : media_(path) {}

    /// Creates the streams and writes the header; `record` is the decoder configuration of the
    /// pictures, empty where the source's will do; `sound` may be null. 0 or a negative libav error
    /// code.
    int begin(const AVOutputFormat& format, CodedPictures& source, const CopyPlan& plan,
              const Bytes& record, SoundPackets* sound);
    /// Writes the next picture in decoding order, with the sound up to it; `time` is when the
    /// source shows it. 0, AVERROR_INVALIDDATA when it does not come as it was planned, or another
    /// negative code.
    int write(AVPacket& packet, std::int64_t time);
    /// Writes the rest of the sound and ends the file. 0 or a negative code.
    int finish();

    /// Pictures written so far.
    std::int64_t count() const { return static_cast<std::int64_t>(times_.size()); }
    /// How much of the output they are, seconds.
    double seconds() const;
    /// When the pictures are shown; sorted.
    WrittenPictures written() const;
    bool hasSound() const { return soundStream_ != nullptr; }
    /// How long the file is, seconds.
    double length() const;

private:
    int addPictures(CodedPictures& source, const CopyPlan& plan, const Bytes& record);
    int addSound();
    int describe(CodedPictures& source, const CopyPlan& plan);
    std::int64_t durationOf(const AVPacket& packet, std::int64_t time, std::int64_t shown) const;
    int writeSoundUntil(std::int64_t time);
    int writeSound();

    OutputMedia media_;
    SoundPackets* sound_ = nullptr;
    OutputStream* pictureStream_ = nullptr;
    OutputStream* soundStream_ = nullptr;
    std::optional<PictureTiming> timing_;
    std::optional<DecodingTimes> decoding_;
    AVRational sourceTimeBase_{1, 1};
    std::int64_t origin_ = 0; ///< of the source
    std::int64_t end_ = 0;    ///< of the window, ticks of the source, or CutRule::kToTheEnd
    std::int64_t last_ = 0;   ///< when the source shows the window's last picture, if it has an end
    std::int64_t usualDuration_ = 1; ///< of a picture, ticks of the source
    std::vector<std::int64_t> times_;
    std::int64_t picturesEnd_ = 0; ///< ticks of the output
    std::int64_t soundEnd_ = 0;    ///< samples
};

} // namespace velmora
