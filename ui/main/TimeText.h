#pragma once

#include <QString>

namespace velmora {

/// "hh:mm:ss.fff" of a time in seconds, truncated to the millisecond. The hours may have more
/// digits; a negative time gives negative fields.
QString timeText(float seconds);

/// Two of them, as "position/length".
QString positionText(float position, float length);

} // namespace velmora
