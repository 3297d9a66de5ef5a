#pragma once

#include "Conversion.h"

namespace velmora {

/// Packets are copied as they are.
class DirectCopy : public Conversion {
public:
    int setUpVideo(InputMedia& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler) override;
    int setUpAudio(InputMedia& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler) override;
    /// A copy only has to know that the decoders open.
    void setUpDone(InputMedia& input) override { input.closeDecoders(); }
    std::size_t readAhead() const override { return 1; }
};

} // namespace velmora
