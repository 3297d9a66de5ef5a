#pragma once

#include "Conversion.h"
#include "VideoCopier.h"

#include <memory>

namespace velmora {

/// Packets are copied as they are.
class DirectCopy : public Conversion {
public:
    int setUp(RunInput& input, OutputMedia& output, bool isFirst, InputHandlers& handlers) override;
    std::size_t readAhead() const override { return 1; }

private:
    int setUpVideo(RunInput& input, OutputMedia& output, bool isFirst,
                   std::unique_ptr<PacketHandler>& handler);

    DisplayOffset offset_;
};

} // namespace velmora
