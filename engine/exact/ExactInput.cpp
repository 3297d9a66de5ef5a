#include "ExactInput.h"

#include "EngineLog.h"
#include "TimeBases.h"

#include <utility>

namespace velmora {
namespace {

constexpr std::int64_t kUsPerMs = 1000;
constexpr std::int64_t kHalfMsUs = 500; // times are shown and typed in whole milliseconds

/// Milliseconds from where the container begins, on its time line.
std::int64_t onTimeLine(std::int64_t ms, const InputMedia& media) {
    constexpr std::int64_t kMost = INT64_MAX / 4 / kUsPerMs;
    return std::clamp(ms, -kMost, kMost) * kUsPerMs + media.startUs();
}

} // namespace

int ExactInput::open() {
    int result = pictures_.open();
    if (result < 0) {
        return result;
    }
    const InputMedia& media = pictures_.input();
    const std::int64_t lengthUs = media.container()->duration;
    std::int64_t startUs = INT64_MIN / 4;
    if (window_) {
        startUs = onTimeLine(window_->startMs, media) - kHalfMsUs;
        const std::int64_t endUs = onTimeLine(window_->endMs, media);
        const bool toTheEnd = lengthUs > 0 && endUs - media.startUs() >= lengthUs - kUsPerMs;
        if (!toTheEnd) {
            endUs_ = endUs;
        }
    }
    result = pictures_.goTo(startUs);
    if (result < 0) {
        return result;
    }
    first_ = pictures_.next();
    if (first_ == nullptr || !isInWindow(*first_)) {
        return AVERROR(ERANGE);
    }
    origin_ = first_->pts;
    return 0;
}

bool ExactInput::isInWindow(const AVFrame& picture) const {
    return !endUs_ ||
           av_compare_ts(picture.pts, pictures_.timeBase(), *endUs_ - kHalfMsUs, kMicrosecond) < 0;
}

bool ExactInput::openSound(const AudioFormat& format) {
    sound_ = std::make_unique<SoundReader>(path_, stop_);
    const bool isThere =
        sound_->open(format) >= 0 && sound_->goTo(origin_, pictures_.timeBase()) >= 0;
    if (!isThere) {
        sound_.reset();
    }
    return isThere;
}

std::optional<double> ExactInput::endSeconds() const {
    if (!endUs_) {
        return std::nullopt;
    }
    const double begin = static_cast<double>(origin_) * av_q2d(pictures_.timeBase());
    return static_cast<double>(*endUs_) / AV_TIME_BASE - begin;
}

bool ExactInput::isEndSure() const {
    const AVFormatContext& container = *media().container();
    const bool tellsLength = container.duration > 0 &&
                             container.duration_estimation_method != AVFMT_DURATION_FROM_BITRATE &&
                             !pictures_.clockHasJumped();
    return !sourceEnded_ ||
           (tellsLength && endUs_ && *endUs_ <= media().startUs() + container.duration);
}

FrameHandle ExactInput::nextOfWindow() {
    FrameHandle picture = first_ != nullptr ? std::move(first_) : pictures_.next();
    if (picture == nullptr) {
        sourceEnded_ = true;
        picturesEnd_ = std::max(picturesEnd_, pictures_.packetsEnd() - origin_);
        return nullptr;
    }
    if (!isInWindow(*picture)) {
        return nullptr;
    }
    picturesEnd_ = picture->pts - origin_ + pictures_.durationOf(*picture);
    return picture;
}

ExactInput::Shown ExactInput::nextPicture(const PictureForm& form) {
    if (filter_ == nullptr) {
        filter_ = std::make_unique<PictureFilter>(
            *media().container(), *media().container()->streams[pictures_.stream().index], form);
    }
    for (;;) {
        if (FrameHandle picture = filter_->receive()) {
            const std::int64_t time = picture->pts - origin_;
            return {std::move(picture), time};
        }
        if (ended_) {
            return {};
        }
        FrameHandle picture = nextOfWindow();
        ended_ = picture == nullptr;
        if (ended_) {
            filter_->sendEnd();
        } else if (const int result = filter_->send(std::move(picture)); result < 0) {
            failure_ = result;
            return {};
        }
    }
}

FrameHandle ExactInput::nextSound() {
    return sound_ != nullptr ? sound_->next() : nullptr;
}

std::int64_t ExactInput::damagedSounds() const {
    return sound_ != nullptr ? sound_->damagedPackets() : 0;
}

} // namespace velmora
