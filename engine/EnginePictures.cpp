// The engine's operations on single pictures.

#include "AvHandles.h"
#include "BmpFile.h"
#include "ConversionEngine.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace velmora {

void FreePicture::operator()(AVFrame* picture) const noexcept {
    av_frame_free(&picture);
}

PictureHandle ConversionEngine::allocPicture(AVPixelFormat pixelFormat, int width, int height) {
    PictureHandle picture(av_frame_alloc());
    const int size = av_image_get_buffer_size(pixelFormat, width, height, 1);
    if (picture == nullptr || size <= 0) {
        return nullptr;
    }
    picture->buf[0] = av_buffer_alloc(static_cast<std::size_t>(size));
    if (picture->buf[0] == nullptr) {
        return nullptr;
    }
    av_image_fill_arrays(picture->data, picture->linesize, picture->buf[0]->data, pixelFormat,
                         width, height, 1);
    picture->format = pixelFormat;
    picture->width = width;
    picture->height = height;
    return picture;
}

void ConversionEngine::writeBmp(std::uint8_t* pixels, const std::string& path, int width,
                                int height) {
    velmora::writeBmp(pixels, path, width, height);
}

// The frame tells all that is needed; the decoder may already know of a later picture's size.
void ConversionEngine::scaleToBmp(const std::string& path, AVCodecContext& /*decoder*/,
                                  const AVFrame& frame, int width, int height) {
    velmora::scaleToBmp(path, frame, width, height);
}

} // namespace velmora
