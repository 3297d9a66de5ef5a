#include "EngineLog.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <array>
#include <atomic>
#include <cstdarg>
#include <optional>
#include <string_view>

namespace velmora {
namespace {

constinit std::atomic<LogSink> currentSink = nullptr;

/// What this thread expects at the moment.
std::optional<ExpectedLogLines::Kind>& expectedLines() {
    thread_local std::optional<ExpectedLogLines::Kind> kind;
    return kind;
}

bool speaksOfHeldBackDecoder(std::string_view format) {
    return format.find("not on whitelist") != std::string_view::npos ||
           format.find("Failed to open codec in") != std::string_view::npos;
}

bool isExpected(const char* format) {
    const auto kind = expectedLines();
    return kind == ExpectedLogLines::Kind::Everything ||
           (kind == ExpectedLogLines::Kind::HeldBackDecoders && speaksOfHeldBackDecoder(format));
}

void passOn(void* object, int level, const char* format, va_list arguments) {
    if (isExpected(format)) {
        return;
    }
    const LogSink sink = currentSink;
    if (sink == nullptr) {
        av_log_default_callback(object, level, format, arguments);
    } else if (level <= av_log_get_level()) {
        std::array<char, 1024> line{};
        int withPrefix = 1;
        av_log_format_line(object, level, format, arguments, line.data(), line.size(), &withPrefix);
        sink(line.data());
    }
}

} // namespace

void setLogSink(LogSink sink) {
    currentSink = sink;
    routeLibraryLog();
}

void routeLibraryLog() {
    av_log_set_callback(passOn);
}

void logFailure(const std::string& path, const char* operation, int code) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    av_log(nullptr, AV_LOG_ERROR, "%s: %s: %s\n", path.c_str(), operation, text.data());
}

ExpectedLogLines::ExpectedLogLines(Kind kind) : before_(expectedLines()) {
    if (before_ != Kind::Everything) {
        expectedLines() = kind;
    }
}

ExpectedLogLines::~ExpectedLogLines() {
    expectedLines() = before_;
}

} // namespace velmora
