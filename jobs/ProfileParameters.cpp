#include "ProfileParameters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velmora {
namespace {

using Field = std::pair<const char*, QString NodeSetting::*>;

constexpr std::array kFields = {
    Field{"vEncoder", &NodeSetting::vEncoder}, Field{"vResolution", &NodeSetting::vResolution},
    Field{"vBitRate", &NodeSetting::vBitrate}, Field{"vFrameRate", &NodeSetting::vFrameRate},
    Field{"aEncoder", &NodeSetting::aEncoder}, Field{"aSamplerate", &NodeSetting::aSamplerate},
    Field{"aBitRate", &NodeSetting::aBitrate}, Field{"channel", &NodeSetting::aChannels},
};

} // namespace

QString NodeSetting::*fieldOfParameter(const QString& name) {
    const auto* const found = std::ranges::find(kFields, name, &Field::first);
    return found != kFields.end() ? found->second : nullptr;
}

} // namespace velmora
