#include "SourceTrouble.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace velmora {

QString troubleOf(const SourceFacts& facts) {
    constexpr double kSeen = 0.1; // seconds; less is between any two streams
    if (facts.variesIntervals) {
        return "The pictures of this video come at varying intervals.";
    }
    if (std::abs(facts.soundDelay) >= kSeen) {
        return QString("This video's sound starts %1 s %2 its pictures.")
            .arg(std::abs(facts.soundDelay), 0, 'f', 1)
            .arg(facts.soundDelay > 0 ? "after" : "before");
    }
    return {};
}

QString troubleOf(const std::vector<SourceFacts>& facts) {
    const auto turn = [](const SourceFacts& file) {
        return std::pair(file.quarterTurns, file.mirrored);
    };
    if (std::ranges::any_of(facts, &SourceFacts::variesIntervals)) {
        return "The pictures of one of the files come at varying intervals.";
    }
    if (std::ranges::any_of(facts,
                            [](const SourceFacts& file) { return !troubleOf(file).isEmpty(); })) {
        return "The sound of one of the files does not start with its pictures.";
    }
    if (std::ranges::adjacent_find(facts, std::ranges::not_equal_to(), turn) != facts.end()) {
        return "The files differ in rotation.";
    }
    return {};
}

} // namespace velmora
