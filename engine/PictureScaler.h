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

    ScalerHandle scaler_;
    bool fromFullRange_ = false; ///< how scaler_ reads pictures
};

} // namespace velmora
