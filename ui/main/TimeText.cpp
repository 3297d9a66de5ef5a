#include "TimeText.h"

#include "LeadingNumber.h"

#include <cstdint>

namespace velmora {

QString timeText(float time) {
    const std::int32_t whole = truncated(time);
    const std::int32_t milliseconds = truncated(time * 1000.0F);
    const std::int32_t hours = whole / 3600;
    const std::int32_t rest = whole - hours * 3600;
    const std::int32_t minutes = rest / 60;
    const std::int32_t seconds = rest - minutes * 60;
    const std::int32_t fraction = milliseconds - milliseconds / 1000 * 1000;
    return QString::asprintf("%02d:%02d:%02d.%03d", hours, minutes, seconds, fraction);
}

QString positionText(float position, float length) {
    return timeText(position) + '/' + timeText(length);
}

} // namespace velmora
