#include "InputProgress.h"

#include <algorithm>

namespace velmora {

void InputProgress::packetIsDue(double seconds) {
    if (joins_) {
        run_.spanIs(index_, spanSeconds_);
    }
    // Whatever has been written of a job of no length is all of it; nothing written is nothing.
    const double percent = seconds > 0 ? seconds * 100.0 / spanSeconds_ : 0.0;
    run_.percentIs(percent < 100.0 ? static_cast<int>(std::max(percent, 0.0)) : 100);
}

void InputProgress::note(PacketOutcome outcome) {
    if (outcome != PacketOutcome::Done) {
        fail();
    }
}

void InputProgress::fail() {
    failed_ = true;
    run_.stateIs(index_, InputState::Failed);
}

void InputProgress::complete() {
    if (!failed_) {
        run_.stateIs(index_, InputState::Done);
    }
}

} // namespace velmora
