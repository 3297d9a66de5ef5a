#pragma once

#include "DecodedStream.h"
#include "SoundCut.h"

#include <cstdint>
#include <deque>
#include <string>

namespace velmora {

/// The packets of a source's sound that belong to a window, as they are to be written. Belongs to
/// one thread.
class SoundPackets {
public:
    /// Reads end early once `stop` is raised; null: never.
    SoundPackets(std::string path, const StopFlag* stop)
        : sound_(std::move(path), DecodedStream::Kind::Sound, stop) {}

    /// 0, AVERROR_STREAM_NOT_FOUND without sound, or another negative libav error code.
    int open();
    const AVStream& stream() const { return sound_.stream(); }
    const InputMedia& input() const { return sound_.input(); }
    /// What times of the packets count: samples.
    AVRational timeBase() const { return {1, stream().codecpar->sample_rate}; }

    /// The window begins at `origin` and ends at `end`, microseconds since the origin, or nowhere.
    /// `origin` is in ticks of `timeBase` on the container's time line. 0 or a negative code.
    int goTo(std::int64_t origin, AVRational timeBase, std::int64_t endUs,
             const AVOutputFormat& format);
    /// The next packet, its times in samples since the origin; null at the end. What stands before
    /// the origin has negative times.
    const AVPacket* peek();
    PacketHandle next();

private:
    bool readOne();
    std::int64_t samplesOf(const AVPacket& packet) const;
    std::int64_t timeOf(const AVPacket& packet);
    PacketHandle written(const SoundCut::Part& part, const AVPacket& packet) const;

    DecodedStream sound_;
    std::int64_t origin_ = 0; ///< samples on the container's time line
    std::int64_t expected_ = AV_NOPTS_VALUE;
    std::optional<SoundCut> cut_;
    bool marksEnd_ = false;         ///< by what is left over in the last packet
    int bytesPerSample_ = 0;        ///< of all channels; 0: packets are whole
    std::size_t firstHeld_ = 0;     ///< the number of held_.front()
    std::deque<PacketHandle> held_; ///< of which it is not known whether they are needed
    std::deque<PacketHandle> ready_;
    bool ended_ = false;
};

} // namespace velmora
