// How a search decodes the pictures of its source one after the other.

#include "PictureSearch.h"

#include "TimeBases.h"

#include <algorithm>
#include <utility>

namespace velmora {

/// The decoder is somewhere else.
void PictureSearch::forgetPlace() {
    current_.reset();
    filling_.reset();
    atStart_ = false;
}

/// What is decoded next begins where the picture at `from` can be decoded.
bool PictureSearch::begin(std::int64_t from) {
    forgetPlace();
    const int result = reader_.goToKeyFrame(microseconds(from));
    atStart_ = result > 0;
    return result >= 0;
}

/// The next picture as it comes, with its place in the order of showing.
FrameHandle PictureSearch::nextPicture() {
    FrameHandle picture = reader_.next();
    if (picture == nullptr) {
        if (current_ && giveUp_ == 0) {
            times_.setLast(*current_);
        }
        return nullptr;
    }
    times_.add(picture->pts, picture->key_frame != 0);
    if (current_) {
        times_.link(*current_, picture->pts);
    }
    if (std::exchange(atStart_, false)) {
        times_.setFirst(picture->pts);
    }
    current_ = picture->pts;
    return picture;
}

/// Whether going on from where the decoder is leads there as soon as any other way: no group begins
/// on the way, or it is a short one.
bool PictureSearch::isSoonAfter(std::int64_t time) const {
    constexpr std::int64_t kSoonUs = 500'000;
    if (!current_ || *current_ >= time) {
        return false;
    }
    const std::int64_t here = positionOf(*current_);
    const std::int64_t there = positionOf(time);
    const auto group = std::ranges::upper_bound(keyFrames_, here);
    const bool isSameGroup = !keyFrames_.empty() && (group == keyFrames_.end() || *group > there);
    return isSameGroup || there - here < kSoonUs;
}

/// Decodes from where the picture at `from` needs it to the first one at `wanted`, and keeps what
/// is near that. Its time, or that of the last picture; nothing when there is none, or the search
/// was given up.
std::optional<std::int64_t> PictureSearch::decodeUntil(std::int64_t from, std::int64_t wanted) {
    constexpr std::int64_t kNearUs = 300'000;
    filling_.reset();
    if (!isSoonAfter(from) && !begin(from)) {
        return std::nullopt;
    }
    const std::int64_t near = av_rescale_q(kNearUs, kMicrosecond, reader_.timeBase());
    FrameHandle last;
    while (FrameHandle picture = nextPicture()) {
        const bool isThere = picture->pts >= wanted;
        if (isThere || wanted - picture->pts <= near) {
            keep(*picture);
        }
        if (isThere) {
            times_.setClear(picture->pts, wanted);
            return picture->pts;
        }
        last = std::move(picture);
    }
    if (giveUp_ != 0) {
        return std::nullopt;
    }
    if (last != nullptr) {
        keep(*last);
    }
    return current_;
}

/// Of the picture at `time`, which has to be known; itself where there is none.
std::optional<std::int64_t> PictureSearch::neighbour(std::int64_t time, Direction direction) {
    const bool isOn = direction == Direction::On;
    const PictureTimes::Picture known = *times_.find(time);
    if (const auto& neighbour = isOn ? known.next : known.previous) {
        return neighbour;
    }
    if (isOn ? known.isLast : known.isFirst) {
        return time;
    }
    const auto reached = isOn ? decodeUntil(time + 1, time + 1) : decodeUntil(time - 1, time);
    if (!reached) {
        return std::nullopt;
    }
    if (!isOn) {
        return times_.find(time)->previous.value_or(time);
    }
    if (*reached > time) {
        times_.link(time, *reached);
    }
    return std::max(time, *reached);
}

bool PictureSearch::fill() {
    if (filling_) {
        return fillUntil(*filling_);
    }
    return direction_ == Direction::On ? fillOn(2) || fillBack(1)
                                       : fillBack(1) || fillOn(1) || fillBack(2);
}

/// The pictures after the centre, up to the end of so many groups.
bool PictureSearch::fillOn(int groups) {
    std::int64_t time = cache_.centre();
    const PictureTimes::Picture* picture = times_.find(time);
    while (picture != nullptr && picture->next && cache_.has(*picture->next)) {
        time = *picture->next;
        picture = times_.find(time);
        groups -= picture->isKey ? 1 : 0;
    }
    if (picture == nullptr || picture->isLast || groups <= 0 || !cache_.hasRoomFor(time + 1)) {
        return false;
    }
    const auto next = picture->next ? decodeUntil(*picture->next, *picture->next)
                                    : neighbour(time, Direction::On);
    return next && *next > time && cache_.has(*next);
}

/// The pictures before the centre, likewise. They can only be decoded from the beginning of their
/// group on.
bool PictureSearch::fillBack(int groups) {
    std::int64_t time = cache_.centre();
    const PictureTimes::Picture* picture = times_.find(time);
    while (picture != nullptr && groups > (picture->isKey ? 1 : 0) && picture->previous &&
           cache_.has(*picture->previous)) {
        groups -= picture->isKey ? 1 : 0;
        time = *picture->previous;
        picture = times_.find(time);
    }
    const bool isDone = picture == nullptr || picture->isFirst ||
                        groups <= (picture->isKey ? 1 : 0) || !cache_.hasRoomFor(time - 1);
    if (isDone || filled_ == time || !begin(time - 1)) {
        return false;
    }
    filling_ = time;
    return true;
}

bool PictureSearch::fillUntil(std::int64_t end) {
    const FrameHandle picture = nextPicture();
    if (picture == nullptr && giveUp_ != 0) {
        return false;
    }
    if (picture == nullptr || picture->pts >= end) {
        filling_.reset();
        filled_ = end; // what is still missing before it cannot be had
    }
    if (picture != nullptr && cache_.hasRoomFor(picture->pts)) {
        keep(*picture);
    }
    return true;
}

} // namespace velmora
