#include "VideoCopier.h"

#include "CopiedPacket.h"
#include "StartCodes.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

/// Containers that store one time stamp per packet, that of decoding.
bool storesDecodingTimesOnly(const AVOutputFormat& format) {
    return av_match_name(format.name, "avi,asf,asf_stream") != 0;
}

bool isReorderingCodec(AVCodecID codec) {
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC;
}

/// Whether pictures may have to be put into display order. H.264 and HEVC streams need not declare
/// that they reorder; the others do.
bool mayReorder(const AVFormatContext& input, const AVStream& source,
                const AVOutputFormat& format) {
    const AVCodecParameters& parameters = *source.codecpar;
    // AVI has no display times; only those of MPEG-4 can be told from the packets.
    const bool hasDisplayTimes =
        av_match_name("avi", input.iformat->name) == 0 || parameters.codec_id == AV_CODEC_ID_MPEG4;
    const bool reorders = parameters.video_delay > 0 || isReorderingCodec(parameters.codec_id);
    return hasDisplayTimes && reorders && !storesDecodingTimesOnly(format);
}

} // namespace

VideoCopier::VideoCopier(OutputMedia& output, OutputStream& stream, DisplayOffset& offset)
    : output_(output), stream_(stream), offset_(offset), start_(stream.clock.units()) {}

int VideoCopier::open(const AVFormatContext& input, const AVStream& source, int decoderDelay) {
    if (mayReorder(input, source, output_.format())) {
        declaredDelay_ = std::max(decoderDelay, source.codecpar->video_delay);
        order_.emplace();
    }
    return openStartCodeFilter(source, output_.format(), filter_);
}

PacketOutcome VideoCopier::handle() {
    PacketHandle packet = std::move(prepared_.front());
    prepared_.pop_front();
    if (filter_ == nullptr || packet->size == 0) {
        return number(std::move(packet));
    }
    int result = av_bsf_send_packet(filter_.get(), packet.get());
    while (result >= 0) {
        result = av_bsf_receive_packet(filter_.get(), packet.get());
        if (result >= 0) {
            if (const auto outcome = number(std::move(packet)); outcome != PacketOutcome::Done) {
                return outcome;
            }
            packet.reset(av_packet_alloc());
            result = packet != nullptr ? result : AVERROR(ENOMEM);
        }
    }
    return result == AVERROR(EAGAIN) ? PacketOutcome::Done : PacketOutcome::FailedEnd;
}

PacketOutcome VideoCopier::number(PacketHandle packet) {
    stripToContent(*packet);
    PacketClock& clock = stream_.clock;
    if (order_) {
        // A packet counts when it is taken, also while it is held for its place: a cut ends by the
        // count, not by how far pictures are reordered.
        clock.advance(1);
        order_->add(std::move(packet));
        return writePlaced();
    }
    const auto outcome = write(*packet, written_);
    if (outcome == PacketOutcome::Done) {
        clock.advance(1);
    }
    return outcome;
}

PacketOutcome VideoCopier::finish() {
    if (!order_) {
        return PacketOutcome::Done;
    }
    order_->finish();
    return writePlaced();
}

// No picture may be shown before it is decoded. The first input's delay is the output's; where a
// later one has a greater delay, its pictures and all that follow are shown that much later.
void VideoCopier::settleDelay() {
    const int delay = std::max(declaredDelay_, order_->delay());
    if (start_ == 0) {
        offset_.delay = delay;
    } else {
        offset_.shift = std::max(offset_.shift, delay - offset_.delay);
    }
}

PacketOutcome VideoCopier::writePlaced() {
    if (written_ == 0 && order_->hasNext()) {
        settleDelay();
    }
    while (auto placed = order_->next()) {
        const auto outcome = write(*placed->packet, placed->place);
        if (outcome != PacketOutcome::Done) {
            return outcome;
        }
    }
    return PacketOutcome::Done;
}

PacketOutcome VideoCopier::write(AVPacket& packet, std::int64_t place) {
    const PacketClock& clock = stream_.clock;
    const std::int64_t slot = start_ + written_++;
    packet.dts = clock.ticksAt(slot - offset_.delay);
    packet.pts = std::max(clock.ticksAt(start_ + place + offset_.shift), packet.dts);
    packet.duration = clock.ticksAt(slot + 1) - clock.ticksAt(slot);
    if (packet.size == 0) { // a dropped picture takes its time, but has nothing to be written
        return PacketOutcome::Done;
    }
    return output_.write(stream_, packet) < 0 ? PacketOutcome::FailedEnd : PacketOutcome::Done;
}

} // namespace velmora
