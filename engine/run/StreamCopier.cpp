#include "StreamCopier.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora {
namespace {

constexpr std::int64_t kBitRateWhenUnknown = 3'000'000;

bool isOneOf(const AVOutputFormat& format, const char* names) {
    return av_match_name(format.name, names) != 0;
}

/// Containers that carry H.264 and HEVC as a byte stream with start codes.
bool wantsStartCodes(const AVOutputFormat& format) {
    return isOneOf(format, "avi,asf,asf_stream,mpegts,mpeg,vcd,svcd,dvd,vob");
}

/// Containers that store one time stamp per packet, that of decoding.
bool storesDecodingTimesOnly(const AVOutputFormat& format) {
    return isOneOf(format, "avi,asf,asf_stream");
}

bool hasLengthPrefixes(const AVCodecParameters& parameters) {
    return parameters.extradata_size > 0 && parameters.extradata[0] == 1;
}

const char* startCodeFilter(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_H264:
        return "h264_mp4toannexb";
    case AV_CODEC_ID_HEVC:
        return "hevc_mp4toannexb";
    default:
        return nullptr;
    }
}

int openFilter(const char* name, const AVStream& source, BitstreamFilterHandle& filter) {
    AVBSFContext* context = nullptr;
    int result = av_bsf_alloc(av_bsf_get_by_name(name), &context);
    filter.reset(context);
    if (result >= 0) {
        result = avcodec_parameters_copy(filter->par_in, source.codecpar);
    }
    if (result >= 0) {
        filter->time_base_in = source.time_base;
        result = av_bsf_init(filter.get());
    }
    return result;
}

/// The filter that the source's packets need in this container; none leaves `filter` null.
int openStartCodeFilter(const AVStream& source, const AVOutputFormat& format,
                        BitstreamFilterHandle& filter) {
    const char* name = startCodeFilter(source.codecpar->codec_id);
    if (name == nullptr || !wantsStartCodes(format) || !hasLengthPrefixes(*source.codecpar)) {
        return 0;
    }
    return openFilter(name, source, filter);
}

/// A tag means the same codec only in the same family of containers. There it may carry more than
/// the codec ("hvc1" or "hev1"), so it is kept; elsewhere the muxer chooses.
std::uint32_t tagFor(const AVFormatContext& input, const AVCodecParameters& parameters,
                     const AVOutputFormat& format) {
    const std::uint32_t sourceTag = parameters.codec_tag;
    unsigned ownTag = 0;
    if (format.codec_tag == nullptr ||
        av_codec_get_tag2(format.codec_tag, parameters.codec_id, &ownTag) == 0) {
        return sourceTag;
    }
    const bool sameFamily =
        isOneOf(format, input.iformat->name) || (isOneOf(format, "mov,mp4,ipod,3gp,3g2,ismv,f4v") &&
                                                 av_match_name("mov", input.iformat->name) != 0);
    const bool known = av_codec_get_id(format.codec_tag, sourceTag) == parameters.codec_id;
    return sameFamily && known ? sourceTag : 0;
}

/// Readers of these containers would not find the codec by another container's tag.
bool knowsOwnTagsOnly(const AVOutputFormat& format, const AVCodecParameters& parameters) {
    unsigned ownTag = 0;
    return isOneOf(format, "asf,asf_stream") &&
           av_codec_get_tag2(format.codec_tag, parameters.codec_id, &ownTag) == 0;
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

void copyTags(const AVStream& source, AVStream& output) {
    for (const char* key : {"language", "title", "handler_name"}) {
        if (const AVDictionaryEntry* tag = av_dict_get(source.metadata, key, nullptr, 0)) {
            av_dict_set(&output.metadata, key, tag->value, 0);
        }
    }
}

int copySideData(const AVStream& source, AVStream& output, bool onlyDisplayMatrix) {
    for (int i = 0; i < source.nb_side_data; ++i) {
        const AVPacketSideData& from = source.side_data[i];
        if (onlyDisplayMatrix && from.type != AV_PKT_DATA_DISPLAYMATRIX) {
            continue;
        }
        std::uint8_t* data = av_stream_new_side_data(&output, from.type, from.size);
        if (data == nullptr) {
            return AVERROR(ENOMEM);
        }
        std::copy_n(from.data, from.size, data);
    }
    return 0;
}

/// Leaves of a packet what a copy carries: data, size and flags.
void stripToContent(AVPacket& packet) {
    av_packet_free_side_data(&packet);
    packet.pos = -1;
}

void completeAudio(AVCodecParameters& parameters) {
    // Packets of these have no fixed size, whatever the old container said of it; a muxer would
    // count time by it.
    if (parameters.codec_id == AV_CODEC_ID_MP3 || parameters.codec_id == AV_CODEC_ID_AAC ||
        parameters.codec_id == AV_CODEC_ID_AC3) {
        parameters.block_align = 0;
    }
    // Where a codec has but one, readers of its streams do not tell, and muxers ask for it.
    if (parameters.frame_size == 0) {
        parameters.frame_size = av_get_audio_frame_duration2(&parameters, 0);
    }
    if (parameters.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(&parameters.ch_layout, parameters.ch_layout.nb_channels);
    }
}

} // namespace

