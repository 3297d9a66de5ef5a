#include "PictureReader.h"

#include "TimeBases.h"

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

std::int64_t timeOf(const AVPacket& packet) {
    return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

PacketHandle nextKeyPacket(DecodedStream& pictures) {
    PacketHandle packet = pictures.readPacket();
    while (packet != nullptr && (packet->flags & AV_PKT_FLAG_KEY) == 0) {
        packet = pictures.readPacket();
    }
    return packet;
}

} // namespace

int PictureReader::open() {
    return pictures_.open();
}

void PictureReader::giveUpOn(const StopFlag* giveUp) {
    giveUp_ = giveUp;
    pictures_.giveUpOn(giveUp);
}

int PictureReader::goTo(std::int64_t us) {
    if (const int result = goToKeyFrame(us); result < 0) {
        return result;
    }
    FrameHandle picture = nextInTime();
    while (picture != nullptr && isBefore(*picture, us)) {
        skipped_ = std::move(picture);
        picture = nextInTime();
    }
    pending_ = std::move(picture);
    return 0;
}

/// Decoding begins somewhere else.
void PictureReader::forget() {
    pending_.reset();
    early_.clear();
    lastTime_ = AV_NOPTS_VALUE;
}

int PictureReader::goToKeyFrame(std::int64_t us) {
    forget();
    skipped_.reset();
    const auto start = [this](PacketHandle key) {
        return startAt(std::move(key)) || isRaised(giveUp_);
    };
    const bool isFound = atKeyFrameBefore(us, start);
    if (isRaised(giveUp_)) {
        return AVERROR_EXIT;
    }
    if (isFound) {
        return 0;
    }
    forget(); // a place that was no good
    const int result = pictures_.rewind();
    return result < 0 ? result : 1;
}

PacketHandle PictureReader::keyFrameBefore(std::int64_t us) {
    PacketHandle found;
    atKeyFrameBefore(us, [&found](PacketHandle key) {
        found = std::move(key);
        return true;
    });
    forget();
    return found;
}

/// Finds the last key frame that is not shown after `us`, and with which the action is content.
/// False: only the beginning of the file will do.
template <class Action> bool PictureReader::atKeyFrameBefore(std::int64_t us, Action&& action) {
    const AVRational timeBase = this->timeBase();
    const std::int64_t wanted = av_rescale_q_rnd(us, kMicrosecond, timeBase, AV_ROUND_DOWN);
    const std::int64_t begin =
        std::max(stream().start_time, av_rescale_q(input().startUs(), kMicrosecond, timeBase));
    if (pictures_.isTimedByOrder()) {
        return false;
    }
    std::int64_t target = wanted;
    // Most containers find the right place at once, or the one before it. One that does not is
    // asked for places further and further back.
    constexpr std::int64_t kFarthest = INT64_C(1) << 40; // ticks; beyond, times mean nothing
    for (std::int64_t back = 1; target > begin && back < kFarthest; back *= 4) {
        if (pictures_.seek(target) < 0) {
            return false;
        }
        PacketHandle key = nextKeyPacket(pictures_);
        const std::int64_t time = key != nullptr ? timeOf(*key) : AV_NOPTS_VALUE;
        if (time != AV_NOPTS_VALUE && time <= wanted && action(std::move(key))) {
            return true;
        }
        target = std::min(target, time != AV_NOPTS_VALUE ? time : target) - back;
    }
    return false;
}

/// Some key frames only begin a gradual refresh, after which pictures are whole again: nothing is
/// shown of them. Whether the key frame itself is.
bool PictureReader::startAt(PacketHandle key) {
    const std::int64_t time = timeOf(*key);
    forget();
    pictures_.decodeFrom(std::move(key));
    pending_ = nextInTime();
    return pending_ != nullptr && pending_->pts <= time;
}

FrameHandle PictureReader::next() {
    return nextInTime();
}

/// A picture without a time follows the one before it; one whose time has been cannot be shown.
FrameHandle PictureReader::nextInTime() {
    if (pending_ != nullptr) {
        return std::move(pending_);
    }
    while (FrameHandle picture = nextDecoded()) {
        if (picture->pts == AV_NOPTS_VALUE && lastTime_ != AV_NOPTS_VALUE) {
            picture->pts = lastTime_ + durationOf(*picture);
        }
        if (picture->pts != AV_NOPTS_VALUE &&
            (lastTime_ == AV_NOPTS_VALUE || picture->pts > lastTime_)) {
            lastTime_ = picture->pts;
            return picture;
        }
    }
    return nullptr;
}

/// Those at the very beginning that have no time, as Matroska's have below 0, come before the first
/// one that has.
FrameHandle PictureReader::nextDecoded() {
    if (early_.empty()) {
        FrameHandle picture = pictures_.next();
        if (picture == nullptr || picture->pts != AV_NOPTS_VALUE || lastTime_ != AV_NOPTS_VALUE) {
            return picture;
        }
        readEarly(std::move(picture));
    }
    FrameHandle picture = std::move(early_.front());
    early_.pop_front();
    return picture;
}

void PictureReader::readEarly(FrameHandle first) {
    constexpr std::size_t kMost = 32; // kept in memory, decoded
    for (FrameHandle picture = std::move(first); picture != nullptr; picture = pictures_.next()) {
        early_.push_back(std::move(picture));
        if (early_.back()->pts != AV_NOPTS_VALUE) {
            break;
        }
        if (early_.size() > kMost) {
            early_.pop_front();
        }
    }
    std::int64_t time = early_.back()->pts;
    for (auto picture = early_.rbegin(); time != AV_NOPTS_VALUE && picture != early_.rend();
         ++picture) {
        (*picture)->pts = time;
        time -= ticksPerPicture(stream());
    }
}

FrameHandle PictureReader::pictureAt(std::int64_t us) {
    if (goTo(us) < 0) {
        return nullptr;
    }
    FrameHandle picture = nextInTime();
    return picture != nullptr ? std::move(picture) : std::move(skipped_);
}

bool PictureReader::isBefore(const AVFrame& picture, std::int64_t us) const {
    return av_compare_ts(picture.pts, timeBase(), us, kMicrosecond) < 0;
}

std::int64_t PictureReader::durationOf(const AVFrame& picture) const {
    return picture.pkt_duration > 0 ? picture.pkt_duration : ticksPerPicture(stream());
}

} // namespace velmora
