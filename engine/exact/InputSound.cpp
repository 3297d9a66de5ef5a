#include "InputSound.h"

#include <utility>
#include <vector>

namespace velmora {

InputSound::InputSound(ExactInput& input, TimedSoundWriter& output, const StopFlag& stop)
    : input_(input), output_(output), stop_(stop), ended_(!input.openSound(output.format())) {}

/// Whether there is a next piece.
bool InputSound::advance() {
    if (next_ == nullptr && !ended_ && !isRaised(&stop_)) {
        next_ = input_.nextSound();
        ended_ = next_ == nullptr;
    }
    return next_ != nullptr;
}

int InputSound::writeUntil(std::int64_t sample) {
    int result = 0;
    while (result >= 0 && advance() && output_.samples() + next_->nb_samples <= sample) {
        result = output_.write(*next_, next_->nb_samples);
        next_.reset();
    }
    return result;
}

int InputSound::endAt(std::int64_t end) {
    int result = 0;
    while (result >= 0 && output_.samples() < end && advance()) {
        result = output_.write(*next_, end - output_.samples());
        next_.reset();
    }
    return result;
}

/// How much there is shows only when it has been read.
int InputSound::endNear(std::int64_t end, std::int64_t most) {
    std::vector<FrameHandle> read;
    std::int64_t last = output_.samples();
    while (last <= end + most && advance()) {
        last += next_->nb_samples;
        read.push_back(std::move(next_));
    }
    const bool isLonger = last > end + most;
    int result = 0;
    for (const FrameHandle& sound : read) {
        if (result >= 0) {
            const std::int64_t room = isLonger ? sound->nb_samples : end - output_.samples();
            result = output_.write(*sound, room);
        }
    }
    return result >= 0 && isLonger ? writeAll() : result;
}

} // namespace velmora
