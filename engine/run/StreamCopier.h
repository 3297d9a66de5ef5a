#pragma once

#include "OutputMedia.h"
#include "PacketHandler.h"
#include "PictureOrder.h"

#include <deque>
#include <optional>
#include <utility>

namespace velmora {

/// Gives `output` the parameters of `source` as far as a copy of its packets needs them, with what
/// belongs to the stream: tags, side data such as the display matrix, aspect ratio, disposition.
/// 0 or a negative libav error code.
int copyStreamParameters(AVFormatContext& input, AVStream& source, const AVOutputFormat& format,
                         AVStream& output);

/// Gives `output` what belongs to the stream whatever its encoding: language and titles, the
/// disposition, and how its pictures are turned. 0 or a negative libav error code.
int copyStreamDescription(const AVStream& source, AVStream& output);

/// Copies the tags that tell of the whole file, other than those of its container.
void copyFileTags(const AVFormatContext& input, AVDictionary** tags);

/// Copies the packets of one input's video stream, numbered by the output's clock. In containers
/// that store display times, pictures that were coded out of order are shown in order.
class VideoCopier : public PacketHandler {
public:
    VideoCopier(OutputMedia& output, OutputStream& stream);

    /// `decoderDelay`: by how many pictures the source's decoder says that it reorders. 0 or a
    /// negative libav error code.
    int open(const AVFormatContext& input, const AVStream& source, int decoderDelay);

    void prepare(PacketHandle packet) override { prepared_.push_back(std::move(packet)); }
    PacketOutcome handle() override;
    PacketOutcome finish() override;

private:
    PacketOutcome number(PacketHandle packet);
    PacketOutcome writePlaced();
    void settleDelay();
    PacketOutcome write(AVPacket& packet, std::int64_t place);

    OutputMedia& output_;
    OutputStream& stream_;
    std::deque<PacketHandle> prepared_;
    BitstreamFilterHandle filter_; ///< null: packets go as they are
    std::optional<PictureOrder> order_;
    int declaredDelay_ = 0;    ///< pictures
    const std::int64_t start_; ///< the slot of the input's first packet
    std::int64_t written_ = 0; ///< packets of the input
};

/// Copies the packets of one input's audio stream, numbered by the output's clock.
class AudioCopier : public PacketHandler {
public:
    AudioCopier(OutputMedia& output, OutputStream& stream, const AVStream& source);

    void prepare(PacketHandle packet) override { prepared_.push_back(std::move(packet)); }
    PacketOutcome handle() override;
    PacketOutcome finish() override { return PacketOutcome::Done; }

private:
    std::int64_t samplesIn(const AVPacket& packet);
    std::int64_t samplesByTime(const AVPacket& packet);
    std::int64_t toSamples(std::int64_t sourceTicks) const;

    OutputMedia& output_;
    OutputStream& stream_;
    const AVStream& source_;
    std::int64_t timedFrom_ = AV_NOPTS_VALUE; ///< source ticks, where timedSamples_ began
    std::int64_t timedSamples_ = 0;           ///< counted by time stamps since
    std::deque<PacketHandle> prepared_;
};

} // namespace velmora
