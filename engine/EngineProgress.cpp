#include "EngineProgress.h"

namespace velmora {
namespace {

ConversionEngine::FileState fileStateOf(InputState state) {
    switch (state) {
    case InputState::Done:
        return ConversionEngine::Done;
    case InputState::Failed:
        return ConversionEngine::Failed;
    case InputState::Pending:
        break;
    }
    return ConversionEngine::Pending;
}

} // namespace

EngineProgress::EngineProgress(ConversionEngine& engine, std::int32_t inputCount)
    : engine_(engine), inputCount_(static_cast<std::size_t>(inputCount)) {
    percentIs(0);
    inputIs(0);
    for (std::size_t i = 0; i < inputCount_; ++i) {
        stateIs(i, InputState::Pending);
    }
}

void EngineProgress::inputIs(std::size_t index) {
    engine_.currentIndex = static_cast<std::int32_t>(index);
}

void EngineProgress::stateIs(std::size_t index, InputState state) {
    engine_.fileStates[index] = fileStateOf(state);
}

void EngineProgress::percentIs(int percent) {
    engine_.currentPercent = percent;
}

void EngineProgress::startIs(std::size_t index, double seconds) {
    engine_.startTimes[index] = seconds;
}

void EngineProgress::spanIs(std::size_t index, double seconds) {
    engine_.spans[index] = seconds;
}

void EngineProgress::frameRateIs(double rate) {
    engine_.videoFrameRate = rate;
}

void EngineProgress::failPending() {
    for (std::size_t i = 0; i < inputCount_; ++i) {
        std::uint8_t pending = ConversionEngine::Pending;
        engine_.fileStates[i].compare_exchange_strong(pending, ConversionEngine::Failed);
    }
    inputIs(inputCount_);
}

} // namespace velmora
