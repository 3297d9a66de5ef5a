#pragma once

#include <QString>

#include <cstdint>

namespace velmora {

/// The number that the text begins with, after blanks and a sign; 0 without one. Numbers beyond
/// 32 bits give the nearest that fits.
std::int32_t leadingInteger(const QString& text);

/// Likewise with a decimal point, whatever the user's language, and an exponent.
double leadingDecimal(const QString& text);

} // namespace velmora
