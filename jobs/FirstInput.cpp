#include "FirstInput.h"

#include "ConversionEngine.h"
#include "ConversionRun.h"

namespace velmora {

FirstInput::FirstInput() {
    const std::int32_t count = ConversionEngine::instance().currentIndex.exchange(0);
    if (count > 0 && ConversionRun::inProgress() != nullptr)
        countOfRun_ = count;
}

FirstInput::~FirstInput() {
    std::int32_t first = 0;
    if (countOfRun_)
        ConversionEngine::instance().currentIndex.compare_exchange_strong(first, *countOfRun_);
}

} // namespace velmora
