// Any bytes as the texts of a cut window's start and end.

#include "NodeSetting.h"
#include "SharedState.h"
#include "cutterWinController.h"

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

constexpr std::int32_t kLongestMs = (99 * 3600 + 99 * 60 + 99) * 1000 + 999;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using velmora::cutterWinController;
    velmora::currentSetting = std::make_shared<velmora::NodeSetting>();
    const QString texts =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString start = texts.section('/', 0, 0);
    const QString end = texts.section('/', 1);
    const std::int32_t startMs = cutterWinController::parseSpecificStringToMs(start);
    const std::int32_t endMs = cutterWinController::parseSpecificStringToMs(end);
    require(startMs >= -1 && startMs <= kLongestMs);
    require(endMs >= -1 && endMs <= kLongestMs);
    const std::int32_t lengthMs = cutterWinController::setStartAndEnd(start, end);
    require(lengthMs >= -1 && lengthMs <= kLongestMs);
    require((startMs >= 0 && endMs >= 0) || lengthMs == -1);
    return 0;
}
