#include "InputFiles.h"

#include "EngineLog.h"
#include "FileIdentity.h"
#include "PlayList.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/opt.h>
}

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <string_view>
#include <utility>

namespace velmora {
namespace {

namespace fs = std::filesystem;

// A list of lists opens each of them and the beginning of what it names, some dozens in all.
constexpr int kMaxFilesForHeader = 256;

/// Finds a file without opening it for reading, so that a device or a pipe does not notice.
FileDescriptor find(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_PATH | O_CLOEXEC));
}

/// The name by which this process reaches what the descriptor has found, whatever becomes of the
/// name by which it was found.
std::string nameOfFound(const FileDescriptor& file) {
    return "/proc/self/fd/" + std::to_string(file.get());
}

/// Without links; empty when it cannot be told.
fs::path realPath(const FileDescriptor& file) {
    std::error_code failure;
    return fs::read_symlink(nameOfFound(file), failure);
}

bool isBelow(const fs::path& folder, const fs::path& path) {
    return !folder.empty() && std::ranges::mismatch(folder, path).in1 == folder.end();
}

bool isFileUrl(const char* url) {
    const char* protocol = avio_find_protocol_name(url);
    return protocol != nullptr && std::string_view(protocol) == "file";
}

} // namespace

InputFiles::InputFiles(std::string path, const StopFlag* stop)
    : path_(std::move(path)), stop_(stop), input_(stop) {}

int InputFiles::open() {
    const fs::path folder = fs::path(path_).parent_path();
    folder_ = find(folder.empty() ? "." : folder.string());
    const int result = input_.open(path_);
    return result >= 0 && isEndlessPlayList(input_) ? AVERROR_INVALIDDATA : result;
}

bool InputFiles::mayReach(const std::vector<std::string>& inputs, const std::string& output) {
    const auto file = FileIdentity::ofPath(output);
    return file && std::ranges::any_of(inputs, [&](const std::string& path) {
               const auto input = FileIdentity::ofPath(path);
               return (input && input->isSameFile(*file)) || mayName(path, output);
           });
}

bool InputFiles::mayName(const std::string& path, const std::string& other) {
    InputFiles input(path, nullptr);
    const FileDescriptor file = find(other);
    input.open();
    return file.isOpen() && input.input_.io() != nullptr && isPlayList(input.input_) &&
           input.mayBeRead(file);
}

int InputFiles::attachTo(AVFormatContext& context) {
    // Some demuxers open nested files by the library's own protocols; none of them has this name.
    const int result = av_opt_set(&context, "protocol_whitelist", "none", 0);
    if (result >= 0) {
        context.opaque = this;
        context.io_open = openNested;
        context.io_close2 = closeNested;
        context.pb = input_.io();
    }
    return result;
}

// The demuxer of picture sequences looks for files by their address, whatever the protocols
// allowed, and play lists take it for the base of the names in them.
std::string InputFiles::url() const {
    return fs::path(path_).is_absolute() ? path_ : "./" + path_;
}

int InputFiles::openNested(AVFormatContext* context, AVIOContext** io, const char* url,
                           int /*flags*/, AVDictionary** /*options*/) {
    auto* self = static_cast<InputFiles*>(context->opaque);
    // A demuxer's own context, which the library would close as if a protocol had been opened.
    if (self == nullptr) {
        logFailure(url, Operation::OpenNestedFile, AVERROR(EACCES));
        return AVERROR(EACCES);
    }
    try {
        return self->openNested(url, io);
    } catch (const std::bad_alloc&) {
        return AVERROR(ENOMEM);
    }
}

int InputFiles::closeNested(AVFormatContext* context, AVIOContext* io) {
    auto* self = static_cast<InputFiles*>(context->opaque);
    std::erase_if(self->nested_, [io](const auto& reader) { return reader->io() == io; });
    return 0;
}

int InputFiles::openNested(const char* url, AVIOContext** io) {
    auto reader = std::make_unique<FileReader>(stop_);
    const int result = openAllowed(url, *reader);
    if (result < 0) {
        logRefusal(path_, Operation::OpenNestedFile,
                   "open nested file " + std::string(url) + ": " + errorText(result));
        return result;
    }
    *io = reader->io();
    nested_.push_back(std::move(reader));
    return 0;
}

int InputFiles::openAllowed(const char* url, FileReader& reader) {
    if (readsHeader_ && ++openedForHeader_ > kMaxFilesForHeader) {
        return AVERROR(EMFILE);
    }
    const int result = openWhereAllowed(url, reader);
    return result >= 0 && isEndlessPlayList(reader) ? AVERROR_INVALIDDATA : result;
}

int InputFiles::openWhereAllowed(const char* url, FileReader& reader) const {
    if (!isFileUrl(url)) {
        return AVERROR(EACCES);
    }
    av_strstart(url, "file:", &url);
    const FileDescriptor file = find(url);
    if (!file.isOpen()) {
        return AVERROR(errno);
    }
    // What was looked at is what is opened, even if its name means something else by now.
    return mayBeRead(file) ? reader.open(nameOfFound(file)) : AVERROR(EACCES);
}

bool InputFiles::mayBeRead(const FileDescriptor& file) const {
    struct stat status {};
    const bool isInput =
        fstat(file.get(), &status) == 0 && FileIdentity::from(status).isSameFile(input_.identity());
    return isInput || (folder_.isOpen() && isBelow(realPath(folder_), realPath(file)));
}

} // namespace velmora
