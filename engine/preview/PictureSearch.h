#pragma once

#include "KeyFrames.h"
#include "PictureCache.h"
#include "PictureReader.h"
#include "PictureTimes.h"
#include "ViewPicture.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// Finds the pictures of one source for a view, and keeps those near the last one found. Times are
/// ticks of the stream, positions microseconds from the container's start. Searches end without a
/// result while `giveUp` is raised, and can be made again then. Belongs to one thread.
class PictureSearch {
public:
    /// Pictures take so much memory, bytes: those that are kept, and those that the decoder works
    /// with. One that is larger by itself is not kept.
    static constexpr std::size_t kBudget = std::size_t{192} * 1024 * 1024;

    /// Everything ends once `stop` is raised. Both outlive this.
    PictureSearch(std::string path, const StopFlag& stop, const StopFlag& giveUp);

    /// 0, AVERROR_STREAM_NOT_FOUND without pictures, or another negative libav error code.
    int open();
    /// Where groups begin; searches are as right without it, but take longer.
    void setKeyFrames(KeyFrames positions) { keyFrames_ = std::move(positions); }
    /// Pictures of other sizes are dropped.
    void setView(int width, int height);

    struct Found {
        std::int64_t time;
        std::shared_ptr<const ViewPicture> picture;
    };

    /// The picture at `us`, if it is there; else nothing, at once.
    std::optional<Found> known(std::int64_t us) const;
    /// The picture at `us`.
    std::optional<Found> at(std::int64_t us);
    /// The nearest of those that can be had soon: that are there, or of the last key frame before
    /// `us`. Goes on while `giveUp` is raised.
    std::optional<Found> near(std::int64_t us);
    /// The picture of the last key frame before `us`, likewise.
    std::optional<Found> keyFrameAt(std::int64_t us);
    /// `count` pictures after the one at `us`, or before it; the last or the first where there are
    /// not as many.
    std::optional<Found> step(std::int64_t us, int count);
    /// Decodes one more of the pictures around the last one found by at() or step(): first in the
    /// direction in which the user goes. False: there is nothing left to do.
    bool fill();

    std::int64_t positionOf(std::int64_t time) const;
    ViewScaler& scaler() { return scaler_; }
    const PictureCache& cache() const { return cache_; }

private:
    enum class Direction { Back, On };

    std::int64_t wantedTime(std::int64_t us) const;
    std::int64_t microseconds(std::int64_t time) const;
    std::optional<Found> found(std::optional<std::int64_t> time);
    std::optional<Found> keyFrame(std::int64_t us, bool orNearest);
    std::optional<Found> decodedKeyFrame(const AVPacket& key);
    std::optional<Found> kept(std::int64_t time) const;
    void forgetPlace();
    FrameHandle nextPicture();
    bool begin(std::int64_t from);
    bool isSoonAfter(std::int64_t time) const;
    std::optional<std::int64_t> decodeUntil(std::int64_t from, std::int64_t wanted);
    std::optional<std::int64_t> neighbour(std::int64_t time, Direction direction);
    void keep(const AVFrame& picture);
    bool fillOn(int groups);
    bool fillBack(int groups);
    bool fillUntil(std::int64_t end);

    PictureReader reader_;
    const StopFlag& giveUp_;
    Decoder keyDecoder_; ///< of single pictures, with one thread: it holds none back
    ViewScaler scaler_{DisplayTurn()};
    PictureTimes times_;
    PictureCache cache_{kBudget};
    KeyFrames keyFrames_;
    int width_ = 0;
    int height_ = 0;
    std::optional<std::int64_t> current_; ///< of the picture that was decoded last
    bool atStart_ = false;                ///< the next one is the first of the file
    Direction direction_ = Direction::On;
    std::optional<std::int64_t> filling_; ///< what is decoded goes on to there
    std::optional<std::int64_t> filled_;  ///< to there it has gone on already
};

} // namespace velmora
