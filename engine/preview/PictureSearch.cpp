#include "PictureSearch.h"

#include "TimeBases.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora {
namespace {

constexpr std::int64_t kHalfMsUs = 500;

/// What is left of the budget beside the pictures of the decoder.
std::size_t keptBytes(const AVCodecParameters& source) {
    constexpr std::size_t kDecoderPictures = 12; // references, and what its threads work on
    const std::size_t picture = static_cast<std::size_t>(std::max(source.width, 0)) *
                                static_cast<std::size_t>(std::max(source.height, 0)) * 3 / 2;
    constexpr std::size_t kBudget = PictureSearch::kBudget;
    return kBudget - std::min(kBudget / 2, kDecoderPictures * picture);
}

} // namespace

PictureSearch::PictureSearch(std::string path, const StopFlag& stop, const StopFlag& giveUp)
    : reader_(std::move(path), &stop), giveUp_(giveUp) {
    reader_.giveUpOn(&giveUp);
}

int PictureSearch::open() {
    const int result = reader_.open();
    if (result >= 0) {
        scaler_ = ViewScaler(displayTurnOf(reader_.stream()));
        cache_ = PictureCache(keptBytes(*reader_.stream().codecpar));
    }
    return result;
}

void PictureSearch::setView(int width, int height) {
    if (width != width_ || height != height_) {
        width_ = width;
        height_ = height;
        cache_.clear();
        filling_.reset();
    }
}

// Positions and times.

/// The picture at `us` is the first one at this time or later.
std::int64_t PictureSearch::wantedTime(std::int64_t us) const {
    return av_rescale_q_rnd(us - kHalfMsUs + reader_.input().startUs(), kMicrosecond,
                            reader_.timeBase(), AV_ROUND_UP);
}

/// On the container's time line, not before the time.
std::int64_t PictureSearch::microseconds(std::int64_t time) const {
    return av_rescale_q_rnd(time, reader_.timeBase(), kMicrosecond, AV_ROUND_UP);
}

std::int64_t PictureSearch::positionOf(std::int64_t time) const {
    return av_rescale_q(time, reader_.timeBase(), kMicrosecond) - reader_.input().startUs();
}

// Single pictures.

std::optional<PictureSearch::Found> PictureSearch::kept(std::int64_t time) const {
    auto picture = cache_.get(time);
    return picture != nullptr ? std::optional<Found>({time, std::move(picture)}) : std::nullopt;
}

std::optional<PictureSearch::Found> PictureSearch::known(std::int64_t us) const {
    const auto time = times_.at(wantedTime(us));
    return time ? kept(*time) : std::nullopt;
}

std::optional<PictureSearch::Found> PictureSearch::at(std::int64_t us) {
    const std::int64_t wanted = wantedTime(us);
    const auto time = times_.at(wanted);
    return found(time && cache_.has(*time) ? time : decodeUntil(wanted, wanted));
}

/// Here the user is now. The picture may have been dropped since it was decoded.
std::optional<PictureSearch::Found> PictureSearch::found(std::optional<std::int64_t> time) {
    if (!time || (!cache_.has(*time) && decodeUntil(*time, *time) != time)) {
        return std::nullopt;
    }
    if (*time != cache_.centre()) {
        direction_ = *time < cache_.centre() ? Direction::Back : Direction::On;
        filled_.reset();
    }
    cache_.setCentre(*time);
    return kept(*time);
}

std::optional<PictureSearch::Found> PictureSearch::near(std::int64_t us) {
    const auto nearest = cache_.nearest(wantedTime(us));
    if (nearest && isSoonAfter(wantedTime(us))) { // what is being decoded goes on to there
        return kept(*nearest);
    }
    return keyFrame(us, true);
}

std::optional<PictureSearch::Found> PictureSearch::keyFrameAt(std::int64_t us) {
    return keyFrame(us, false);
}

/// One that is shown at `us`, or within the millisecond that a position may have been cut by, is
/// the picture there.
std::optional<PictureSearch::Found> PictureSearch::keyFrame(std::int64_t us, bool orNearest) {
    const std::int64_t wanted = wantedTime(us);
    forgetPlace();
    const PacketHandle key = reader_.keyFrameBefore(us + 2 * kHalfMsUs + reader_.input().startUs());
    const auto nearest = cache_.nearest(wanted);
    const bool isThere = key != nullptr && key->pts != AV_NOPTS_VALUE;
    if (orNearest && nearest &&
        (!isThere || std::llabs(*nearest - wanted) < std::llabs(key->pts - wanted))) {
        return kept(*nearest);
    }
    auto found = !isThere               ? std::nullopt
                 : cache_.has(key->pts) ? kept(key->pts)
                                        : decodedKeyFrame(*key);
    if (found && found->time >= wanted) {
        times_.setClear(found->time, wanted);
    }
    return found;
}

std::optional<PictureSearch::Found> PictureSearch::decodedKeyFrame(const AVPacket& key) {
    if (!keyDecoder_.isOpen() && keyDecoder_.open(reader_.stream(), reader_.input().path()) < 0) {
        return std::nullopt;
    }
    keyDecoder_.flush();
    keyDecoder_.send(key);
    keyDecoder_.sendEnd();
    const FrameHandle picture = keyDecoder_.receive();
    if (picture == nullptr || picture->pts != key.pts) {
        return std::nullopt;
    }
    times_.add(picture->pts, true);
    keep(*picture);
    return kept(picture->pts);
}

void PictureSearch::keep(const AVFrame& picture) {
    if (!cache_.has(picture.pts)) {
        auto scaled = std::make_shared<const ViewPicture>(scaler_.scale(picture, width_, height_));
        cache_.put(picture.pts, std::move(scaled));
    }
}

std::optional<PictureSearch::Found> PictureSearch::step(std::int64_t us, int count) {
    const std::int64_t wanted = wantedTime(us);
    auto time = times_.at(wanted);
    if (!time) {
        time = decodeUntil(wanted, wanted);
    }
    const Direction direction = count < 0 ? Direction::Back : Direction::On;
    for (int left = std::abs(count); time && left > 0; --left) {
        time = neighbour(*time, direction);
    }
    return found(time);
}

} // namespace velmora
