#include "LeadingNumber.h"

#include <QByteArray>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace velmora {
namespace {

constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();

} // namespace

std::int32_t leadingInteger(const QString& text) {
    const long long number = std::strtoll(text.toUtf8().constData(), nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(number, kLeast, kMost));
}

double leadingDecimal(const QString& text) {
    // atof would look for the decimal point of the user's language.
    QByteArray digits = text.toUtf8().trimmed();
    if (digits.startsWith('+') && !digits.startsWith("+-"))
        digits.remove(0, 1);
    double number = 0.0;
    std::from_chars(digits.constBegin(), digits.constEnd(), number);
    return number;
}

std::int32_t truncated(double number) {
    if (std::isnan(number))
        return 0;
    return static_cast<std::int32_t>(
        std::clamp(number, static_cast<double>(kLeast), static_cast<double>(kMost)));
}

} // namespace velmora
