#pragma once

#include "Conversion.h"
#include "InputProgress.h"
#include "StopFlag.h"
#include "TimeOrder.h"

#include <cstddef>
#include <deque>
#include <limits>

namespace velmora {

/// Takes the packets of one input to their handlers, in order, until the input ends or the cut has
/// all that was marked. A packet may be prepared before those in front of it are handled, but only
/// when it is sure to be handled too: what is prepared in vain would leave the decoder in another
/// state. Belongs to one thread.
class PacketPump {
public:
    static constexpr double kWhole = std::numeric_limits<double>::infinity();

    struct Plan {
        double videoSeconds = kWhole; ///< of the output, at which reading ends
        bool inTimeOrder = false;     ///< packets of both streams in the order of their times
        std::size_t readAhead = 1;    ///< packets worth preparing
    };

    /// All of these outlive the pump; `output` is where the handlers write.
    PacketPump(InputMedia& input, const OutputMedia& output, const InputHandlers& handlers,
               const Plan& plan);

    /// Blocks until there is nothing more to handle, a handler ends the input, or `stop` is raised.
    void run(InputProgress& progress, const StopFlag& stop);

private:
    /// A packet that has been read and not been handled.
    struct DuePacket {
        PacketHandle packet;
        PacketHandler* handler; ///< null: the packet is dropped
    };

    bool isNextSureToBeHandled() const;
    bool readPacket();
    void prepareLast();
    bool hasAllPictures() const;
    PacketOutcome handleFirst();
    PacketHandler* handlerOf(const AVPacket& packet) const;

    InputMedia& input_;
    const OutputMedia& output_;
    const InputHandlers& handlers_;
    const Plan plan_;
    TimeOrder packets_;
    std::deque<DuePacket> due_; ///< in order
    bool inputEnded_ = false;
};

} // namespace velmora
