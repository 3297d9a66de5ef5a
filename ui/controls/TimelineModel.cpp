#include "TimelineModel.h"

#include <algorithm>
#include <cmath>

namespace velmora {
namespace {

// At full zoom; at a usual width some hundred pictures are visible then.
constexpr double kPicturePixels = 12.0;

} // namespace

void TimelineModel::setLength(std::int64_t us) {
    TimelineModel fresh;
    fresh.width_ = width_;
    fresh.peaks_ = peaks_;
    *this = fresh;
    lengthUs_ = std::max<std::int64_t>(us, 0);
    markEndUs_ = lengthUs_;
    viewUs_ = lengthUs_;
}

void TimelineModel::setWidth(double pixels) {
    width_ = std::max(pixels, 1.0);
    show(static_cast<double>(viewBeginUs_), static_cast<double>(viewUs_));
}

void TimelineModel::setPictureLength(std::int64_t us) {
    pictureUs_ = std::clamp<std::int64_t>(us, 1000, 1'000'000);
}

void TimelineModel::setPosition(std::int64_t us) {
    positionUs_ = std::clamp<std::int64_t>(us, 0, lengthUs_);
    if (positionUs_ < viewBeginUs_ || positionUs_ > viewEndUs()) {
        const auto view = static_cast<double>(viewUs_);
        show(static_cast<double>(positionUs_) - view / 2, view);
    }
}

void TimelineModel::setMarks(std::int64_t beginUs, std::int64_t endUs) {
    markBeginUs_ = std::clamp<std::int64_t>(beginUs, 0, lengthUs_);
    markEndUs_ = std::clamp<std::int64_t>(endUs, markBeginUs_, lengthUs_);
}

std::int64_t TimelineModel::leastViewUs() const {
    const double least = static_cast<double>(pictureUs_) * width_ / kPicturePixels;
    return std::min(lengthUs_, static_cast<std::int64_t>(least));
}

/// As near to that as there is video and detail.
void TimelineModel::show(double beginUs, double viewUs) {
    const double most = static_cast<double>(lengthUs_);
    const double view = std::clamp(viewUs, static_cast<double>(leastViewUs()), most);
    viewUs_ = std::llround(view);
    viewBeginUs_ = std::clamp<std::int64_t>(std::llround(beginUs), 0, lengthUs_ - viewUs_);
}

/// The position stays where it is on screen, unless it was out of sight.
void TimelineModel::zoom(double factor) {
    const auto view = static_cast<double>(viewUs_);
    const auto position = static_cast<double>(positionUs_);
    const bool isVisible = positionUs_ >= viewBeginUs_ && positionUs_ <= viewEndUs();
    const double share =
        isVisible && viewUs_ > 0 ? (position - static_cast<double>(viewBeginUs_)) / view : 0.5;
    const double wanted = std::clamp(view / factor, static_cast<double>(leastViewUs()),
                                     static_cast<double>(lengthUs_));
    show(position - share * wanted, wanted);
}

void TimelineModel::scroll(double pixels) {
    show(static_cast<double>(viewBeginUs_) + pixels * usPerPixel(), static_cast<double>(viewUs_));
}

bool TimelineModel::showsPictures() const {
    return lengthUs_ > 0 && static_cast<double>(pictureUs_) >= kClosestTicks * usPerPixel();
}

double TimelineModel::usPerPixel() const {
    return static_cast<double>(viewUs_) / width_;
}

double TimelineModel::xOf(std::int64_t us) const {
    return viewUs_ > 0 ? static_cast<double>(us - viewBeginUs_) / usPerPixel() : 0.0;
}

std::int64_t TimelineModel::timeAt(double x) const {
    const std::int64_t us = viewBeginUs_ + std::llround(x * usPerPixel());
    return std::clamp<std::int64_t>(us, 0, lengthUs_);
}

/// Thinned from the first one of all on, so that they stay the same while one scrolls.
std::vector<double> TimelineModel::ticksOf(const std::vector<std::int64_t>& times) const {
    std::vector<double> ticks;
    const double closest = kClosestTicks * usPerPixel();
    const double edge = usPerPixel();
    double last = -2 * closest - std::abs(static_cast<double>(times.empty() ? 0 : times.front()));
    for (const std::int64_t time : times) {
        const auto us = static_cast<double>(time);
        if (us - last < closest) {
            continue;
        }
        last = us;
        if (us >= static_cast<double>(viewBeginUs_) - edge &&
            us <= static_cast<double>(viewEndUs()) + edge) {
            ticks.push_back(xOf(time));
        }
    }
    return ticks;
}

std::vector<double> TimelineModel::keyFrameTicks() const {
    return lengthUs_ > 0 ? ticksOf(keyFrames_) : std::vector<double>();
}

std::vector<double> TimelineModel::pictureTicks() const {
    return showsPictures() ? ticksOf(pictures_) : std::vector<double>();
}

TimelineModel::Part TimelineModel::partOf(std::int64_t beginUs, std::int64_t endUs) const {
    if (lengthUs_ <= 0 || beginUs >= endUs) {
        return {};
    }
    return {std::clamp(xOf(beginUs), 0.0, width_), std::clamp(xOf(endUs), 0.0, width_)};
}

TimelineModel::Part TimelineModel::directPart() const {
    return direct_ ? partOf(direct_->beginUs, direct_->endUs) : Part();
}

TimelineModel::Part TimelineModel::addedByDirect() const {
    return direct_ ? partOf(direct_->beginUs, std::min(markBeginUs_, direct_->endUs)) : Part();
}

TimelineModel::Part TimelineModel::missingInDirect() const {
    return direct_ ? partOf(std::max(direct_->endUs, markBeginUs_), markEndUs_) : Part();
}

std::vector<std::optional<SoundPeak>> TimelineModel::levels(int columns) const {
    std::vector<std::optional<SoundPeak>> all(static_cast<std::size_t>(std::max(columns, 0)));
    if (peaks_ == nullptr || !peaks_->hasSound() || lengthUs_ <= 0) {
        return all;
    }
    const double usPerColumn = static_cast<double>(viewUs_) / columns;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const double begin =
            static_cast<double>(viewBeginUs_) + static_cast<double>(i) * usPerColumn;
        const auto first = static_cast<std::int64_t>(begin / kPeakUs);
        const auto end = static_cast<std::int64_t>(std::ceil((begin + usPerColumn) / kPeakUs));
        all[i] = peaks_->extremes(first, std::max(end, first + 1));
    }
    return all;
}

} // namespace velmora