int copyStreamParameters(AVFormatContext& input, AVStream& source, const AVOutputFormat& format,
                         AVStream& output) {
    BitstreamFilterHandle filter;
    int result = openStartCodeFilter(source, format, filter);
    if (result >= 0) {
        result = avcodec_parameters_copy(output.codecpar,
                                         filter != nullptr ? filter->par_out : source.codecpar);
    }
    if (result >= 0) {
        result = copySideData(source, output, false);
    }
    if (result < 0) {
        return result;
    }
    AVCodecParameters& parameters = *output.codecpar;
    parameters.codec_tag = tagFor(input, *source.codecpar, format);
    if (parameters.codec_tag != 0 && knowsOwnTagsOnly(format, parameters)) {
        return AVERROR(ENOSYS);
    }
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO) {
        if (parameters.bit_rate == 0) {
            parameters.bit_rate = kBitRateWhenUnknown;
        }
        // Some muxers refuse two places that differ.
        parameters.sample_aspect_ratio = av_guess_sample_aspect_ratio(&input, &source, nullptr);
        output.sample_aspect_ratio = parameters.sample_aspect_ratio;
        output.r_frame_rate = source.r_frame_rate;
    } else {
        completeAudio(parameters);
    }
    output.disposition = source.disposition;
    copyTags(source, output);
    return 0;
}

int copyStreamDescription(const AVStream& source, AVStream& output) {
    output.disposition = source.disposition;
    copyTags(source, output);
    return copySideData(source, output, true);
}

void copyFileTags(const AVFormatContext& input, AVDictionary** tags) {
    av_dict_copy(tags, input.metadata, 0);
    // The first four tell of the old container; a time code would be that of the old first picture.
    for (const char* key :
         {"major_brand", "minor_version", "compatible_brands", "encoder", "duration", "timecode"}) {
        av_dict_set(tags, key, nullptr, 0);
    }
}

VideoCopier::VideoCopier(OutputMedia& output, OutputStream& stream)
    : output_(output), stream_(stream), start_(stream.clock.units()) {}

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
        stream_.displayDelay = delay;
    } else {
        stream_.displayShift = std::max(stream_.displayShift, delay - stream_.displayDelay);
    }
}

PacketOutcome VideoCopier::writePlaced() {
    if (written_ == 0 && order_->canTake()) {
        settleDelay();
    }
    while (auto placed = order_->take()) {
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
    packet.dts = clock.ticksAt(slot - stream_.displayDelay);
    packet.pts = std::max(clock.ticksAt(start_ + place + stream_.displayShift), packet.dts);
    packet.duration = clock.ticksAt(slot + 1) - clock.ticksAt(slot);
    if (packet.size == 0) { // a dropped picture takes its time, but has nothing to be written
        return PacketOutcome::Done;
    }
    return output_.write(stream_, packet) < 0 ? PacketOutcome::FailedEnd : PacketOutcome::Done;
}

AudioCopier::AudioCopier(OutputMedia& output, OutputStream& stream, const AVStream& source)
    : output_(output), stream_(stream), source_(source) {}

PacketOutcome AudioCopier::handle() {
    const PacketHandle packet = std::move(prepared_.front());
    prepared_.pop_front();
    if (packet->size == 0) {
        return PacketOutcome::Done;
    }
    const std::int64_t samples = samplesIn(*packet);
    stripToContent(*packet);
    PacketClock& clock = stream_.clock;
    packet->pts = packet->dts = clock.ticks();
    packet->duration = clock.ticksAt(clock.units() + samples) - packet->dts;
    // A failed write does not end a copy, unless the file itself takes no more.
    if (output_.write(stream_, *packet) >= 0) {
        clock.advance(samples);
    }
    return output_.fileError() < 0 ? PacketOutcome::FailedEnd : PacketOutcome::Done;
}

std::int64_t AudioCopier::samplesIn(const AVPacket& packet) {
    const int byCodec = av_get_audio_frame_duration2(source_.codecpar, packet.size);
    return byCodec > 0 ? byCodec : samplesByTime(packet);
}

// A container's time stamps may be much coarser than a sample. Counting from the first packet to
// the end of this one lets no error add up.
std::int64_t AudioCopier::samplesByTime(const AVPacket& packet) {
    const std::int64_t duration = toSamples(packet.duration);
    std::int64_t samples = duration;
    if (timedFrom_ != AV_NOPTS_VALUE && packet.pts != AV_NOPTS_VALUE) {
        samples = toSamples(packet.pts + packet.duration - timedFrom_) - timedSamples_;
    }
    const std::int64_t tolerance = 2 * toSamples(1) + 1;
    if (timedFrom_ == AV_NOPTS_VALUE || std::abs(samples - duration) > tolerance) {
        timedFrom_ = packet.pts; // the first packet, or one after a gap
        timedSamples_ = 0;
        samples = duration;
    }
    samples = std::max(samples, INT64_C(1));
    timedSamples_ += samples;
    return samples;
}

std::int64_t AudioCopier::toSamples(std::int64_t sourceTicks) const {
    return av_rescale_q(sourceTicks, source_.time_base, stream_.unit);
}

} // namespace velmora
