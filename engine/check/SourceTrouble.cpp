#include "SourceFacts.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace velmora {

std::optional<std::string> troubleOf(const SourceFacts& facts) {
    constexpr double kSeen = 0.1; // seconds; less is between any two streams
    if (facts.variesIntervals) {
        return "The pictures of this video come at varying intervals.";
    }
    if (std::abs(facts.soundDelay) >= kSeen) {
        std::array<char, 80> text{};
        std::snprintf(text.data(), text.size(), "This video's sound starts %.1f s %s its pictures.",
                      std::abs(facts.soundDelay), facts.soundDelay > 0 ? "after" : "before");
        return text.data();
    }
    return std::nullopt;
}

} // namespace velmora
