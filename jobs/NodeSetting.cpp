#include "NodeSetting.h"

#include "ProfileInfo.h"
#include "ProfileParameters.h"

namespace velmora {

NodeSetting& NodeSetting::initWithDict(const Profile* profile) {
    const Profile given = profile != nullptr ? *profile : Profile();
    defineType = given.index.value_or(0);
    profileName = given.name.value_or(QString());
    for (const ProfileParameter& parameter : given.setInfo) {
        const auto field = fieldOfParameter(parameter.name);
        if (field != nullptr && !parameter.arrayValue.isEmpty()) {
            this->*field = parameter.choice();
        }
    }
    return *this;
}

} // namespace velmora
