#pragma once

#include "AvHandles.h"

#include <string>

namespace velmora {

/// How the pictures of a stream are turned before they are shown.
struct PictureTurn {
    bool swapsSides = false; ///< width becomes height
    bool flipsAcross = false;   ///< left becomes right, after the sides have been swapped
    bool flipsDown = false;     ///< top becomes bottom, likewise
};

/// By the stream's display matrix, to the next quarter of a turn.
PictureTurn turnOf(const AVStream& stream);

/// The filters that turn a picture, each with a comma behind it.
std::string filtersOf(const PictureTurn& turn);

} // namespace velmora
