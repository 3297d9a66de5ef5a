#pragma once

#include "EngineLog.h"

#include <optional>
#include <string>

namespace velmora {

/// What the engine has logged as failed.
struct Failure {
    Operation operation;
    std::string path;
    int code; ///< a negative libav error code
};

/// While one lives, it keeps the first failure that this thread logs. What a run goes on
/// without is none, such as a place to seek to. At most one lives on a thread.
class FirstFailure {
public:
    FirstFailure();
    ~FirstFailure();
    FirstFailure(const FirstFailure&) = delete;
    FirstFailure& operator=(const FirstFailure&) = delete;

    const std::optional<Failure>& found() const { return failure_; }
    /// What logFailure() does; only where one lives.
    static void note(const Failure& failure);

private:
    std::optional<Failure> failure_;
};

} // namespace velmora
