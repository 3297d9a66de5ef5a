#include "ExactInput.h"

#include "EngineLog.h"
#include "TimeBases.h"

#include <utility>

namespace velmora {

int ExactInput::open() {
    int result = pictures_.open();
    if (result < 0) {
        return result;
    }
    const InputMedia& media = pictures_.input();
    std::int64_t startUs = INT64_MIN / 4;
    if (window_) {
        times_ = timesOf(*window_, media);
        startUs = times_.startUs;
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
    return times_.isBeforeEnd(picture.pts, pictures_.timeBase());
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
    if (!times_.endUs) {
        return std::nullopt;
    }
    const double begin = static_cast<double>(origin_) * av_q2d(pictures_.timeBase());
    return static_cast<double>(*times_.endUs) / AV_TIME_BASE - begin;
}

bool ExactInput::isEndSure() const {
    const AVFormatContext& container = *media().container();
    const bool tellsLength = container.duration > 0 &&
                             container.duration_estimation_method != AVFMT_DURATION_FROM_BITRATE &&
                             !pictures_.clockHasJumped();
    return !sourceEnded_ ||
           (tellsLength && times_.endUs && *times_.endUs <= media().startUs() + container.duration);
}

FrameHandle ExactInput::nextOfWindow() {
    FrameHandle picture = first_ != nullptr ? std::move(first_) : pictures_.next();
    if (picture == nullptr) {
        sourceEnded_ = true;
        if (const std::int64_t end = pictures_.packetsEnd(); end != AV_NOPTS_VALUE) {
            picturesEnd_ = std::max(picturesEnd_, end - origin_);
        }
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
