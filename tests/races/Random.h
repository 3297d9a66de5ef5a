#pragma once

#include <random>

namespace velmora::test {

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    /// One of 0 to `count` - 1.
    int below(int count) { return std::uniform_int_distribution(0, count - 1)(engine_); }
    bool oneIn(int count) { return below(count) == 0; }
    template <class Items> const auto& oneOf(const Items& items) {
        return items[static_cast<decltype(items.size())>(below(static_cast<int>(items.size())))];
    }

private:
    std::mt19937 engine_;
};

} // namespace velmora::test
