#include "FileReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace velmora {
namespace {

// For headers and small packets. What is larger, as most pictures are, is read past it, straight
// into the packet.
constexpr int kBufferBytes = 32 * 1024;

} // namespace

int FileReader::open(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return AVERROR(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? AVERROR(EISDIR) : AVERROR(EINVAL);
    }
    // Non-blocking, in case the name has come to mean a pipe or a device since the look above.
    file_ = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file_.isOpen() || fstat(file_.get(), &status) != 0) {
        return AVERROR(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return AVERROR(EINVAL);
    }
    identity_ = FileIdentity::from(status);

    auto* buffer = static_cast<std::uint8_t*>(av_malloc(kBufferBytes));
    if (buffer == nullptr) {
        return AVERROR(ENOMEM);
    }
    io_.reset(avio_alloc_context(buffer, kBufferBytes, 0, this, readPacket, nullptr, seek));
    if (io_ == nullptr) {
        av_free(buffer);
        return AVERROR(ENOMEM);
    }
    return 0;
}

std::string FileReader::beginning(std::size_t bytes) const {
    struct stat status {};
    if (fstat(file_.get(), &status) != 0) {
        return {};
    }
    std::string content(std::min(bytes, static_cast<std::size_t>(status.st_size)), '\0');
    std::size_t count = 0;
    while (count < content.size()) {
        const ssize_t got = pread(file_.get(), content.data() + count, content.size() - count,
                                  static_cast<off_t>(count));
        if (got <= 0 && !(got < 0 && errno == EINTR)) {
            break;
        }
        count += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    content.resize(count);
    return content;
}

int FileReader::readPacket(void* opaque, std::uint8_t* buffer, int size) {
    const auto* self = static_cast<const FileReader*>(opaque);
    for (;;) {
        if (isRaised(self->stop_)) {
            return AVERROR_EXIT;
        }
        const ssize_t count = ::read(self->file_.get(), buffer, static_cast<std::size_t>(size));
        if (count > 0) {
            return static_cast<int>(count);
        }
        if (count == 0) {
            return AVERROR_EOF;
        }
        if (errno != EINTR) {
            return AVERROR(errno);
        }
    }
}

std::int64_t FileReader::seek(void* opaque, std::int64_t offset, int whence) {
    const auto* self = static_cast<const FileReader*>(opaque);
    if (whence == AVSEEK_SIZE) {
        struct stat status {};
        return fstat(self->file_.get(), &status) == 0 ? status.st_size : AVERROR(errno);
    }
    const off_t position = lseek(self->file_.get(), offset, whence & ~AVSEEK_FORCE);
    return position >= 0 ? position : AVERROR(errno);
}

} // namespace velmora
