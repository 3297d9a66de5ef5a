#pragma once

#include <cstddef>

namespace velmora {

/// How the work on one input has ended. From pending to one of the others, once.
enum class InputState { Pending, Done, Failed };

/// Takes what a run tells of itself while it goes on, on the run's thread.
class RunProgress {
public:
    RunProgress() = default;
    RunProgress(const RunProgress&) = delete;
    RunProgress& operator=(const RunProgress&) = delete;
    virtual ~RunProgress() = default;

    /// The input that is worked on; after the last one, how many there are.
    virtual void inputIs(std::size_t index) = 0;
    virtual void stateIs(std::size_t index, InputState state) = 0;
    virtual void percentIs(int percent) = 0; ///< 0 to 100; of the whole job in a join
    /// Where a cut begins, seconds on the container's time line.
    virtual void startIs(std::size_t index, double seconds) = 0;
    virtual void spanIs(std::size_t index, double seconds) = 0;
    /// Of re-encoded pictures, per second.
    virtual void frameRateIs(double rate) = 0;
};

} // namespace velmora
