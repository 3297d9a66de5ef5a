#pragma once

#include "CutPlan.h"
#include "DecodedStream.h"
#include "H264Sets.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora {

/// The coded pictures of a source, as they lie in its stream. Times are ticks of the stream's time
/// base on the container's time line. Belongs to one thread.
class CodedPictures {
public:
    /// Reads end early once `stop` is raised; null: never.
    CodedPictures(std::string path, const StopFlag* stop)
        : pictures_(std::move(path), DecodedStream::Kind::Pictures, stop) {}

    /// 0, AVERROR_STREAM_NOT_FOUND without pictures, or another negative libav error code.
    int open();
    const AVStream& stream() const { return pictures_.stream(); }
    const InputMedia& input() const { return pictures_.input(); }
    bool isH264() const { return stream().codecpar->codec_id == AV_CODEC_ID_H264; }
    /// Of H.264, from the container's header; nothing where there are none.
    const std::optional<H264Sets>& sets() const { return sets_; }
    /// Whether the container tells only when pictures are decoded.
    bool isTimedByOrder() const { return pictures_.isTimedByOrder(); }

    /// What is read next begins with a key frame that is shown at this time or before it, or with
    /// the first picture of the source. 0 or a negative code.
    int goTo(std::int64_t time);
    /// The next picture; `pts` is when it is shown, if that is known. Null at the end.
    PacketHandle next();

    /// Whether decoding can begin with this packet.
    bool isEntry(const AVPacket& packet) const;
    /// Why this packet cannot be copied, as the end of a sentence; empty when it can.
    std::string troubleWith(const AVPacket& packet) const;

private:
    bool goToKeyFrame(std::int64_t time);

    DecodedStream pictures_;
    PacketHandle first_; ///< to be given next
    std::optional<H264Sets> sets_;
};

} // namespace velmora
