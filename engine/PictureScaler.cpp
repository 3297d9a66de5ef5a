#include "PictureScaler.h"

namespace velmora {
namespace {

FrameHandle emptyFrame(int width, int height, int format) {
    FrameHandle frame(av_frame_alloc());
    if (frame != nullptr) {
        frame->width = width;
        frame->height = height;
        frame->format = format;
    }
    return frame;
}

/// A frame that shares the picture's memory.
FrameHandle sharedPixels(const AVFrame& picture) {
    FrameHandle frame = emptyFrame(picture.width, picture.height, picture.format);
    if (frame == nullptr) {
        return nullptr;
    }
    for (int i = 0; i < AV_NUM_DATA_POINTERS; ++i) {
        frame->data[i] = picture.data[i];
        frame->linesize[i] = picture.linesize[i];
        if (picture.buf[i] != nullptr) {
            frame->buf[i] = av_buffer_ref(picture.buf[i]);
            if (frame->buf[i] == nullptr) {
                return nullptr;
            }
        }
    }
    return frame;
}

bool isFullRange(const AVFrame& picture) {
    return picture.color_range == AVCOL_RANGE_JPEG;
}

} // namespace

FrameHandle PictureScaler::fit(const AVFrame& picture, const AVCodecContext& encoder) {
    const bool fits = picture.width == encoder.width && picture.height == encoder.height &&
                      picture.format == encoder.pix_fmt && !isFullRange(picture);
    return fits ? sharedPixels(picture) : scale(picture, encoder);
}

FrameHandle PictureScaler::scale(const AVFrame& picture, const AVCodecContext& encoder) {
    FrameHandle frame = emptyFrame(encoder.width, encoder.height, encoder.pix_fmt);
    if (frame == nullptr || !prepare(picture, encoder) || av_frame_get_buffer(frame.get(), 0) < 0) {
        return nullptr;
    }
    sws_scale(scaler_.get(), picture.data, picture.linesize, 0, picture.height, frame->data,
              frame->linesize);
    return frame;
}

bool PictureScaler::prepare(const AVFrame& picture, const AVCodecContext& encoder) {
    const SwsContext* before = scaler_.get();
    scaler_.reset(sws_getCachedContext(scaler_.release(), picture.width, picture.height,
                                       static_cast<AVPixelFormat>(picture.format), encoder.width,
                                       encoder.height, encoder.pix_fmt, SWS_BICUBIC, nullptr,
                                       nullptr, nullptr));
    if (scaler_ == nullptr) {
        av_log(nullptr, AV_LOG_ERROR, "pictures of %d x %d cannot be scaled to %d x %d\n",
               picture.width, picture.height, encoder.width, encoder.height);
        return false;
    }
    if (scaler_.get() != before || isFullRange(picture) != fromFullRange_) {
        fromFullRange_ = isFullRange(picture);
        // Full-range pictures are brought into the range that the output has; the matrix stays.
        const int* matrix = sws_getCoefficients(picture.colorspace);
        constexpr int neutral = 1 << 16;
        sws_setColorspaceDetails(scaler_.get(), matrix, fromFullRange_ ? 1 : 0, matrix, 0, 0,
                                 neutral, neutral);
    }
    return true;
}

} // namespace velmora
