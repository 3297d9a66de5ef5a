#pragma once

#include "AvHandles.h"

#include <string>

namespace velmora {

/// The colours that pictures are given out in.
struct ColourDescription {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
};

/// Those of an output whose pictures have the source's colours, where every player knows them, and
/// BT.709 where not: wide gamuts and high dynamic range would look pale there. `height` is that of
/// the output, in pixels.
ColourDescription outputColours(const AVCodecParameters& source, int height);

/// The filters that bring such a picture to BT.709, each with a comma behind it; empty where the
/// colours stay. A line in the log tells of tone mapping when `tells` is set.
std::string colourFilters(const AVFrame& picture, bool tells);

} // namespace velmora
