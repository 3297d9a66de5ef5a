#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace velmora::test {

/// Ends the process when nothing has been noted for too long, and tells what was going on.
class Watchdog {
public:
    Watchdog();
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// Something is being done: a text that lives on. Main thread.
    void note(const char* what);
    /// What was noted last, oldest first, on the standard error output. Any thread.
    void tell() const;

private:
    using Clock = std::chrono::steady_clock;

    void watch();

    std::array<std::atomic<const char*>, 24> notes_{};
    std::atomic<std::size_t> count_ = 0;
    std::atomic<bool> isOver_ = false;
    std::thread thread_; ///< the last member: it uses the others
};

} // namespace velmora::test
