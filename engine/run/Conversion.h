#pragma once

#include "Decoder.h"
#include "InputMedia.h"
#include "OutputMedia.h"
#include "PacketHandler.h"

#include <memory>
#include <string>
#include <utility>

namespace velmora {

/// One input of a run, with the decoders of its streams as far as they are needed and open.
struct RunInput {
    RunInput(std::string path, const StopFlag* stop) : media(std::move(path), stop) {}

    InputMedia media;
    Decoder video;
    Decoder audio;
};

/// What the packets of one input's streams go to; null: they are left out.
struct InputHandlers {
    std::unique_ptr<PacketHandler> video;
    std::unique_ptr<PacketHandler> audio; ///< may ask the pictures where they end, so it goes first
};

/// How the streams of a job's inputs become those of its output: copied or re-encoded. Lives from
/// the first input to the last. The first input creates the output's streams, later ones find them
/// there.
class Conversion {
public:
    Conversion() = default;
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    virtual ~Conversion() = default;

    /// Prepares for the packets of an input whose decoders have been opened where they could be. 0
    /// or a negative libav error code: the input fails, and `handlers` are not to be used.
    virtual int setUp(RunInput& input, OutputMedia& output, bool isFirst,
                      InputHandlers& handlers) = 0;

    /// How many packets are worth preparing before the first of them is handled.
    virtual std::size_t readAhead() const = 0;
};

} // namespace velmora
