#include "CopyRules.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <algorithm>
#include <array>
#include <span>

namespace velmora {
namespace {

constexpr const char* kMp4 = "mp4,ipod";
constexpr const char* kMov = "mov";
constexpr const char* kMatroska = "matroska";
constexpr const char* kWebm = "webm";
constexpr const char* kTransport = "mpegts";

bool isOneOf(const AVOutputFormat& format, const char* names) {
    return av_match_name(format.name, names) != 0;
}

/// A codec that a copy into these containers has been proved right for.
struct Proved {
    const char* formats;
    AVCodecID codec;
};

constexpr std::array kPictures = {
    Proved{"mp4,ipod,mov,matroska,mpegts", AV_CODEC_ID_H264},
    Proved{"mp4,mov,matroska", AV_CODEC_ID_MJPEG},
    Proved{"mov,matroska", AV_CODEC_ID_PRORES},
    Proved{"mov,matroska", AV_CODEC_ID_DNXHD},
    Proved{"matroska", AV_CODEC_ID_FFV1},
    Proved{"mp4,ipod,mov,matroska", AV_CODEC_ID_MPEG4},
};

constexpr std::array kSound = {
    Proved{"mp4,ipod,mov,matroska,mpegts", AV_CODEC_ID_AAC},
    Proved{"mp4,mov,matroska,mpegts", AV_CODEC_ID_MP3},
    Proved{"mp4,mov,matroska,mpegts", AV_CODEC_ID_AC3},
    Proved{"mpegts", AV_CODEC_ID_MP2},
    Proved{"mp4", AV_CODEC_ID_OPUS},
    Proved{"mp4,matroska", AV_CODEC_ID_FLAC},
};

bool isProved(std::span<const Proved> table, const AVOutputFormat& format, AVCodecID codec) {
    return std::ranges::any_of(table, [&](const Proved& entry) {
        return entry.codec == codec && isOneOf(format, entry.formats);
    });
}

bool isPcm(AVCodecID codec) {
    return av_get_exact_bits_per_sample(codec) > 0 && av_get_exact_bits_per_sample(codec) % 8 == 0;
}

bool takesSound(const AVOutputFormat& format, AVCodecID codec) {
    if (isPcm(codec)) {
        return isOneOf(format, kMov) || isOneOf(format, kMatroska);
    }
    return isProved(kSound, format, codec);
}

std::string cannotHold(const AVOutputFormat& format, const char* what, AVCodecID codec) {
    return std::string("Files of this kind (") + format.name + ") cannot hold this video's " +
           what + " (" + avcodec_get_name(codec) + ") exactly.";
}

} // namespace

bool isIntraOnly(AVCodecID codec) {
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
}

bool canEncodeLike(const AVStream& stream) {
    constexpr std::array kFormats = {AV_PIX_FMT_YUV420P,   AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUV422P,
                                     AV_PIX_FMT_YUVJ422P,  AV_PIX_FMT_YUV444P,  AV_PIX_FMT_YUVJ444P,
                                     AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV422P10};
    const AVCodecParameters& parameters = *stream.codecpar;
    return parameters.codec_id == AV_CODEC_ID_H264 &&
           std::ranges::find(kFormats, static_cast<AVPixelFormat>(parameters.format)) !=
               kFormats.end() &&
           avcodec_find_encoder_by_name("libx264") != nullptr;
}

std::string refusalOf(const AVStream& pictures, const AVStream* sound,
                      const AVOutputFormat& format) {
    const AVCodecID codec = pictures.codecpar->codec_id;
    if (!isProved(kPictures, format, codec)) {
        return cannotHold(format, "pictures", codec);
    }
    if (sound != nullptr && !takesSound(format, sound->codecpar->codec_id)) {
        return cannotHold(format, "sound", sound->codecpar->codec_id);
    }
    return {};
}

SoundAbilities soundAbilities(const AVOutputFormat& format) {
    const bool hasEditList = isOneOf(format, kMp4) || isOneOf(format, kMov);
    const bool discardsEnd = isOneOf(format, kMatroska) || isOneOf(format, kWebm);
    return {.startsBefore = hasEditList,
            .shiftsAll = discardsEnd,
            .cutsEnd = hasEditList || discardsEnd};
}

int soundPreRoll(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_AAC:
    case AV_CODEC_ID_AC3:
        return 1;
    case AV_CODEC_ID_MP3:
        return 2;
    case AV_CODEC_ID_OPUS:
        return 4;
    default:
        return 0;
    }
}

} // namespace velmora
