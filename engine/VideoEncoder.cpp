#include "VideoEncoder.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace velmora {
namespace {

constexpr int kGroupOfPictures = 12;
// Fixed, whatever the machine has: the packets must not depend on the number of its cores.
constexpr int kSliceThreads = 4;

bool isOffered(AVCodecID codec) {
    return codec == AV_CODEC_ID_MPEG4 || codec == AV_CODEC_ID_FLV1 || codec == AV_CODEC_ID_WMV2 ||
           codec == AV_CODEC_ID_H264;
}

void configureH264(AVCodecContext& encoder) {
    encoder.me_range = 16;
    encoder.max_qdiff = 4;
    encoder.qmin = 10;
    encoder.qmax = 51;
    encoder.qcompress = 0.6F;
    encoder.keyint_min = 25;
    // Slices hold back no picture; whole pictures in threads would hold back one each.
    encoder.thread_type = FF_THREAD_SLICE;
    encoder.thread_count = kSliceThreads;
}

} // namespace

int VideoEncoder::open(const VideoSettings& settings, AVRational frameDuration,
                       const AVOutputFormat& format, const AVCodecParameters& source) {
    const AVCodec* codec =
        isOffered(settings.codec) ? avcodec_find_encoder(settings.codec) : nullptr;
    if (codec == nullptr) {
        return AVERROR_ENCODER_NOT_FOUND;
    }
    encoder_.reset(avcodec_alloc_context3(codec));
    if (encoder_ == nullptr) {
        return AVERROR(ENOMEM);
    }
    configure(settings, frameDuration, source);
    if ((format.flags & AVFMT_GLOBALHEADER) != 0) {
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    // Meant for x264; the other encoders have no such option, which is no failure.
    av_opt_set(encoder_->priv_data, "preset", "superfast", 0);
    return avcodec_open2(encoder_.get(), codec, nullptr);
}

void VideoEncoder::configure(const VideoSettings& settings, AVRational frameDuration,
                             const AVCodecParameters& source) {
    encoder_->bit_rate = settings.bitRate;
    encoder_->width = settings.width;
    encoder_->height = settings.height;
    encoder_->time_base = frameDuration;
    encoder_->framerate = av_inv_q(frameDuration);
    encoder_->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder_->gop_size = kGroupOfPictures;
    encoder_->max_b_frames = 0; // packets are numbered in coding order
    encoder_->color_range = AVCOL_RANGE_MPEG;
    encoder_->color_primaries = source.color_primaries;
    encoder_->color_trc = source.color_trc;
    encoder_->colorspace = source.color_space;
    if (settings.codec == AV_CODEC_ID_H264) {
        configureH264(*encoder_);
    }
}

int VideoEncoder::describe(AVCodecParameters& parameters) const {
    return avcodec_parameters_from_context(&parameters, encoder_.get());
}

PacketHandle VideoEncoder::encode(const AVFrame& picture) {
    const FrameHandle frame = fitted(picture);
    PacketHandle packet(av_packet_alloc());
    if (frame == nullptr || packet == nullptr) {
        return nullptr;
    }
    frame->pts = encoded_++;
    if (avcodec_send_frame(encoder_.get(), frame.get()) < 0 ||
        avcodec_receive_packet(encoder_.get(), packet.get()) < 0) {
        return nullptr;
    }
    return packet;
}

FrameHandle VideoEncoder::fitted(const AVFrame& picture) {
    const bool fits = picture.width == encoder_->width && picture.height == encoder_->height &&
                      picture.format == encoder_->pix_fmt &&
                      picture.color_range != AVCOL_RANGE_JPEG;
    if (!fits) {
        return scaled(picture);
    }
    // The same pixels without what the decoder said about them: type, captions, timing.
    FrameHandle frame(av_frame_alloc());
    if (frame == nullptr) {
        return nullptr;
    }
    frame->width = picture.width;
    frame->height = picture.height;
    frame->format = picture.format;
    for (int i = 0; i < AV_NUM_DATA_POINTERS && picture.buf[i] != nullptr; ++i) {
        frame->buf[i] = av_buffer_ref(picture.buf[i]);
        if (frame->buf[i] == nullptr) {
            return nullptr;
        }
    }
    for (int i = 0; i < AV_NUM_DATA_POINTERS; ++i) {
        frame->data[i] = picture.data[i];
        frame->linesize[i] = picture.linesize[i];
    }
    return frame;
}

FrameHandle VideoEncoder::scaled(const AVFrame& picture) {
    if (!prepareScaler(picture) || !prepareScaled()) {
        return nullptr;
    }
    sws_scale(scaler_.get(), picture.data, picture.linesize, 0, picture.height, scaled_->data,
              scaled_->linesize);
    return FrameHandle(av_frame_clone(scaled_.get()));
}

bool VideoEncoder::prepareScaled() {
    if (scaled_ != nullptr) {
        return av_frame_make_writable(scaled_.get()) >= 0; // the encoder may still hold the last
    }
    scaled_.reset(av_frame_alloc());
    if (scaled_ == nullptr) {
        return false;
    }
    scaled_->width = encoder_->width;
    scaled_->height = encoder_->height;
    scaled_->format = encoder_->pix_fmt;
    return av_frame_get_buffer(scaled_.get(), 0) >= 0;
}

bool VideoEncoder::prepareScaler(const AVFrame& picture) {
    const SwsContext* before = scaler_.get();
    scaler_.reset(sws_getCachedContext(scaler_.release(), picture.width, picture.height,
                                       static_cast<AVPixelFormat>(picture.format), encoder_->width,
                                       encoder_->height, encoder_->pix_fmt, SWS_BICUBIC, nullptr,
                                       nullptr, nullptr));
    if (scaler_ == nullptr) {
        av_log(encoder_.get(), AV_LOG_ERROR, "pictures of %d x %d cannot be scaled\n",
               picture.width, picture.height);
        return false;
    }
    const bool fullRange = picture.color_range == AVCOL_RANGE_JPEG;
    if (scaler_.get() != before || fullRange != scalesFullRange_) {
        // Full-range pictures are brought into the range that the output has; the matrix stays.
        const int* matrix = sws_getCoefficients(picture.colorspace);
        constexpr int neutral = 1 << 16;
        sws_setColorspaceDetails(scaler_.get(), matrix, fullRange ? 1 : 0, matrix, 0, 0, neutral,
                                 neutral);
        scalesFullRange_ = fullRange;
    }
    return true;
}

} // namespace velmora
