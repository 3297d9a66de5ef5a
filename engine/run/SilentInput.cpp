#include "SilentInput.h"

namespace velmora {

// With the pictures, not after them all: players read both from one place of the file.
PacketOutcome SilentInput::handle() {
    const auto outcome = pictures_->handle();
    return worse(outcome, sound_.fillUntil(output_.videoSeconds()));
}

PacketOutcome SilentInput::finish() {
    const auto filled = sound_.fillUntil(pictures_->drain());
    const auto finished = sound_.finish();
    return worse(worse(filled, finished), pictures_->finish());
}

} // namespace velmora
