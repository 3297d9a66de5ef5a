#include "CauseOfFailure.h"

#include "ExpectedSize.h"
#include "FileReader.h"
#include "InputMedia.h"
#include "RefusedSettings.h"
#include "SourceStreams.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace velmora {
namespace {

namespace fs = std::filesystem;
using Kind = FailureCause::Kind;

FailureCause cause(Kind kind, const Failure& failure) {
    FailureCause cause;
    cause.kind = kind;
    cause.path = failure.path;
    cause.library = errorText(failure.code);
    return cause;
}

std::uintmax_t sizeOf(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    return error ? 0 : size;
}

/// Sound, pictures or both cannot be read without a key.
bool isEncrypted(const std::string& path) {
    InputMedia media(path, nullptr);
    if (media.open() < 0) {
        return false;
    }
    for (const AVStream* const stream : streamsOf(*media.container())) {
        const std::uint32_t tag = stream->codecpar->codec_tag;
        if (tag == MKTAG('e', 'n', 'c', 'v') || tag == MKTAG('e', 'n', 'c', 'a') ||
            av_stream_get_side_data(stream, AV_PKT_DATA_ENCRYPTION_INIT_INFO, nullptr) != nullptr) {
            return true;
        }
    }
    return false;
}

/// Files of these kinds begin with words by which they are known, also when their rest is missing.
bool beginsLikeMedia(const std::string& path) {
    FileReader reader(nullptr);
    if (reader.open(path) < 0) {
        return false;
    }
    constexpr std::size_t kNameBegins = 4; // in a box, behind its length
    const std::string bytes = reader.beginning(2 * kNameBegins);
    const std::string box = bytes.substr(std::min(kNameBegins, bytes.size()));
    return box == "ftyp" || box == "moov" || box == "mdat" ||
           bytes.starts_with("\x1A\x45\xDF\xA3") || bytes.starts_with("RIFF") ||
           bytes.starts_with("FLV") || bytes.starts_with("OggS");
}

Kind kindOfUnreadable(const Failure& failure) {
    switch (failure.code) {
    case AVERROR(ENOENT):
    case AVERROR(ENOTDIR):
        return Kind::InputMissing;
    case AVERROR(EACCES):
    case AVERROR(EPERM):
        return Kind::InputNotReadable;
    default:
        break;
    }
    if (sizeOf(failure.path) == 0) {
        return Kind::InputIsEmpty;
    }
    return beginsLikeMedia(failure.path) ? Kind::InputIsCut : Kind::InputIsNoMedia;
}

/// What is asked of the file system when a file is begun or written.
std::optional<Kind> kindOfUnwritable(int code) {
    switch (code) {
    case AVERROR(ENOSPC):
    case AVERROR(EDQUOT):
        return Kind::DiskFull;
    case AVERROR(EFBIG):
        return Kind::FileTooLarge;
    case AVERROR(ENOENT):
    case AVERROR(ENOTDIR):
        return Kind::FolderMissing;
    case AVERROR(EACCES):
    case AVERROR(EPERM):
    case AVERROR(EROFS):
    case AVERROR(ETXTBSY):
    case AVERROR(EISDIR):
        return Kind::NotWritable;
    default:
        return std::nullopt;
    }
}

/// Some outputs are written beside the place that they are for, under another name.
FailureCause causeOfUnwritable(Failure failure, const Job& job) {
    failure.path = job.outputPaths.front();
    const auto kind = kindOfUnwritable(failure.code);
    if (!kind) {
        return failure.operation == Operation::BeginOutput ? causeOfRefusedStreams(job)
                                                           : cause(Kind::Other, failure);
    }
    FailureCause found = cause(*kind, failure);
    if (*kind == Kind::DiskFull) {
        std::error_code error;
        const fs::space_info space = fs::space(fs::path(failure.path).parent_path(), error);
        found.freeBytes =
            error ? 0
                  : static_cast<std::int64_t>(std::min<std::uintmax_t>(space.available, INT64_MAX));
        found.neededBytes = expectedBytes(job);
    }
    return found;
}

} // namespace

FailureCause causeOf(const Failure& failure) {
    switch (failure.operation) {
    case Operation::OpenInput:
    case Operation::ReadStreamInfo:
        return cause(kindOfUnreadable(failure), failure);
    case Operation::OpenDecoder:
        return cause(isEncrypted(failure.path) ? Kind::InputIsEncrypted : Kind::NoDecoder, failure);
    case Operation::OpenPictures:
    case Operation::FindPictures:
        return cause(Kind::NoPictures, failure);
    case Operation::FindFrameRate:
        return cause(Kind::NoFrameRate, failure);
    case Operation::FindWindow:
        return cause(Kind::NothingBetweenTimes, failure);
    case Operation::KeepInputs:
        return cause(Kind::OutputIsInput, failure);
    case Operation::ChooseContainer:
        return cause(Kind::UnknownContainer, failure);
    case Operation::UseContainer:
    case Operation::OpenBesidesOutput:
        return cause(Kind::ContainerNotUsable, failure);
    default:
        return cause(Kind::Other, failure);
    }
}

FailureCause causeOf(const Failure& failure, const Job& job) {
    switch (failure.operation) {
    case Operation::BeginOutput:
    case Operation::WritePacket:
    case Operation::FinishOutput:
        return causeOfUnwritable(failure, job);
    case Operation::OpenVideoEncoder:
        return job.reencodes ? causeOfRefusedPictures(job) : causeOf(failure);
    case Operation::OpenAudioEncoder:
        return causeOfRefusedSound(job);
    case Operation::SetUpStreams:
        return causeOfRefusedStreams(job);
    default:
        return causeOf(failure);
    }
}

} // namespace velmora
