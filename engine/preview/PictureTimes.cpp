#include "PictureTimes.h"

#include <algorithm>

namespace velmora {

PictureTimes::Picture& PictureTimes::insert(std::int64_t time) {
    return pictures_.try_emplace(time, Picture{.clearFrom = time}).first->second;
}

void PictureTimes::add(std::int64_t time, bool isKey) {
    insert(time).isKey = isKey;
}

void PictureTimes::link(std::int64_t time, std::int64_t next) {
    insert(time).next = next;
    Picture& picture = insert(next);
    picture.previous = time;
    picture.clearFrom = time + 1;
}

void PictureTimes::setClear(std::int64_t time, std::int64_t from) {
    Picture& picture = insert(time);
    picture.clearFrom = std::min(picture.clearFrom, from);
}

void PictureTimes::setFirst(std::int64_t time) {
    insert(time).isFirst = true;
}

void PictureTimes::setLast(std::int64_t time) {
    insert(time).isLast = true;
}

const PictureTimes::Picture* PictureTimes::find(std::int64_t time) const {
    const auto found = pictures_.find(time);
    return found != pictures_.end() ? &found->second : nullptr;
}

std::optional<std::int64_t> PictureTimes::at(std::int64_t wanted) const {
    const auto found = pictures_.lower_bound(wanted);
    if (found == pictures_.end()) {
        const bool isAfterLast = !pictures_.empty() && pictures_.rbegin()->second.isLast;
        return isAfterLast ? std::optional(pictures_.rbegin()->first) : std::nullopt;
    }
    const bool isKnown = found->second.clearFrom <= wanted || found->second.isFirst;
    return isKnown ? std::optional(found->first) : std::nullopt;
}

} // namespace velmora
