#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

/// The number that the whole text stands for; nothing when it is none.
template <typename Number> std::optional<Number> parseNumber(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

inline std::int64_t milliseconds(double seconds) {
    constexpr double kMsPerSecond = 1000.0;
    return std::llround(seconds * kMsPerSecond);
}
