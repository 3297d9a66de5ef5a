#include "DecodingTimes.h"

namespace velmora {

std::optional<std::int64_t> DecodingTimes::next(std::int64_t time) {
    waiting_.push(time);
    std::int64_t decoded = (count_ - depth_) * step_;
    if (count_ >= depth_) {
        decoded = waiting_.top();
        waiting_.pop();
    }
    ++count_;
    const bool isInOrder = decoded <= time && (!last_ || decoded > *last_);
    last_ = decoded;
    return isInOrder ? last_ : std::nullopt;
}

} // namespace velmora
