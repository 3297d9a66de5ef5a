#include "NodeSetting.h"

#include "ProfileInfo.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velmora {
namespace {

using Field = std::pair<const char*, QString NodeSetting::*>;

/// The parameters of a profile and the fields that they fill.
constexpr std::array kFields = {
    Field{"vEncoder", &NodeSetting::vEncoder}, Field{"vResolution", &NodeSetting::vResolution},
    Field{"vBitRate", &NodeSetting::vBitrate}, Field{"vFrameRate", &NodeSetting::vFrameRate},
    Field{"aEncoder", &NodeSetting::aEncoder}, Field{"aSamplerate", &NodeSetting::aSamplerate},
    Field{"aBitRate", &NodeSetting::aBitrate}, Field{"channel", &NodeSetting::aChannels},
};

} // namespace

NodeSetting& NodeSetting::initWithDict(const Profile* profile) {
    const Profile given = profile != nullptr ? *profile : Profile();
    defineType = given.index.value_or(0);
    profileName = given.name.value_or(QString());
    for (const ProfileParameter& parameter : given.setInfo) {
        const auto* const field = std::ranges::find(kFields, parameter.name, &Field::first);
        if (field != kFields.end() && !parameter.arrayValue.isEmpty())
            this->*field->second = parameter.choice();
    }
    return *this;
}

} // namespace velmora
