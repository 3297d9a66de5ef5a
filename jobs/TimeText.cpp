#include "TimeText.h"

#include "Saturated.h"

#include <QByteArray>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

namespace velmora {
namespace {

constexpr std::int32_t kMostOfTwoDigits = 99;
constexpr std::int32_t kMostMilliseconds = 999;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Takes the next field and its delimiter off `rest`. Nothing for what is no number up to `most`.
std::optional<std::int32_t> takeField(std::string_view& rest, std::int32_t most) {
    const std::string_view digits = rest.substr(0, rest.find_first_of(":."));
    rest.remove_prefix(std::min(digits.size() + 1, rest.size()));
    if (!std::ranges::all_of(digits, isDigit)) {
        return std::nullopt;
    }
    std::int32_t value = 0;
    const char* const end = digits.data() + digits.size();
    if (std::from_chars(digits.data(), end, value).ec == std::errc::result_out_of_range) {
        return std::nullopt;
    }
    return value <= most ? std::optional(value) : std::nullopt;
}

} // namespace

QString wholeSecondsText(std::int32_t seconds) {
    const std::int32_t hours = seconds / 3600;
    const std::int32_t minutes = (seconds - hours * 3600) / 60;
    return QString::asprintf("%02d:%02d:%02d", hours, minutes, seconds % 60);
}

QString timeText(float seconds) {
    const std::int32_t milliseconds = truncated(seconds * 1000.0F);
    return wholeSecondsText(truncated(seconds)) + QString::asprintf(".%03d", milliseconds % 1000);
}

QString millisecondsText(std::int64_t milliseconds) {
    return wholeSecondsText(saturated(milliseconds / 1000)) +
           QString::asprintf(".%03d", static_cast<int>(milliseconds % 1000));
}

QString positionText(float position, float length) {
    return timeText(position) + '/' + timeText(length);
}

std::optional<std::int32_t> parsedMilliseconds(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::string_view rest(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    // Minutes and seconds may go up to 99 too.
    const auto hours = takeField(rest, kMostOfTwoDigits);
    const auto minutes = takeField(rest, kMostOfTwoDigits);
    const auto seconds = takeField(rest, kMostOfTwoDigits);
    const auto milliseconds = takeField(rest, kMostMilliseconds);
    if (!hours || !minutes || !seconds || !milliseconds) {
        return std::nullopt;
    }
    return (*hours * 3600 + *minutes * 60 + *seconds) * 1000 + *milliseconds;
}

std::int64_t toMilliseconds(float seconds) {
    return truncatedTo64Bits(seconds * 1000.0);
}

float toSeconds(std::int64_t milliseconds) {
    return static_cast<float>(static_cast<double>(milliseconds) / 1000.0);
}

} // namespace velmora
