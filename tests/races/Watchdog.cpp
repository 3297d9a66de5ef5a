#include "Watchdog.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace velmora::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds kLimit(60);
#else
constexpr std::chrono::seconds kLimit(10);
#endif
constexpr std::chrono::milliseconds kInterval(100);

} // namespace

Watchdog::Watchdog() : thread_([this] { watch(); }) {}

Watchdog::~Watchdog() {
    isOver_ = true;
    thread_.join();
}

void Watchdog::note(const char* what) {
    const std::size_t count = count_;
    notes_.at(count % notes_.size()) = what;
    count_ = count + 1;
}

void Watchdog::tell() const {
    const std::size_t count = count_;
    for (std::size_t i = count - std::min(count, notes_.size()); i < count; ++i) {
        std::fprintf(stderr, "races: %zu %s\n", i, notes_.at(i % notes_.size()).load());
    }
}

void Watchdog::watch() {
    std::size_t seen = count_;
    auto since = Clock::now();
    while (!isOver_) {
        std::this_thread::sleep_for(kInterval);
        if (count_ != seen) {
            seen = count_;
            since = Clock::now();
        } else if (Clock::now() - since > kLimit) {
            tell();
            std::fprintf(stderr, "races: the last of these has not ended\n");
            std::abort();
        }
    }
}

} // namespace velmora::test
