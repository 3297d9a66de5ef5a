#pragma once

#include "AvHandles.h"
#include "H264Sets.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace velmora {

/// Encodes the pictures of one end of a window like those of its source, such that both make one
/// stream. Belongs to one thread.
class SeamEncoder {
public:
    /// `sets` are the source's; `depth` is by how many pictures its decoding may run ahead of
    /// showing. 0 or a negative libav error code.
    int open(const AVStream& source, const H264Sets& sets, int depth);
    /// The parameter sets of what it encodes; open() has been successful.
    const H264Sets& sets() const { return *sets_; }

    /// The pictures in the order of showing, in the source's format. 0 or a negative code.
    int encode(AVFrame& picture);
    /// No picture follows. 0, AVERROR_BUG when not each picture has come out as a packet, or
    /// another negative code.
    int finish();
    /// What has been encoded since, in decoding order, which is that of showing; without times.
    std::vector<PacketHandle> releasePackets() { return std::exchange(packets_, {}); }

private:
    int openCodec(const AVStream& source, const H264Sets& sets, int depth, std::uint32_t id);
    int receive();

    CodecContextHandle encoder_;
    std::optional<H264Sets> sets_;
    std::int64_t sent_ = 0;
    std::int64_t received_ = 0;
    std::vector<PacketHandle> packets_;
};

} // namespace velmora
