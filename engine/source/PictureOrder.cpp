#include "PictureOrder.h"

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

// H.264 and HEVC reorder over at most 16 pictures. Always waiting for so many costs nothing but a
// few packets of memory, and does not depend on what a file claims about itself.
constexpr std::size_t kMaxReorder = 16;

} // namespace

void PictureOrder::add(PacketHandle packet) {
    // Time that jumps back (a recording that was restarted) starts a new sequence.
    if ((packet->flags & AV_PKT_FLAG_KEY) != 0 && packet->pts != AV_NOPTS_VALUE) {
        if (packet->pts < lastKeyTime_) {
            finish();
        }
        lastKeyTime_ = packet->pts;
    }
    waiting_.push({displayTime(*packet), added_++});
    held_.push_back({std::move(packet), std::nullopt});
    if (waiting_.size() > kMaxReorder) {
        placeEarliest();
    }
}

std::optional<PictureOrder::Placed> PictureOrder::next() {
    if (!hasNext()) {
        return std::nullopt;
    }
    Placed placed{std::move(held_.front().packet), *held_.front().place};
    held_.pop_front();
    ++firstHeld_;
    return placed;
}

int PictureOrder::delay() const {
    std::int64_t delay = 0;
    for (std::size_t i = 0; i < held_.size(); ++i) {
        const auto number = static_cast<std::int64_t>(firstHeld_ + i);
        delay = std::max(delay, number - held_[i].place.value_or(number));
    }
    auto waiting = waiting_;
    for (std::int64_t place = placed_; !waiting.empty(); ++place) {
        delay = std::max(delay, static_cast<std::int64_t>(waiting.top().number) - place);
        waiting.pop();
    }
    return static_cast<int>(delay);
}

void PictureOrder::finish() {
    while (!waiting_.empty()) {
        placeEarliest();
    }
}

std::int64_t PictureOrder::displayTime(const AVPacket& packet) {
    // A lone packet without a time is shown where it was coded.
    if (packet.pts != AV_NOPTS_VALUE) {
        lastTime_ = packet.pts;
    } else if (packet.dts != AV_NOPTS_VALUE) {
        lastTime_ = packet.dts;
    }
    return lastTime_;
}

void PictureOrder::placeEarliest() {
    held_[waiting_.top().number - firstHeld_].place = placed_++;
    waiting_.pop();
}

} // namespace velmora
