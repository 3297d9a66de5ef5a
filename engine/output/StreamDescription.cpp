#include "StreamDescription.h"

#include "StartCodes.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>

namespace velmora {
namespace {

constexpr std::int64_t kBitRateWhenUnknown = 3'000'000;

bool isOneOf(const AVOutputFormat& format, const char* names) {
    return av_match_name(format.name, names) != 0;
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
    copyStreamTags(source, output);
    return copySideData(source, output, true);
}

void copyStreamTags(const AVStream& source, AVStream& output) {
    output.disposition = source.disposition;
    copyTags(source, output);
}

void copyFileTags(const AVFormatContext& input, AVDictionary** tags) {
    av_dict_copy(tags, input.metadata, 0);
    // The first four tell of the old container; a time code would be that of the old first picture.
    for (const char* key :
         {"major_brand", "minor_version", "compatible_brands", "encoder", "duration", "timecode"}) {
        av_dict_set(tags, key, nullptr, 0);
    }
}

} // namespace velmora
