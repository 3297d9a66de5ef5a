#include "PacketPump.h"

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

// Units that may be written before those of the packets that are due: what an encoder still holds.
constexpr std::size_t kSpareUnits = 4;

} // namespace

PacketPump::PacketPump(InputMedia& input, const OutputMedia& output, const InputHandlers& handlers,
                       const Plan& plan)
    : input_(input), output_(output), handlers_(handlers), plan_(plan),
      packets_(input, plan.inTimeOrder) {}

void PacketPump::run(InputProgress& progress, const StopFlag& stop) {
    for (;;) {
        while (due_.size() < plan_.readAhead && isNextSureToBeHandled() && readPacket()) {
            prepareLast();
        }
        const bool prepared = !due_.empty();
        if ((!prepared && !readPacket()) || isRaised(&stop) || hasAllPictures()) {
            return;
        }
        progress.packetIsDue(std::max(output_.audioSeconds(), output_.videoSeconds()));
        if (!prepared) {
            prepareLast();
        }
        const PacketOutcome outcome = handleFirst();
        progress.note(outcome);
        if (outcome == PacketOutcome::FailedEnd) {
            return;
        }
    }
}

/// However many pictures come of the packets that are due: a cut may end before.
bool PacketPump::isNextSureToBeHandled() const {
    const auto mostPictures = static_cast<std::int64_t>(2 * due_.size() + kSpareUnits);
    return output_.videoSecondsAfter(mostPictures) < plan_.videoSeconds;
}

bool PacketPump::readPacket() {
    PacketHandle packet = inputEnded_ ? nullptr : packets_.next();
    if (packet == nullptr) {
        inputEnded_ = true;
        return false;
    }
    PacketHandler* handler = handlerOf(*packet);
    due_.push_back({std::move(packet), handler});
    return true;
}

void PacketPump::prepareLast() {
    DuePacket& last = due_.back();
    if (last.handler != nullptr) {
        last.handler->prepare(std::move(last.packet));
    }
}

bool PacketPump::hasAllPictures() const {
    return output_.videoSeconds() >= plan_.videoSeconds;
}

PacketOutcome PacketPump::handleFirst() {
    PacketHandler* handler = due_.front().handler;
    due_.pop_front();
    return handler != nullptr ? handler->handle() : PacketOutcome::Done;
}

PacketHandler* PacketPump::handlerOf(const AVPacket& packet) const {
    if (packet.stream_index == input_.videoStreamIndex()) {
        return handlers_.video.get();
    }
    return packet.stream_index == input_.audioStreamIndex() ? handlers_.audio.get() : nullptr;
}

} // namespace velmora
