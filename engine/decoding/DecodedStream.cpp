#include "DecodedStream.h"

#include "FrameRate.h"
#include "SourceStreams.h"
#include "TimeBases.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <utility>

namespace velmora {
namespace {

// Decoders need some sound before that which is to come out right, and files hold it in blocks.
constexpr std::int64_t kLeadInUs = 1'000'000;

} // namespace

std::int64_t ticksPerPicture(const AVStream& stream) {
    const AVRational rate = correctedFrameRate(stream.r_frame_rate);
    if (rate.num <= 0 || rate.den <= 0) {
        return 1;
    }
    return std::max(av_rescale_q(1, av_inv_q(rate), stream.time_base), INT64_C(1));
}

DecodedStream::DecodedStream(std::string path, Kind kind, const StopFlag* stop)
    : path_(std::move(path)), kind_(kind), stop_(stop) {}

int DecodedStream::open() {
    int result = openInput();
    if (result < 0) {
        return result;
    }
    if (kind_ == Kind::Pictures && lacksTimes()) {
        timedByOrder_ = true;
        result = openInput();
    }
    if (result >= 0) {
        result = decoder_.open(*stream_, path_, Decoder::Threads::AllCores);
    }
    return result;
}

/// If it cannot be opened again, what has been opened before stays.
int DecodedStream::openInput() {
    auto opened = std::make_unique<InputMedia>(path_, stop_);
    int result = opened->open();
    if (result >= 0) {
        result = opened->readStreamInfo();
    }
    if (result < 0) {
        return result;
    }
    AVStream* const found = kind_ == Kind::Pictures ? opened->videoStream() : opened->audioStream();
    if (found == nullptr) {
        return AVERROR_STREAM_NOT_FOUND;
    }
    input_ = std::move(opened);
    stream_ = found;
    unrolls_ = ClockUnroller::isNeeded(*input_->container());
    clock_ = {};
    for (AVStream* const other : streamsOf(*input_->container())) {
        if (other != stream_ && !unrolls_) { // all streams tell of a jump
            other->discard = AVDISCARD_ALL;
        }
    }
    atStart_ = true;
    return 0;
}

/// AVI and raw streams tell when packets are decoded, if anything.
bool DecodedStream::lacksTimes() {
    const AVInputFormat& format = *input_->container()->iformat;
    if (stream_->start_time != AV_NOPTS_VALUE && av_match_name("avi", format.name) == 0) {
        return false;
    }
    constexpr int kPacketsTried = 32;
    for (int i = 0; i < kPacketsTried; ++i) {
        const PacketHandle packet = readPacket();
        if (packet == nullptr) {
            break;
        }
        if (packet->pts == AV_NOPTS_VALUE) {
            return true;
        }
    }
    rewind();
    return false;
}

int DecodedStream::rewind() {
    const int result = atStart_ ? 0 : openInput();
    decodeFrom(nullptr);
    return result;
}

int DecodedStream::seek(std::int64_t timestamp) {
    if (unrolls_) {
        return seekInTransport(timestamp);
    }
    atStart_ = false;
    return input_->seekStream(stream_->index, timestamp);
}

int DecodedStream::beginBefore(std::int64_t us) {
    const AVRational timeBase = stream_->time_base;
    const std::int64_t wanted = us - kLeadInUs;
    for (std::int64_t back = 0; wanted - back > input_->startUs(); back = 4 * back + kLeadInUs) {
        if (seek(av_rescale_q(wanted - back, kMicrosecond, timeBase)) < 0) {
            break;
        }
        PacketHandle first = readPacket();
        const std::int64_t time = first == nullptr               ? AV_NOPTS_VALUE
                                  : first->pts != AV_NOPTS_VALUE ? first->pts
                                                                 : first->dts;
        if (time != AV_NOPTS_VALUE &&
            av_compare_ts(time, timeBase, wanted + kLeadInUs / 2, kMicrosecond) <= 0) {
            decodeFrom(std::move(first));
            return 0;
        }
    }
    return rewind();
}

int DecodedStream::seekInTransport(std::int64_t timestamp) {
    if (index_ == nullptr) {
        index_ = std::make_unique<TransportIndex>(path_, stop_);
        if (const int result = index_->open(stream_->index, kind_ == Kind::Sound); result < 0) {
            index_.reset();
            return result;
        }
    }
    const auto place = index_->placeBefore(timestamp);
    if (!place) {
        return AVERROR(ERANGE);
    }
    atStart_ = false;
    clock_ = place->clock;
    return input_->seekToByte(place->position);
}

PacketHandle DecodedStream::readPacket() {
    atStart_ = false;
    PacketHandle packet(av_packet_alloc());
    while (packet != nullptr && input_->read(*packet) >= 0) {
        if (unrolls_) {
            clock_.apply(*packet);
        }
        if (packet->stream_index == stream_->index) {
            noteEnd(*packet);
            return packet;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

void DecodedStream::noteEnd(const AVPacket& packet) {
    if (packet.pts != AV_NOPTS_VALUE) {
        const std::int64_t lasts =
            packet.duration > 0 ? packet.duration : ticksPerPicture(*stream_);
        packetsEnd_ = std::max(packetsEnd_, packet.pts + lasts);
    }
}

void DecodedStream::decodeFrom(PacketHandle first) {
    first_ = std::move(first);
    atEnd_ = false;
    times_ = {};
    untimed_ = 0;
    if (decoder_.isOpen()) {
        decoder_.flush();
    }
}

FrameHandle DecodedStream::next() {
    for (;;) {
        if (FrameHandle frame = decoder_.receive()) {
            stamp(*frame);
            const bool isCorrupt = (frame->flags & AV_FRAME_FLAG_CORRUPT) != 0;
            damaged_ += isCorrupt || frame->decode_error_flags != 0 ? 1 : 0;
            return frame;
        }
        if (decoder_.hasEnded() || isRaised(stop_) || isRaised(giveUp_)) {
            return nullptr;
        }
        decodeOne();
    }
}

/// Gives the decoder the next packet, or tells it that there is none. After that, damage alone can
/// be the reason that no frame came.
void DecodedStream::decodeOne() {
    if (atEnd_) {
        ++damaged_;
        return;
    }
    const PacketHandle packet = first_ != nullptr ? std::move(first_) : readPacket();
    if (packet == nullptr) {
        atEnd_ = true;
        decoder_.sendEnd();
        return;
    }
    if (timedByOrder_ && packet->size > 0) {
        noteTime(*packet);
    }
    if (!decoder_.send(*packet)) {
        ++damaged_;
    }
}

void DecodedStream::noteTime(const AVPacket& packet) {
    const bool hasTime = packet.dts != AV_NOPTS_VALUE;
    times_.push(hasTime ? packet.dts : untimed_ * ticksPerPicture(*stream_));
    ++untimed_;
}

void DecodedStream::stamp(AVFrame& frame) {
    if (!timedByOrder_) {
        frame.pts = frame.pts != AV_NOPTS_VALUE ? frame.pts : frame.best_effort_timestamp;
    } else if (!times_.empty()) {
        frame.pts = times_.top();
        times_.pop();
    }
}

} // namespace velmora
