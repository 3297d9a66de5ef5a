#include "CopyOutput.h"

#include "Chapters.h"
#include "CopiedPacket.h"
#include "StreamDescription.h"
#include "TimeBases.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>

namespace velmora {
namespace {

/// Empty edits and lengths are counted in these ticks, by default in milliseconds.
constexpr const char* kTicksOfMovie = "48000";
// What multiplexers of transport streams keep between a packet's arrival and its use.
constexpr int kTransportDelayUs = 700'000;

AVRational rateOf(const AVStream& source) {
    const AVRational usual = usualRate(source.r_frame_rate, source.avg_frame_rate);
    return usual.num > 0 ? usual : AVRational{25, 1};
}

int replaceHeader(AVCodecParameters& parameters, const Bytes& record) {
    auto* data =
        static_cast<std::uint8_t*>(av_mallocz(record.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (data == nullptr) {
        return AVERROR(ENOMEM);
    }
    std::ranges::copy(record, data);
    av_freep(static_cast<void*>(&parameters.extradata));
    parameters.extradata = data;
    parameters.extradata_size = static_cast<int>(record.size());
    parameters.codec_tag = 0; // all sets are in the header: the usual one
    return 0;
}

} // namespace

int CopyOutput::begin(const AVOutputFormat& format, CodedPictures& source, const CopyPlan& plan,
                      const Bytes& record, SoundPackets* sound) {
    sound_ = sound;
    int result = media_.create(format);
    if (result >= 0) {
        result = addPictures(source, plan, record);
    }
    if (result >= 0 && sound_ != nullptr) {
        result = addSound();
    }
    if (result >= 0) {
        result = describe(source, plan);
    }
    if (result >= 0) {
        result = media_.begin();
    }
    if (result < 0) {
        return result;
    }
    const AVStream& from = source.stream();
    const AVRational timeBase = pictureStream_->stream->time_base;
    timing_.emplace(TimingRule{.sourceTimeBase = from.time_base,
                               .sourceRate = usualRate(from.r_frame_rate, from.avg_frame_rate),
                               .outputTimeBase = timeBase});
    decoding_.emplace(plan.depth,
                      std::max(av_rescale_q(1, av_inv_q(rateOf(from)), timeBase), INT64_C(1)));
    return 0;
}

int CopyOutput::addPictures(CodedPictures& source, const CopyPlan& plan, const Bytes& record) {
    AVFormatContext& input = *source.input().container();
    AVStream& from = *input.streams[source.stream().index];
    pictureStream_ = media_.addVideoStream(av_inv_q(rateOf(from)));
    if (pictureStream_ == nullptr) {
        return AVERROR(ENOMEM);
    }
    sourceTimeBase_ = from.time_base;
    origin_ = plan.origin();
    end_ = plan.window.endUs ? av_rescale_q(*plan.window.endUs, kMicrosecond, from.time_base)
                             : CutRule::kToTheEnd;
    usualDuration_ = std::max(av_rescale_q(1, av_inv_q(rateOf(from)), from.time_base), INT64_C(1));
    last_ = plan.last;
    AVStream& added = *pictureStream_->stream;
    int result = copyStreamParameters(input, from, media_.format(), added);
    if (result >= 0 && !record.empty()) {
        result = replaceHeader(*added.codecpar, record);
    }
    constexpr int kMostTicks = 1'000'000;
    added.time_base = commonTimeBase(from.time_base, rateOf(from), 1, kMostTicks);
    const AVRational usual = usualRate(from.r_frame_rate, from.avg_frame_rate);
    const bool isConstant = av_cmp_q(usual, from.avg_frame_rate) == 0;
    added.avg_frame_rate = isConstant ? usual : AVRational{0, 1};
    return result;
}

int CopyOutput::addSound() {
    AVFormatContext& input = *sound_->input().container();
    soundStream_ = media_.addAudioStream(sound_->timeBase());
    return soundStream_ == nullptr
               ? AVERROR(ENOMEM)
               : copyStreamParameters(input, *input.streams[sound_->stream().index],
                                      media_.format(), *soundStream_->stream);
}

int CopyOutput::describe(CodedPictures& source, const CopyPlan& plan) {
    AVFormatContext& input = *source.input().container();
    AVFormatContext& output = media_.container();
    copyFileTags(input, media_.tags());
    media_.setOption("movie_timescale", kTicksOfMovie);
    output.strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL; // for FLAC in mp4
    if (av_match_name(output.oformat->name, "mpegts") != 0) {
        output.max_delay = kTransportDelayUs;
    }
    const std::int64_t startUs = av_rescale_q(plan.origin(), sourceTimeBase_, kMicrosecond);
    return copyChapters(input, {.startUs = startUs, .endUs = plan.window.endUs.value_or(INT64_MAX)},
                        output);
}

/// The last one that is shown lasts to the window's end.
std::int64_t CopyOutput::durationOf(const AVPacket& packet, std::int64_t time,
                                    std::int64_t shown) const {
    if (time == last_ && end_ != CutRule::kToTheEnd) {
        return std::max(timing_->at(end_ - origin_) - shown, INT64_C(1));
    }
    const std::int64_t duration = packet.duration > 0 ? packet.duration : usualDuration_;
    return std::max(timing_->at(time - origin_ + duration) - shown, INT64_C(1));
}

int CopyOutput::write(AVPacket& packet, std::int64_t time) {
    const std::int64_t shown = timing_->at(time - origin_);
    const auto decoded = decoding_->next(shown);
    if (!decoded) {
        return AVERROR_INVALIDDATA;
    }
    if (const int result = writeSoundUntil(shown); result < 0) {
        return result;
    }
    packet.duration = durationOf(packet, time, shown);
    stripToContent(packet);
    packet.pts = shown;
    packet.dts = *decoded;
    times_.push_back(shown);
    picturesEnd_ = std::max(picturesEnd_, shown + packet.duration);
    return media_.write(*pictureStream_, packet);
}

int CopyOutput::writeSoundUntil(std::int64_t time) {
    int result = 0;
    while (result >= 0 && sound_ != nullptr && sound_->peek() != nullptr &&
           av_compare_ts(sound_->peek()->pts, sound_->timeBase(), time,
                         pictureStream_->stream->time_base) <= 0) {
        result = writeSound();
    }
    return result;
}

int CopyOutput::writeSound() {
    const PacketHandle packet = sound_->next();
    soundEnd_ = packet->pts + packet->duration;
    av_packet_rescale_ts(packet.get(), sound_->timeBase(), soundStream_->stream->time_base);
    return media_.write(*soundStream_, *packet);
}

int CopyOutput::finish() {
    int result = 0;
    while (result >= 0 && sound_ != nullptr && sound_->peek() != nullptr) {
        result = writeSound();
    }
    const int finished = media_.finish();
    return result < 0 ? result : finished;
}

double CopyOutput::seconds() const {
    return static_cast<double>(picturesEnd_) * av_q2d(pictureStream_->stream->time_base);
}

double CopyOutput::length() const {
    const double sound =
        sound_ != nullptr ? static_cast<double>(soundEnd_) * av_q2d(sound_->timeBase()) : 0.0;
    return std::max(seconds(), sound);
}

WrittenPictures CopyOutput::written() const {
    WrittenPictures written{.times = times_, .timeBase = pictureStream_->stream->time_base};
    std::ranges::sort(written.times);
    return written;
}

} // namespace velmora
