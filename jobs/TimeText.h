#pragma once

#include <QString>

#include <cstdint>
#include <optional>

// Times as the windows show and read them, and their conversions.

namespace velmora {

/// "hh:mm:ss" of whole seconds. The hours may have more digits; negative seconds give negative
/// fields.
QString wholeSecondsText(std::int32_t seconds);

/// "hh:mm:ss.fff" of a time in seconds, truncated to the millisecond. The hours may have more
/// digits; a negative time gives negative fields.
QString timeText(float seconds);

/// Likewise of a time that is not negative, in milliseconds.
QString millisecondsText(std::int64_t milliseconds);

/// Two of them, as "position/length".
QString positionText(float position, float length);

/// The milliseconds of "hh:mm:ss.fff"; nothing for a text that is no time. Each field ends with ':'
/// or '.' or the text; empty and missing ones count 0. The last is a number of milliseconds and no
/// fraction: "0:0:1.5" is 1005.
std::optional<std::int32_t> parsedMilliseconds(const QString& text);

/// A time in milliseconds without its fraction; the nearest that fits, and 0 for what is no number.
std::int64_t toMilliseconds(float seconds);

float toSeconds(std::int64_t milliseconds);

} // namespace velmora
