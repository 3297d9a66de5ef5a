#include "DirectText.h"

#include <cstdlib>

namespace velmora {
namespace {

constexpr std::int64_t kSeenUs = 50'000; // is rounded to a tenth of a second

/// "2.0 s earlier"
QString shiftText(std::int64_t shiftUs) {
    return QString("%1 s %2")
        .arg(static_cast<double>(std::abs(shiftUs)) / 1'000'000.0, 0, 'f', 1)
        .arg(shiftUs < 0 ? "earlier" : "later");
}

} // namespace

QString directSentence(const DirectStretch& direct, std::int64_t startUs, std::int64_t endUs) {
    const std::int64_t startShift = direct.beginUs - startUs;
    const std::int64_t endShift = direct.endUs - endUs;
    if (std::abs(startShift) < kSeenUs) {
        return {};
    }
    const QString starts = "This cut starts " + shiftText(startShift);
    if (std::abs(endShift) < kSeenUs) {
        return starts + '.';
    }
    if (shiftText(endShift) == shiftText(startShift)) {
        return starts + ", and ends as much " + (startShift < 0 ? "earlier." : "later.");
    }
    return starts + " and ends " + shiftText(endShift) + '.';
}

} // namespace velmora
