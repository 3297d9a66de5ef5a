#include "PictureScaler.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <array>
#include <utility>

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
    const Source source{picture.width, picture.height, picture.format, isFullRange(picture)};
    if (scaler_ != nullptr && source == source_) {
        return true;
    }
    source_ = source;
    scaler_.reset(sws_alloc_context());
    if (scaler_ == nullptr) {
        return false;
    }
    const int fullRange = source.fullRange ? 1 : 0;
    const std::array<std::pair<const char*, int>, 9> options = {{{"srcw", picture.width},
                                                                 {"srch", picture.height},
                                                                 {"src_format", picture.format},
                                                                 {"src_range", fullRange},
                                                                 {"dstw", encoder.width},
                                                                 {"dsth", encoder.height},
                                                                 {"dst_format", encoder.pix_fmt},
                                                                 {"dst_range", 0},
                                                                 {"sws_flags", SWS_BICUBIC}}};
    for (const auto& [name, value] : options) {
        av_opt_set_int(scaler_.get(), name, value, 0);
    }
    if (sws_init_context(scaler_.get(), nullptr, nullptr) < 0) {
        av_log(nullptr, AV_LOG_ERROR, "pictures of %d x %d cannot be scaled to %d x %d\n",
               picture.width, picture.height, encoder.width, encoder.height);
        scaler_.reset();
        return false;
    }
    // Full-range pictures are brought into the range that the output has. The matrix matters where
    // the source is RGB.
    const int* matrix = sws_getCoefficients(encoder.colorspace);
    constexpr int neutral = 1 << 16;
    sws_setColorspaceDetails(scaler_.get(), matrix, fullRange, matrix, 0, 0, neutral, neutral);
    return true;
}

} // namespace velmora
