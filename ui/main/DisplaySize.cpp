#include "DisplaySize.h"

namespace velmora {
namespace {

// Beyond it, a damaged or a hostile file would leave no more than a line to see.
constexpr double kMostStretch = 10;

} // namespace

QSize displaySize(const QSize& frameSize, SampleAspectRatio aspect) {
    const double stretch = static_cast<double>(aspect.width) / aspect.height;
    if (stretch > kMostStretch || stretch < 1 / kMostStretch) {
        return frameSize;
    }
    if (stretch > 1) {
        return {qRound(frameSize.width() * stretch), frameSize.height()};
    }
    return {frameSize.width(), qRound(frameSize.height() / stretch)};
}

} // namespace velmora
