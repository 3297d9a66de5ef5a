#include "InputMedia.h"

#include "EngineLog.h"
#include "Saturated.h"
#include "SourceStreams.h"
#include "StreamInfo.h"

#include <algorithm>
#include <span>
#include <utility>

namespace velmora {
namespace {

constexpr double kMicrosecondsPerSecond = 1'000'000.0;

/// Formats whose time stamps may jump are searched by byte position, where they allow that.
bool seeksByBytes(const AVFormatContext& container) {
    return (container.iformat->flags & AVFMT_TS_DISCONT) != 0 &&
           (container.iformat->flags & AVFMT_NO_BYTE_SEEK) == 0;
}

} // namespace

InputMedia::InputMedia(std::string path, const StopFlag* stop)
    : path_(std::move(path)), stop_(stop), files_(path_, stop) {}

int InputMedia::open() {
    int result = files_.open();
    if (result >= 0) {
        container_.reset(avformat_alloc_context());
        result = container_ != nullptr ? files_.attachTo(*container_) : AVERROR(ENOMEM);
    }
    if (result >= 0) {
        container_->interrupt_callback = {isStopped, this};
        AVFormatContext* context = container_.release(); // freed and null after a failure
        result = avformat_open_input(&context, files_.url().c_str(), nullptr, nullptr);
        container_.reset(context);
        files_.endHeader();
    }
    if (result < 0) {
        logFailure(path_, Operation::OpenInput, result);
    }
    return result;
}

int InputMedia::isStopped(void* self) {
    return isRaised(static_cast<const InputMedia*>(self)->stop_) ? 1 : 0;
}

int InputMedia::readStreamInfo() {
    const int result = findStreamInfo();
    if (result < 0) {
        logFailure(path_, Operation::ReadStreamInfo, result);
        return result;
    }
    pickStreams();
    return result;
}

int InputMedia::findStreamInfo() {
    QuickStreamInfo quick(*container_);
    if (quick.isPossible()) {
        const int result = quick.read();
        if (quick.isSure() || isRaised(stop_)) {
            guessesDecodingTimes_ = quick.guessesDecodingTimes();
            lookahead_ = quick.releasePackets();
            return result;
        }
        container_.reset();
        if (const int opened = open(); opened < 0) {
            return opened;
        }
    }
    return velmora::readStreamInfo(*container_);
}

void InputMedia::pickStreams() {
    for (const AVStream* stream : streamsOf(*container_)) {
        if (isVideoStream(*stream)) {
            videoStreamIndex_ = stream->index;
        } else if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            audioStreamIndex_ = stream->index;
        }
    }
    for (AVStream* stream : streamsOf(*container_)) {
        if (stream->index != videoStreamIndex_ && stream->index != audioStreamIndex_) {
            stream->discard = AVDISCARD_ALL;
        }
    }
}

int InputMedia::read(AVPacket& packet) {
    if (!lookahead_.empty()) {
        av_packet_move_ref(&packet, lookahead_.front().get());
        lookahead_.pop_front();
        return 0;
    }
    const int result = av_read_frame(container_.get(), &packet);
    if (result >= 0 && guessesDecodingTimes_) {
        packet.dts = AV_NOPTS_VALUE;
    }
    return result;
}

PacketHandle InputMedia::readVideoPacket() {
    PacketHandle packet(av_packet_alloc());
    while (packet != nullptr && read(*packet) >= 0) {
        if (packet->stream_index == videoStreamIndex_) {
            return packet;
        }
        av_packet_unref(packet.get());
    }
    return nullptr;
}

int InputMedia::seek(double& startSeconds) {
    int result = 0;
    if (const auto position = bytePosition(startSeconds)) {
        result = av_seek_frame(container_.get(), -1, *position, AVSEEK_FLAG_BYTE);
    } else {
        startSeconds += containerStartSeconds();
        const std::int64_t timestamp = truncatedTo64Bits(startSeconds * kMicrosecondsPerSecond);
        result = av_seek_frame(container_.get(), -1, timestamp, AVSEEK_FLAG_BACKWARD);
    }
    const bool isRaw = (container_->iformat->flags & AVFMT_NOTIMESTAMPS) != 0;
    if (result < 0 && isRaw) { // the search has read to the end
        av_seek_frame(container_.get(), -1, 0, AVSEEK_FLAG_BYTE);
    }
    if (result >= 0 || isRaw) {
        lookahead_.clear();
    }
    return result;
}

int InputMedia::seekStream(int streamIndex, std::int64_t timestamp) {
    lookahead_.clear();
    return av_seek_frame(container_.get(), streamIndex, timestamp, AVSEEK_FLAG_BACKWARD);
}

int InputMedia::seekToByte(std::int64_t position) {
    lookahead_.clear();
    return av_seek_frame(container_.get(), -1, position, AVSEEK_FLAG_BYTE);
}

std::optional<std::int64_t> InputMedia::bytePosition(double startSeconds) const {
    const std::int64_t size = avio_size(container_->pb);
    const std::int64_t durationUs = container_->duration;
    if (!seeksByBytes(*container_) || size <= 0 || durationUs <= 0) {
        return std::nullopt;
    }
    const double position = static_cast<double>(size) * startSeconds * kMicrosecondsPerSecond /
                            static_cast<double>(durationUs);
    return std::clamp(truncatedTo64Bits(position), INT64_C(0), size);
}

std::int64_t InputMedia::startUs() const {
    return container_->start_time == AV_NOPTS_VALUE ? 0 : container_->start_time;
}

double InputMedia::containerStartSeconds() const {
    return static_cast<double>(startUs()) / kMicrosecondsPerSecond;
}

int InputMedia::knownPlaces() const {
    int count = 0;
    for (const AVStream* stream : streamsOf(*container_)) {
        count += avformat_index_get_entries_count(stream);
    }
    return count;
}

AVStream* InputMedia::stream(int index) const {
    return index >= 0 ? container_->streams[index] : nullptr;
}

} // namespace velmora
