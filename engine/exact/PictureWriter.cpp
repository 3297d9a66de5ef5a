#include "PictureWriter.h"

#include <algorithm>
#include <utility>

namespace velmora {

int PictureWriter::write(FrameHandle picture, std::int64_t time) {
    const int result = encodeHeld(time);
    held_ = std::move(picture);
    heldSince_ = time;
    return result;
}

int PictureWriter::endAt(std::int64_t time) {
    return encodeHeld(time);
}

int PictureWriter::encodeHeld(std::int64_t until) {
    if (held_ == nullptr) {
        return 0;
    }
    if (!pace_.isConstant()) {
        const FrameHandle picture = std::move(held_);
        return encode(*picture, {heldSince_, std::max(until - heldSince_, INT64_C(1))});
    }
    // A tick of the source's rounding must not become a picture.
    const std::int64_t endTick =
        av_rescale_q_rnd(until - 1, pace_.timeBase, pace_.constant, AV_ROUND_UP);
    int result = 0;
    for (; nextTick_ < endTick && result >= 0 && !isRaised(&stop_); ++nextTick_) {
        const FrameHandle picture(av_frame_clone(held_.get()));
        result = picture != nullptr ? encode(*picture, {nextTick_, 1}) : AVERROR(ENOMEM);
    }
    return result;
}

int PictureWriter::encode(AVFrame& picture, Sent sent) {
    picture.pts = sent.time;
    sent_.push_back(sent);
    std::vector<PacketHandle> packets;
    const int result = encoder_.encodeAt(&picture, packets);
    const int written = write(packets);
    return result < 0 ? result : written;
}

int PictureWriter::finish() {
    held_.reset();
    std::vector<PacketHandle> packets;
    const int result = encoder_.encodeAt(nullptr, packets);
    const int written = write(packets);
    return result < 0 ? result : written;
}

/// Without B-frames the packets come in the order of the pictures.
int PictureWriter::write(std::vector<PacketHandle>& packets) {
    for (const PacketHandle& packet : packets) {
        if (sent_.empty()) {
            return AVERROR_BUG;
        }
        packet->pts = sent_.front().time;
        packet->dts = packet->pts;
        packet->duration = sent_.front().duration;
        sent_.pop_front();
        av_packet_rescale_ts(packet.get(), pace_.encoderTimeBase(), stream_.stream->time_base);
        if (const int result = output_.write(stream_, *packet); result < 0) {
            return result;
        }
        ++count_;
    }
    return 0;
}

} // namespace velmora
