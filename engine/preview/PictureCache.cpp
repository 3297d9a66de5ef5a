#include "PictureCache.h"

#include <iterator>
#include <utility>

namespace velmora {
namespace {

/// Times from a damaged file may lie farther apart than their own type can hold.
std::uint64_t between(std::int64_t a, std::int64_t b) {
    return a > b ? static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b)
                 : static_cast<std::uint64_t>(b) - static_cast<std::uint64_t>(a);
}

} // namespace

void PictureCache::clear() {
    pictures_.clear();
    bytes_ = 0;
}

std::uint64_t PictureCache::distance(std::int64_t time) const {
    return between(time, centre_);
}

/// One of the two ends; there has to be a picture.
PictureCache::Pictures::const_iterator PictureCache::farthest() const {
    const auto last = std::prev(pictures_.end());
    return distance(last->first) > distance(pictures_.begin()->first) ? last : pictures_.begin();
}

bool PictureCache::hasRoomFor(std::int64_t time) const {
    if (pictures_.empty()) {
        return true;
    }
    const std::size_t more = bytes_ / pictures_.size();
    return bytes_ + more <= budget_ || distance(time) < distance(farthest()->first);
}

void PictureCache::put(std::int64_t time, std::shared_ptr<const ViewPicture> picture) {
    auto& place = pictures_[time];
    bytes_ += picture->planes.size();
    bytes_ -= place != nullptr ? place->planes.size() : 0;
    place = std::move(picture);
    while (bytes_ > budget_) {
        const auto dropped = farthest();
        bytes_ -= dropped->second->planes.size();
        pictures_.erase(dropped);
    }
}

std::shared_ptr<const ViewPicture> PictureCache::get(std::int64_t time) const {
    const auto found = pictures_.find(time);
    return found != pictures_.end() ? found->second : nullptr;
}

std::optional<std::int64_t> PictureCache::nearest(std::int64_t time) const {
    if (pictures_.empty()) {
        return std::nullopt;
    }
    const auto after = pictures_.lower_bound(time);
    if (after == pictures_.begin()) {
        return after->first;
    }
    const auto before = std::prev(after);
    const bool isBefore =
        after == pictures_.end() || between(before->first, time) <= between(after->first, time);
    return isBefore ? before->first : after->first;
}

} // namespace velmora
