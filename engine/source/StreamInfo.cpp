#include "StreamInfo.h"

#include "EngineLog.h"
#include "HeaderDecoder.h"
#include "MediaLimits.h"
#include "SourceStreams.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <span>
#include <string>

namespace velmora {
namespace {

// How far into the file the pictures may lie before their headers are left unread.
constexpr std::size_t kMostPackets = 256;
// After so many pictures the library has found decoding times, however far coding runs ahead.
constexpr std::int64_t kPicturesToSettleTimes = 20;

bool isCostly(const AVStream& stream) {
    return stream.codecpar->codec_id == AV_CODEC_ID_H264 ||
           stream.codecpar->codec_id == AV_CODEC_ID_HEVC;
}

bool isMov(const AVFormatContext& container) {
    return av_match_name("mov", container.iformat->name) != 0;
}

/// Stores display times only.
bool isMatroska(const AVFormatContext& container) {
    return av_match_name("matroska", container.iformat->name) != 0;
}

/// A stream that would be read otherwise if another number of packets were looked at: the library
/// takes the mean bit rate of the frames of sound that it happens to have seen.
bool dependsOnPacketsSeen(const AVStream& stream) {
    switch (stream.codecpar->codec_id) {
    case AV_CODEC_ID_MP1:
    case AV_CODEC_ID_MP2:
    case AV_CODEC_ID_MP3:
    case AV_CODEC_ID_AC3:
        return true;
    default:
        return false;
    }
}

/// The start of a text may become that of the file, if it lies close to those of the others.
bool isText(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE ||
           stream.codecpar->codec_type == AVMEDIA_TYPE_DATA;
}

/// All decoders but those whose first picture is costly.
const std::string& cheapDecoders() {
    static const std::string names = [] {
        std::string list;
        void* position = nullptr;
        while (const AVCodec* codec = av_codec_iterate(&position)) {
            if (av_codec_is_decoder(codec) != 0 && codec->id != AV_CODEC_ID_H264 &&
                codec->id != AV_CODEC_ID_HEVC) {
                list.append(list.empty() ? "" : ",").append(codec->name);
            }
        }
        return list;
    }();
    return names;
}

/// The decoder options of each stream while stream info is read: no picture beyond the limit.
class StreamOptions {
public:
    explicit StreamOptions(unsigned count) : options_(count, nullptr) {
        for (AVDictionary*& options : options_) {
            av_dict_set_int(&options, "max_pixels", kMaxPixels, 0);
        }
    }
    StreamOptions(const StreamOptions&) = delete;
    StreamOptions& operator=(const StreamOptions&) = delete;
    ~StreamOptions() {
        for (AVDictionary*& options : options_) {
            av_dict_free(&options);
        }
    }
    AVDictionary** address() { return options_.data(); }

private:
    std::vector<AVDictionary*> options_;
};

} // namespace

int readStreamInfo(AVFormatContext& container) {
    StreamOptions options(container.nb_streams);
    return avformat_find_stream_info(&container, options.address());
}

bool QuickStreamInfo::isPossible() const {
    const auto streams = streamsOf(container_);
    const bool hasKnownStreams = (container_.ctx_flags & AVFMTCTX_NOHEADER) == 0;
    return hasKnownStreams &&
           std::ranges::any_of(streams, [](const AVStream* stream) { return isCostly(*stream); }) &&
           tellsPictures() && tellsRates() &&
           std::ranges::none_of(
               streams, [](const AVStream* stream) { return dependsOnPacketsSeen(*stream); });
}

bool QuickStreamInfo::tellsPictures() const {
    return std::ranges::all_of(streamsOf(container_), [](const AVStream* stream) {
        const AVCodecParameters& parameters = *stream->codecpar;
        return !isCostly(*stream) ||
               (parameters.width > 0 && parameters.height > 0 && parameters.extradata != nullptr);
    });
}

// A rate that the container does not tell is estimated from decoding times and, if these have no
// pattern, by what the decoder says. The times of mov are its own. Those of Matroska are made up
// by the library, and with them the start of the stream.
bool QuickStreamInfo::tellsRates() const {
    const auto streams = streamsOf(container_);
    const auto tells = [this](const AVStream* stream) {
        const bool isEstimated = stream->r_frame_rate.num == 0;
        return !isVideoStream(*stream) ||
               (stream->avg_frame_rate.num != 0 &&
                (!isEstimated || (isMov(container_) && isCostly(*stream))));
    };
    const bool startIsSure =
        isMatroska(container_) && container_.duration != AV_NOPTS_VALUE &&
        std::ranges::none_of(streams, [](const AVStream* stream) { return isText(*stream); });
    return (isMov(container_) || startIsSure) && std::ranges::all_of(streams, tells);
}

int QuickStreamInfo::read() {
    holdBack();
    const int result = readWithoutDecoders();
    isSure_ = result >= 0 && readHeaders();
    return result;
}

void QuickStreamInfo::holdBack() {
    for (AVStream* stream : streamsOf(container_)) {
        if (isCostly(*stream)) {
            heldBack_.push_back({.stream = stream,
                                 .hasDuration = stream->duration != AV_NOPTS_VALUE,
                                 .hasRate = stream->r_frame_rate.num != 0});
        }
    }
}

int QuickStreamInfo::readWithoutDecoders() {
    const ExpectedLogLines expected(ExpectedLogLines::Kind::HeldBackDecoders);
    container_.codec_whitelist = av_strdup(cheapDecoders().c_str());
    const int result = readStreamInfo(container_);
    av_freep(static_cast<void*>(&container_.codec_whitelist));
    return result;
}

bool QuickStreamInfo::readHeaders() {
    while (!hasEnough()) {
        PacketHandle packet(av_packet_alloc());
        if (packet == nullptr || packets_.size() == kMostPackets ||
            av_read_frame(&container_, packet.get()) < 0 || !keep(*packet)) {
            return false;
        }
        packets_.push_back(std::move(packet));
    }
    if (isMatroska(container_)) {
        std::ranges::for_each(heldBack_, [this](const HeldBack& held) { setStart(held); });
    }
    return true;
}

bool QuickStreamInfo::hasEnough() const {
    const std::int64_t enough = isMatroska(container_) ? kPicturesToSettleTimes : 1;
    return std::ranges::all_of(heldBack_,
                               [enough](const HeldBack& held) { return held.pictures >= enough; });
}

bool QuickStreamInfo::keep(const AVPacket& packet) {
    const auto held = std::ranges::find(heldBack_, packet.stream_index,
                                        [](const HeldBack& each) { return each.stream->index; });
    if (held == heldBack_.end() || held->pictures++ > 0) {
        return true;
    }
    held->firstTime = packet.pts;
    const auto codecRate = completeFromHeaders(*held->stream->codecpar, packet);
    return codecRate && isRateSure(*held, *codecRate);
}

/// Whether a rate that has been estimated follows from decoding times alone. If they have no
/// pattern it is that of the time base, or what the headers say: for H.264, whose decoder has not
/// been asked, that of fields.
bool QuickStreamInfo::isRateSure(const HeldBack& held, AVRational codecRate) const {
    const AVRational rate = held.stream->r_frame_rate;
    const AVRational fields = av_mul_q(codecRate, {2, 1});
    return held.hasRate || (av_cmp_q(rate, av_inv_q(held.stream->time_base)) != 0 &&
                            (codecRate.num == 0 || av_cmp_q(rate, fields) != 0));
}

// The library would have taken the first packet's time for the start, but for its decoding time,
// which it did not know.
void QuickStreamInfo::setStart(const HeldBack& held) {
    AVStream& stream = *held.stream;
    if (held.firstTime == AV_NOPTS_VALUE) {
        return;
    }
    stream.start_time = held.firstTime;
    if (!held.hasDuration) {
        stream.duration = AV_NOPTS_VALUE;
    }
    const std::int64_t start = av_rescale_q(held.firstTime, stream.time_base, av_get_time_base_q());
    container_.start_time =
        container_.start_time == AV_NOPTS_VALUE ? start : std::min(container_.start_time, start);
}

bool QuickStreamInfo::guessesDecodingTimes() const {
    return isMatroska(container_);
}

} // namespace velmora
