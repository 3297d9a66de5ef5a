#pragma once

#include "InputMedia.h"
#include "OutputMedia.h"
#include "PacketHandler.h"

#include <memory>

namespace velmora {

/// How the streams of a job's inputs become those of its output: copied or re-encoded. Lives from
/// the first input to the last. The first input creates the output's streams, later ones find them
/// there.
class Conversion {
public:
    Conversion() = default;
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    virtual ~Conversion() = default;

    /// Sets `handler` to what the packets of the input's video or audio stream go to; null when
    /// they are left out. The input has such a stream, and its decoders have been opened where
    /// they could be. 0 or a negative libav error code: the input fails.
    virtual int setUpVideo(InputMedia& input, OutputMedia& output, bool isFirst,
                           std::unique_ptr<PacketHandler>& handler) = 0;
    virtual int setUpAudio(InputMedia& input, OutputMedia& output, bool isFirst,
                           std::unique_ptr<PacketHandler>& handler) = 0;
    /// Both have been set up.
    virtual void setUpDone(InputMedia& input) = 0;

    /// How many packets are worth preparing before the first of them is handled.
    virtual std::size_t readAhead() const = 0;
};

} // namespace velmora
