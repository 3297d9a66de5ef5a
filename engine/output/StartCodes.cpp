#include "StartCodes.h"

extern "C" {
#include <libavutil/avstring.h>
}

namespace velmora {
namespace {

/// Containers that carry H.264 and HEVC as a byte stream with start codes.
bool wantsStartCodes(const AVOutputFormat& format) {
    return av_match_name(format.name, "avi,asf,asf_stream,mpegts,mpeg,vcd,svcd,dvd,vob") != 0;
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

} // namespace

int openStartCodeFilter(const AVStream& source, const AVOutputFormat& format,
                        BitstreamFilterHandle& filter) {
    const char* name = startCodeFilter(source.codecpar->codec_id);
    if (name == nullptr || !wantsStartCodes(format) || !hasLengthPrefixes(*source.codecpar)) {
        return 0;
    }
    return openFilter(name, source, filter);
}

} // namespace velmora
