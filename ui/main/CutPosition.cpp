#include "CutPosition.h"

#include "Saturated.h"
#include "TimeText.h"

#include <cmath>

namespace velmora {
namespace {

constexpr std::int64_t kUsPerMs = 1000;

} // namespace

void CutPosition::reset() {
    us_.reset();
    isExact_ = false;
}

void CutPosition::setByBar(double value, float duration) {
    constexpr double kRounding = 1e-6; // of the way from a time to a percentage and back
    const double ms = std::floor(value * static_cast<double>(duration) * 10.0 + kRounding);
    isExact_ = going_.has_value();
    us_ = going_.value_or(truncatedTo64Bits(ms) * kUsPerMs);
    seconds_ = isExact_ ? toSeconds(this->ms()) : static_cast<float>(value * duration / 100.0);
}

std::int64_t CutPosition::ms() const {
    return isExact_ ? (us() + kUsPerMs - 1) / kUsPerMs : toMilliseconds(seconds_);
}

QString CutPosition::text() const {
    return isExact_ ? millisecondsText(ms()) : timeText(seconds_);
}

std::optional<std::int64_t> ExactMark::usIn(const QLineEdit& field) const {
    if (us && field.text() == text) {
        return us;
    }
    const auto typed = parsedMilliseconds(field.text());
    return typed ? std::optional(std::int64_t{*typed} * kUsPerMs) : std::nullopt;
}

std::int64_t ExactMark::nearestMsIn(const QLineEdit& field) const {
    return (usIn(field).value_or(0) + kUsPerMs / 2) / kUsPerMs;
}

} // namespace velmora
