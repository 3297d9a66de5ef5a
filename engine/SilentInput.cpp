#include "SilentInput.h"

#include <algorithm>

namespace velmora {

// With the pictures, not after them all: players read both from one place of the file.
PacketOutcome SilentInput::handle() {
    const auto outcome = pictures_->handle();
    return std::max(outcome, sound_.fillUntil(output_.videoSeconds()));
}

PacketOutcome SilentInput::finish() {
    const auto filled = sound_.fillUntil(pictures_->endSeconds());
    const auto finished = sound_.finish();
    return std::max({filled, finished, pictures_->finish()});
}

} // namespace velmora
