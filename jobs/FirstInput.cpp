#include "FirstInput.h"

#include "ConversionEngine.h"
#include "RunQueue.h"

namespace velmora {

FirstInput::FirstInput() {
    const std::int32_t count = ConversionEngine::instance().currentIndex.exchange(0);
    if (count > 0 && RunQueue::instance().isBusy()) {
        countOfRun_ = count;
    }
}

FirstInput::~FirstInput() {
    std::int32_t first = 0;
    if (countOfRun_) {
        ConversionEngine::instance().currentIndex.compare_exchange_strong(first, *countOfRun_);
    }
}

} // namespace velmora
