#include "LeadingNumber.h"

#include "Saturated.h"

#include <QByteArray>

#include <charconv>
#include <cstdlib>

namespace velmora {

std::int32_t leadingInteger(const QString& text) {
    return saturated(std::strtoll(text.toUtf8().constData(), nullptr, 10));
}

double leadingDecimal(const QString& text) {
    // atof would look for the decimal point of the user's language.
    QByteArray digits = text.toUtf8().trimmed();
    if (digits.startsWith('+') && !digits.startsWith("+-")) {
        digits.remove(0, 1);
    }
    double number = 0.0;
    std::from_chars(digits.constBegin(), digits.constEnd(), number);
    return number;
}

} // namespace velmora
