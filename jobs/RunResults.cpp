#include "RunResults.h"

#include "CommonAction.h"
#include "ConversionEngine.h"

#include <algorithm>

namespace velmora {
namespace {

ConversionEngine& engine() {
    return ConversionEngine::instance();
}

/// The state of an input as an item has it: pending is -1.
std::int32_t stateOf(std::int32_t index) {
    return static_cast<std::int8_t>(engine().fileStates[static_cast<std::size_t>(index)].load());
}

/// The inputs of which the engine has states.
std::int32_t inTable(std::int32_t count) {
    return std::min(count, static_cast<std::int32_t>(ConversionEngine::kMaxInputs));
}

} // namespace

void copyStates(const FileList& items, std::int32_t count) {
    for (std::int32_t i = 0; i < inTable(count); ++i) {
        if (const auto item = CommonAction::entryAt(items, i)) {
            item->converteState = stateOf(i);
        }
    }
}

void copyResults(const FileList& items) {
    const std::int32_t count = engine().currentIndex;
    copyStates(items, count);
    for (std::int32_t i = 0; i < inTable(count); ++i) {
        if (const auto item = CommonAction::entryAt(items, i)) {
            item->isSeleted = 0;
        }
    }
}

RunOutcome collectOutcome(const FileList& items) {
    copyResults(items);
    copyStates(items, engine().jobCount);
    const bool completed = isOverAllInputs() && stateOf(0) == ConversionEngine::Done;
    return completed ? RunOutcome::Completed : RunOutcome::Failed;
}

bool isOverAllInputs() {
    return engine().currentIndex > 0 && engine().currentIndex == engine().jobCount;
}

} // namespace velmora
