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

/// What can fail, or be refused.
enum class Operation {
    // By a library or the system.
    OpenInput,
    OpenNestedFile,
    ReadStreamInfo,
    OpenDecoder,
    OpenSoundDecoder,
    OpenPictures,
    Seek,
    Resample,
    FilterPictures,
    ChooseContainer,
    CreateOutput,
    SetUpStreams,
    OpenVideoEncoder,
    OpenAudioEncoder,
    QueueSound,
    EncodeSound,
    EncodeEnds, ///< of what is copied
    OpenBesidesOutput,
    BeginOutput,
    WritePacket,
    FinishOutput,
    WritePicture,
    // By the engine.
    FindPictures,
    FindFrameRate,
    FindWindow,
    UseContainer,
    KeepInputs, ///< apart from the output
};

/// The library's or the system's text for a negative libav error code.
std::string errorText(int code);

/// Writes "PATH: the operation's words: the library's text for CODE" as an error.
void logFailure(const std::string& path, Operation operation, int code);
/// Writes "PATH: WHY" as an error.
void logRefusal(const std::string& path, Operation operation, const std::string& why);

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
