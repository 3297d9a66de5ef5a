#pragma once

#include "Conversion.h"

namespace velmora {

/// Packets are copied as they are.
class DirectCopy : public Conversion {
public:
    int setUp(InputMedia& input, OutputMedia& output, bool isFirst,
              InputHandlers& handlers) override;
    std::size_t readAhead() const override { return 1; }
};

} // namespace velmora
