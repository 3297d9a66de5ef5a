#include "EngineLog.h"

#include "FirstFailure.h"

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

const char* wordsFor(Operation operation) {
    switch (operation) {
    case Operation::OpenInput:
        return "open";
    case Operation::OpenNestedFile:
        return "open from within a nested file";
    case Operation::ReadStreamInfo:
        return "read stream info";
    case Operation::OpenDecoder:
    case Operation::OpenSoundDecoder:
        return "open decoder";
    case Operation::OpenPictures:
        return "open pictures";
    case Operation::Seek:
        return "seek";
    case Operation::Resample:
        return "resample";
    case Operation::FilterPictures:
        return "filter";
    case Operation::ChooseContainer:
        return "choose container";
    case Operation::CreateOutput:
        return "create output";
    case Operation::SetUpStreams:
        return "set up streams";
    case Operation::OpenVideoEncoder:
        return "open video encoder";
    case Operation::OpenAudioEncoder:
        return "open audio encoder";
    case Operation::QueueSound:
        return "queue";
    case Operation::EncodeSound:
        return "encode";
    case Operation::EncodeEnds:
        return "encode the ends";
    case Operation::OpenBesidesOutput:
        return "open besides the output";
    case Operation::BeginOutput:
        return "begin output";
    case Operation::WritePacket:
        return "write packet";
    case Operation::FinishOutput:
        return "finish output";
    case Operation::WritePicture:
        return "write picture";
    case Operation::FindPictures:
    case Operation::FindFrameRate:
    case Operation::FindWindow:
    case Operation::UseContainer:
    case Operation::KeepInputs:
        break; // refused, in other words
    }
    return "";
}

} // namespace

void setLogSink(LogSink sink) {
    currentSink = sink;
    routeLibraryLog();
}

void routeLibraryLog() {
    av_log_set_callback(passOn);
}

std::string errorText(int code) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    return text.data();
}

void logFailure(const std::string& path, Operation operation, int code) {
    av_log(nullptr, AV_LOG_ERROR, "%s: %s: %s\n", path.c_str(), wordsFor(operation),
           errorText(code).c_str());
    FirstFailure::note({operation, path, code});
}

void logRefusal(const std::string& path, Operation operation, const std::string& why) {
    av_log(nullptr, AV_LOG_ERROR, "%s: %s\n", path.c_str(), why.c_str());
    FirstFailure::note({operation, path, AVERROR(EINVAL)});
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
