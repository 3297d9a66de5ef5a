#pragma once

#include "OutputMedia.h"
#include "PacketHandler.h"
#include "PictureOrder.h"

#include <deque>
#include <optional>
#include <utility>

namespace velmora {

/// How the display of an output's copied pictures lies to their decoding. One for all inputs.
struct DisplayOffset {
    int delay = 0; ///< pictures; how far decoding runs ahead of display
    int shift = 0; ///< pictures; how much later than numbered they are shown
};

/// Copies the packets of one input's video stream, numbered by the output's clock. In containers
/// that store display times, pictures that were coded out of order are shown in order.
class VideoCopier : public PacketHandler {
public:
    VideoCopier(OutputMedia& output, OutputStream& stream, DisplayOffset& offset);

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
    DisplayOffset& offset_;
    std::deque<PacketHandle> prepared_;
    BitstreamFilterHandle filter_; ///< null: packets go as they are
    std::optional<PictureOrder> order_;
    int declaredDelay_ = 0;    ///< pictures
    const std::int64_t start_; ///< the slot of the input's first packet
    std::int64_t written_ = 0; ///< packets of the input
};

} // namespace velmora
