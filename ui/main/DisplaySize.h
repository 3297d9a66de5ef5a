#pragma once

#include "SampleAspectRatio.h"

#include <QSize>

namespace velmora {

/// The size in the proportions in which a picture of `frameSize` samples is to be shown; not
/// smaller than that on either side. A ratio that no video is made with counts as 1:1.
QSize displaySize(const QSize& frameSize, SampleAspectRatio aspect);

} // namespace velmora
