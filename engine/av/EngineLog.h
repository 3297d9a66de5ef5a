#pragma once

#include "LogSink.h"

#include <optional>
#include <string>

namespace velmora {

/// Routes the log of the engine and of the media libraries, up to the libraries' log level, to
/// `sink` (null: the libraries' own way of writing to standard error). May be called at any time
/// from any thread.
void setLogSink(LogSink sink);

/// Makes the libraries' log take the way of the engine's.
void routeLibraryLog();

/// Writes "PATH: OPERATION: the library's text for CODE" as an error.
void logFailure(const std::string& path, const char* operation, int code);

/// While one lives, lines written by this thread that the engine provokes on purpose are dropped.
/// Within one that drops all, others change nothing.
class ExpectedLogLines {
public:
    enum class Kind {
        HeldBackDecoders, ///< only what stream info says about a decoder that it may not open
        Everything,       ///< all lines: a decoder is made to fail
    };

    explicit ExpectedLogLines(Kind kind);
    ~ExpectedLogLines();
    ExpectedLogLines(const ExpectedLogLines&) = delete;
    ExpectedLogLines& operator=(const ExpectedLogLines&) = delete;

private:
    std::optional<Kind> before_;
};

} // namespace velmora
