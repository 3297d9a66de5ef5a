#pragma once

#include <cstdint>
#include <optional>

namespace velmora {

/// Makes the first input the engine's current one, as a preview needs it. A run that goes on behind
/// its closed window, or whose outcome has not been taken, counts its inputs in the same field: it
/// gets its count back at the end, unless it has gone on counting. Main thread.
class FirstInput {
public:
    FirstInput();
    ~FirstInput();
    FirstInput(const FirstInput&) = delete;
    FirstInput& operator=(const FirstInput&) = delete;

private:
    std::optional<std::int32_t> countOfRun_;
};

} // namespace velmora
