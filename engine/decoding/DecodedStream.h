#pragma once

#include "Decoder.h"
#include "InputMedia.h"
#include "TransportIndex.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <queue>
#include <string>
#include <vector>

namespace velmora {

/// What a picture of the stream lasts, in its ticks, where nothing else tells; at least 1.
std::int64_t ticksPerPicture(const AVStream& stream);

/// One stream of a source, opened for itself: it is read and decoded without regard to where the
/// others of the file are. Times are ticks of the stream's time base, on the container's time line.
/// Belongs to one thread; decodes with all cores.
class DecodedStream {
public:
    enum class Kind { Pictures, Sound };

    /// Reads end early once `stop` is raised; null: never.
    DecodedStream(std::string path, Kind kind, const StopFlag* stop);

    /// 0, AVERROR_STREAM_NOT_FOUND when the source has no such stream, or another negative libav
    /// error code.
    int open();
    const AVStream& stream() const { return *stream_; }
    const InputMedia& input() const { return *input_; }

    /// Goes to the beginning of the file. 0 or a negative code.
    int rewind();
    /// Goes to a place that is not after `timestamp`, if one can be told. 0 or more, or a negative
    /// code. The first time, a transport stream is read up to there.
    int seek(std::int64_t timestamp);
    /// What is decoded next begins so far before this moment on the container's time line,
    /// microseconds, that sound comes out right from it on. 0 or a negative code.
    int beginBefore(std::int64_t us);
    /// The next packet, without decoding it; null at the end.
    PacketHandle readPacket();
    /// What is decoded next begins with this packet, or with the next one if it is null.
    void decodeFrom(PacketHandle first);
    /// The next frame in the order of showing, with its time as `pts`; null at the end.
    FrameHandle next();
    /// From now on next() also ends, before it decodes a packet, while `giveUp` is raised; it goes
    /// on from there once that is no longer so. Null: never.
    void giveUpOn(const StopFlag* giveUp) { giveUp_ = giveUp; }

    /// Whether only the order of its pictures tells their times: it can then be decoded from its
    /// beginning alone.
    bool isTimedByOrder() const { return timedByOrder_; }
    /// Packets that could not be decoded so far, and frames that came out damaged.
    std::int64_t damagedPackets() const { return damaged_; }
    /// Where the last of the packets that have been read ends, decoded or not; AV_NOPTS_VALUE when
    /// they do not tell.
    std::int64_t packetsEnd() const { return packetsEnd_; }
    bool clockHasJumped() const { return clock_.hasJumped(); }

private:
    int openInput();
    int seekInTransport(std::int64_t timestamp);
    bool lacksTimes();
    void decodeOne();
    void noteTime(const AVPacket& packet);
    void noteEnd(const AVPacket& packet);
    void stamp(AVFrame& frame);

    std::string path_;
    const Kind kind_;
    const StopFlag* stop_;
    const StopFlag* giveUp_ = nullptr;
    std::unique_ptr<InputMedia> input_;
    std::unique_ptr<TransportIndex> index_; ///< made when it is needed
    ClockUnroller clock_;
    bool unrolls_ = false;       ///< the clock may jump
    AVStream* stream_ = nullptr; ///< owned by the input
    Decoder decoder_;
    PacketHandle first_; ///< to be decoded before what is read
    bool atStart_ = false;
    bool atEnd_ = false;
    bool timedByOrder_ = false;
    /// Of packets whose pictures have not come out: the first picture has the least of them.
    std::priority_queue<std::int64_t, std::vector<std::int64_t>, std::greater<>> times_;
    std::int64_t untimed_ = 0; ///< packets without any time
    std::int64_t damaged_ = 0;
    std::int64_t packetsEnd_ = AV_NOPTS_VALUE;
};

} // namespace velmora
