#pragma once

#include "DecodedStream.h"

#include <cstdint>
#include <deque>
#include <string>

namespace velmora {

/// The pictures of a source from any time on, in the order of showing, each with its own time.
/// Times of pictures are ticks of timeBase(), those that are asked for microseconds; both are on
/// the container's time line. Belongs to one thread.
class PictureReader {
public:
    /// Reads end early once `stop` is raised; null: never.
    PictureReader(std::string path, const StopFlag* stop)
        : pictures_(std::move(path), DecodedStream::Kind::Pictures, stop) {}

    /// 0, AVERROR_STREAM_NOT_FOUND without pictures, or another negative libav error code.
    int open();
    AVRational timeBase() const { return pictures_.stream().time_base; }
    const AVStream& stream() const { return pictures_.stream(); }
    const InputMedia& input() const { return pictures_.input(); }

    /// The next picture given is the first that is shown at `us` or later. 0 or a negative code.
    int goTo(std::int64_t us);
    /// The next picture given is the one from which the one at `us` has to be decoded: that of the
    /// last key frame before it, or the first one. 0, 1 for the first one, or a negative code.
    int goToKeyFrame(std::int64_t us);
    /// The packet of the last key frame that is not shown after `us`, for a decoder of the
    /// caller's; null where that cannot be told. Pictures can then be read after a goTo only.
    PacketHandle keyFrameBefore(std::int64_t us);
    /// The next picture; `pts` is its time, which is after that of the one before. Null at the end.
    FrameHandle next();
    /// The picture that is shown at `us`: the first one at that time or later, after the last one
    /// the last one. Null when none can be decoded.
    FrameHandle pictureAt(std::int64_t us);

    /// From now on next() is null, too, and goToKeyFrame() fails, while `giveUp` is raised.
    void giveUpOn(const StopFlag* giveUp);

    /// What the picture is to last, in ticks, by itself; at least 1.
    std::int64_t durationOf(const AVFrame& picture) const;
    /// Where the last picture that has been read ends, ticks, also one that cannot be decoded;
    /// AV_NOPTS_VALUE when that is not told.
    std::int64_t packetsEnd() const { return pictures_.packetsEnd(); }
    bool clockHasJumped() const { return pictures_.clockHasJumped(); }
    /// Packets that could not be decoded so far.
    std::int64_t damagedPackets() const { return pictures_.damagedPackets(); }

private:
    template <class Action> bool atKeyFrameBefore(std::int64_t us, Action&& action);
    bool startAt(PacketHandle key);
    void forget();
    FrameHandle nextInTime();
    FrameHandle nextDecoded();
    void readEarly(FrameHandle first);
    bool isBefore(const AVFrame& picture, std::int64_t us) const;

    DecodedStream pictures_;
    const StopFlag* giveUp_ = nullptr;
    FrameHandle pending_;           ///< to be given next
    std::deque<FrameHandle> early_; ///< decoded to find out when the first of them is shown
    FrameHandle skipped_;           ///< the last one before the time that was asked for
    std::int64_t lastTime_ = AV_NOPTS_VALUE;
};

} // namespace velmora
