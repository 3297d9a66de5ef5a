#pragma once

#include "NodeSetting.h"

#include <QString>

namespace velmora {

/// The field of a setting that takes the choice of a profile's parameter, by the name that the
/// parameter has in the profile; null for a name that is none of the eight.
QString NodeSetting::*fieldOfParameter(const QString& name);

} // namespace velmora
