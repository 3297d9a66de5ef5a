#pragma once

#include "AvHandles.h"
#include "DisplayMatrix.h"
#include "PictureService.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora {

/// A picture at the size of a view, upright: three planes of 4:2:0, one after the other, rows
/// without gaps.
struct ViewPicture {
    int width = 0;
    int height = 0;
    AVColorSpace matrix = AVCOL_SPC_BT709;
    bool fullRange = false;
    std::vector<std::uint8_t> planes = {};
};

/// Makes pictures of a view from decoded ones, and what is painted from those. Belongs to one
/// thread.
class ViewScaler {
public:
    /// `turn`: how the pictures of the stream are turned.
    explicit ViewScaler(const DisplayTurn& turn) : turn_(turn) {}

    /// Fits `picture` into the view's `width` x `height`, never larger than it is on either side.
    /// Without memory, or for a format that cannot be converted, a picture without planes.
    ViewPicture scale(const AVFrame& picture, int width, int height);
    /// Puts pixels and size into the answer, by the picture's colours.
    void paint(const ViewPicture& picture, PictureAnswer& answer);

private:
    DisplayTurn turn_;
    ScalerHandle scaler_;
    ScalerHandle painter_;
};

} // namespace velmora
