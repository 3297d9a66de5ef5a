#include "VideoEncoder.h"

#include "EncodedPackets.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace velmora {
namespace {

constexpr int kGroupOfPictures = 12;
// Fixed, whatever the machine has: the packets must not depend on the number of its cores.
constexpr int kSliceThreads = 4;

bool isOfferedForVideo(AVCodecID codec) {
    return codec == AV_CODEC_ID_MPEG4 || codec == AV_CODEC_ID_FLV1 || codec == AV_CODEC_ID_WMV2 ||
           codec == AV_CODEC_ID_H264;
}

/// Pictures that come as red, green and blue get the matrix that is usual for their size.
AVColorSpace matrixFor(const AVCodecParameters& source, int height) {
    constexpr int leastHdHeight = 720;
    const AVPixFmtDescriptor* format =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(source.format));
    const bool isRgb = source.color_space == AVCOL_SPC_RGB ||
                       (format != nullptr && (format->flags & AV_PIX_FMT_FLAG_RGB) != 0);
    if (!isRgb) {
        return source.color_space;
    }
    return height >= leastHdHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

void configureH264(AVCodecContext& encoder, int threadType) {
    encoder.me_range = 16;
    encoder.max_qdiff = 4;
    encoder.qmin = 10;
    encoder.qmax = 51;
    encoder.qcompress = 0.6F;
    encoder.keyint_min = 25;
    encoder.thread_type = threadType;
    // Slices hold back no picture; whole pictures in threads hold back one each.
    encoder.thread_count = threadType == FF_THREAD_SLICE ? kSliceThreads : 0;
}

} // namespace

int VideoEncoder::open(const VideoSettings& settings, AVRational frameDuration,
                       const AVOutputFormat& format, const AVCodecParameters& source) {
    const Timing timing{frameDuration, av_inv_q(frameDuration)};
    return open(settings, timing, FF_THREAD_SLICE, format, source);
}

int VideoEncoder::open(const VideoSettings& settings, const Timing& timing,
                       const AVOutputFormat& format, const AVCodecParameters& source) {
    return open(settings, timing, FF_THREAD_FRAME, format, source);
}

int VideoEncoder::open(const VideoSettings& settings, const Timing& timing, int threadType,
                       const AVOutputFormat& format, const AVCodecParameters& source) {
    const AVCodec* codec =
        isOfferedForVideo(settings.codec) ? avcodec_find_encoder(settings.codec) : nullptr;
    if (codec == nullptr) {
        return AVERROR_ENCODER_NOT_FOUND;
    }
    encoder_.reset(avcodec_alloc_context3(codec));
    if (encoder_ == nullptr) {
        return AVERROR(ENOMEM);
    }
    configure(settings, timing, threadType, source);
    if ((format.flags & AVFMT_GLOBALHEADER) != 0) {
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    // Meant for x264; the other encoders have no such option, which is no failure.
    av_opt_set(encoder_->priv_data, "preset", "superfast", 0);
    return avcodec_open2(encoder_.get(), codec, nullptr);
}

void VideoEncoder::configure(const VideoSettings& settings, const Timing& timing, int threadType,
                             const AVCodecParameters& source) {
    encoder_->bit_rate = settings.bitRate;
    encoder_->width = settings.width;
    encoder_->height = settings.height;
    encoder_->time_base = timing.timeBase;
    encoder_->framerate = timing.frameRate;
    encoder_->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder_->gop_size = kGroupOfPictures;
    encoder_->max_b_frames = 0; // packets are numbered in coding order
    encoder_->color_range = AVCOL_RANGE_MPEG;
    encoder_->color_primaries = source.color_primaries;
    encoder_->color_trc = source.color_trc;
    encoder_->colorspace = matrixFor(source, settings.height);
    if (settings.codec == AV_CODEC_ID_H264) {
        configureH264(*encoder_, threadType);
    }
}

int VideoEncoder::describe(AVCodecParameters& parameters) const {
    return avcodec_parameters_from_context(&parameters, encoder_.get());
}

PacketHandle VideoEncoder::encode(AVFrame& frame) {
    PacketHandle packet(av_packet_alloc());
    frame.pts = encoded_++;
    if (packet == nullptr || avcodec_send_frame(encoder_.get(), &frame) < 0 ||
        avcodec_receive_packet(encoder_.get(), packet.get()) < 0) {
        return nullptr;
    }
    return packet;
}

int VideoEncoder::encodeAt(const AVFrame* frame, std::vector<PacketHandle>& packets) {
    return appendEncoded(*encoder_, frame, packets);
}

} // namespace velmora
