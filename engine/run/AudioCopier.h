#pragma once

#include "OutputMedia.h"
#include "PacketHandler.h"

#include <deque>
#include <utility>

namespace velmora {

/// Copies the packets of one input's audio stream, numbered by the output's clock.
class AudioCopier : public PacketHandler {
public:
    AudioCopier(OutputMedia& output, OutputStream& stream, const AVStream& source);

    void prepare(PacketHandle packet) override { prepared_.push_back(std::move(packet)); }
    PacketOutcome handle() override;
    PacketOutcome finish() override { return PacketOutcome::Done; }

private:
    std::int64_t samplesIn(const AVPacket& packet);
    std::int64_t samplesByTime(const AVPacket& packet);
    std::int64_t toSamples(std::int64_t sourceTicks) const;

    OutputMedia& output_;
    OutputStream& stream_;
    const AVStream& source_;
    std::int64_t timedFrom_ = AV_NOPTS_VALUE; ///< source ticks, where timedSamples_ began
    std::int64_t timedSamples_ = 0;           ///< counted by time stamps since
    std::deque<PacketHandle> prepared_;
};

} // namespace velmora
