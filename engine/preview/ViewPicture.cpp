#include "ViewPicture.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <utility>

namespace velmora {
namespace {

constexpr int kLeastHdHeight = 720;
constexpr int kOne = 1 << 16; // of the scaler's contrast and saturation

int chroma(int samples) {
    return (samples + 1) / 2;
}

/// Where the planes of 4:2:0 begin, and how long their rows are.
template <class Byte> struct Planes {
    Planes(Byte* data, int width, int height)
        : begin{data, data + static_cast<std::ptrdiff_t>(width) * height,
                data + static_cast<std::ptrdiff_t>(width) * height +
                    static_cast<std::ptrdiff_t>(chroma(width)) * chroma(height),
                nullptr},
          stride{width, chroma(width), chroma(width), 0} {}

    std::array<Byte*, 4> begin;
    std::array<int, 4> stride;
};

std::size_t planeBytes(int width, int height) {
    return static_cast<std::size_t>(width) * height +
           2 * static_cast<std::size_t>(chroma(width)) * chroma(height);
}

/// With room behind its rows: the scaler reads and writes past their ends.
FrameHandle roomFor(AVPixelFormat format, int width, int height) {
    FrameHandle frame(av_frame_alloc());
    if (frame == nullptr) {
        return nullptr;
    }
    frame->format = format;
    frame->width = width;
    frame->height = height;
    return av_frame_get_buffer(frame.get(), 0) >= 0 ? std::move(frame) : nullptr;
}

/// The three planes of a picture of this size.
void copyPlanes(const auto& from, const auto& fromStride, const auto& to, const auto& toStride,
                const ViewPicture& size) {
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const bool isLuma = plane == 0;
        av_image_copy_plane(to[plane], toStride[plane], from[plane], fromStride[plane],
                            isLuma ? size.width : chroma(size.width),
                            isLuma ? size.height : chroma(size.height));
    }
}

bool isRgb(const AVFrame& picture) {
    const AVPixFmtDescriptor* format =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    return format != nullptr && (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

bool isFullRange(const AVFrame& picture) {
    switch (picture.format) {
    case AV_PIX_FMT_YUVJ411P:
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ444P:
        return true;
    default:
        return picture.color_range == AVCOL_RANGE_JPEG && !isRgb(picture);
    }
}

/// Files that do not tell it have the usual one of their size.
AVColorSpace matrixOf(const AVFrame& picture) {
    if (picture.colorspace == AVCOL_SPC_UNSPECIFIED || isRgb(picture)) {
        return picture.height >= kLeastHdHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    }
    return picture.colorspace;
}

void tellColours(SwsContext& scaler, AVColorSpace matrix, bool fromFull, bool toFull) {
    const int* const coefficients = sws_getCoefficients(matrix);
    sws_setColorspaceDetails(&scaler, coefficients, fromFull ? 1 : 0, coefficients, toFull ? 1 : 0,
                             0, kOne, kOne);
}

/// One plane, turned: its rows become columns, or run the other way.
void turnPlane(const std::uint8_t* from, std::uint8_t* to, int width, int height,
               const DisplayTurn& turn) {
    const int rows = turn.swapsSides ? width : height;
    const int columns = turn.swapsSides ? height : width;
    for (int row = 0; row < rows; ++row) {
        const int y = turn.flipsDown ? rows - 1 - row : row;
        for (int column = 0; column < columns; ++column) {
            const int x = turn.flipsAcross ? columns - 1 - column : column;
            *to++ = turn.swapsSides ? from[static_cast<std::ptrdiff_t>(x) * width + y]
                                    : from[static_cast<std::ptrdiff_t>(y) * width + x];
        }
    }
}

ViewPicture turned(ViewPicture picture, const DisplayTurn& turn) {
    if (turn == DisplayTurn()) {
        return picture;
    }
    ViewPicture result = picture;
    if (turn.swapsSides) {
        std::swap(result.width, result.height);
    }
    const Planes from(picture.planes.data(), picture.width, picture.height);
    const Planes to(result.planes.data(), result.width, result.height);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const bool isLuma = plane == 0;
        turnPlane(from.begin.at(plane), to.begin.at(plane),
                  isLuma ? picture.width : chroma(picture.width),
                  isLuma ? picture.height : chroma(picture.height), turn);
    }
    return result;
}

} // namespace

ViewPicture ViewScaler::scale(const AVFrame& picture, int width, int height) {
    if (turn_.swapsSides) {
        std::swap(width, height);
    }
    ViewPicture result{.width = std::clamp(picture.width, 1, std::max(width, 1)),
                       .height = std::clamp(picture.height, 1, std::max(height, 1)),
                       .matrix = matrixOf(picture),
                       .fullRange = isFullRange(picture)};
    scaler_.reset(sws_getCachedContext(scaler_.release(), picture.width, picture.height,
                                       static_cast<AVPixelFormat>(picture.format), result.width,
                                       result.height, AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr,
                                       nullptr, nullptr));
    if (scaler_ == nullptr) {
        return {};
    }
    tellColours(*scaler_, result.matrix, result.fullRange || isRgb(picture), result.fullRange);
    const FrameHandle scaled = roomFor(AV_PIX_FMT_YUV420P, result.width, result.height);
    if (scaled == nullptr) {
        return {};
    }
    sws_scale(scaler_.get(), picture.data, picture.linesize, 0, picture.height, scaled->data,
              scaled->linesize);
    result.planes.resize(planeBytes(result.width, result.height));
    const Planes to(result.planes.data(), result.width, result.height);
    copyPlanes(scaled->data, scaled->linesize, to.begin, to.stride, result);
    return turned(std::move(result), turn_);
}

void ViewScaler::paint(const ViewPicture& picture, PictureAnswer& answer) {
    painter_.reset(sws_getCachedContext(painter_.release(), picture.width, picture.height,
                                        AV_PIX_FMT_YUV420P, picture.width, picture.height,
                                        AV_PIX_FMT_RGB32, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (painter_ == nullptr || picture.planes.empty()) {
        return;
    }
    tellColours(*painter_, picture.matrix, picture.fullRange, true);
    const FrameHandle from = roomFor(AV_PIX_FMT_YUV420P, picture.width, picture.height);
    const FrameHandle to = roomFor(AV_PIX_FMT_RGB32, picture.width, picture.height);
    if (from == nullptr || to == nullptr) {
        return;
    }
    const Planes planes(picture.planes.data(), picture.width, picture.height);
    copyPlanes(planes.begin, planes.stride, from->data, from->linesize, picture);
    sws_scale(painter_.get(), from->data, from->linesize, 0, picture.height, to->data,
              to->linesize);
    answer.width = picture.width;
    answer.height = picture.height;
    answer.pixels.resize(static_cast<std::size_t>(picture.width) * picture.height);
    const int row = picture.width * static_cast<int>(sizeof(std::uint32_t));
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the library counts in bytes
    auto* const pixels = reinterpret_cast<std::uint8_t*>(answer.pixels.data());
    av_image_copy_plane(pixels, row, to->data[0], to->linesize[0], row, picture.height);
}

} // namespace velmora
