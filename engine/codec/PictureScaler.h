#pragma once

#include "AvHandles.h"

namespace velmora {

/// Brings decoded pictures of any size and format to those of an encoder.
class PictureScaler {
public:
    /// The frame to be encoded: the scaled picture, or the picture's own memory where nothing is to
    /// be changed. Carries nothing of what the decoder said about the picture: type, captions,
    /// timing. Null when it cannot be had.
    FrameHandle fit(const AVFrame& picture, const AVCodecContext& encoder);

private:
    FrameHandle scale(const AVFrame& picture, const AVCodecContext& encoder);
    bool prepare(const AVFrame& picture, const AVCodecContext& encoder);

    /// What the scaler was made for.
    struct Source {
        int width = 0;
        int height = 0;
        int format = AV_PIX_FMT_NONE;
        bool fullRange = false;

        bool operator==(const Source&) const = default;
    };

    ScalerHandle scaler_;
    Source source_;
};

} // namespace velmora
