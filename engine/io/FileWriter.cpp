#include "FileWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace velmora {
namespace {

// Large enough that system calls do not count, small enough to stay in the processor's cache until
// it is written. Written where it was filled: on a thread of its own, the same takes a third more
// processor time and hardly less of the clock's.
constexpr std::size_t kChunkBytes = std::size_t{256} * 1024;
// Writing into space that was reserved beforehand takes a third less time in the kernel. Small
// files do without; at most one step is reserved in vain, until the file is closed.
constexpr std::int64_t kReservedBytes = std::int64_t{16} * 1024 * 1024;
// Only for the muxer's small fields; packets go past it into the chunk.
constexpr int kFieldBufferBytes = 32 * 1024;
constexpr mode_t kMode = 0666;

int openForWriting(const std::string& path, bool& created) {
    // Non-blocking: without a reader, opening a pipe would wait for ever.
    constexpr int flags = O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    created = true;
    int descriptor = ::open(path.c_str(), flags | O_CREAT | O_EXCL, kMode);
    if (descriptor < 0 && errno == EEXIST) {
        created = false;
        descriptor = ::open(path.c_str(), flags | O_CREAT, kMode);
    }
    return descriptor;
}

} // namespace

FileWriter::~FileWriter() {
    close();
}

int FileWriter::open(const std::string& path) {
    path_ = path;
    file_ = FileDescriptor(openForWriting(path, created_));
    struct stat status {};
    if (!file_.isOpen() || fstat(file_.get(), &status) != 0) {
        return AVERROR(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        file_.close();
        return AVERROR(EINVAL);
    }
    chunk_.bytes.resize(kChunkBytes);
    return createIo();
}

int FileWriter::createIo() {
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(kFieldBufferBytes));
    if (buffer == nullptr) {
        return AVERROR(ENOMEM);
    }
    io_.reset(avio_alloc_context(buffer, kFieldBufferBytes, 1, this, nullptr, writePacket, seek));
    if (io_ == nullptr) {
        av_free(buffer);
        return AVERROR(ENOMEM);
    }
    io_->direct = 1;
    return 0;
}

int FileWriter::close() {
    if (!file_.isOpen()) {
        return error();
    }
    if (io_ != nullptr) {
        avio_flush(io_.get());
    }
    writeChunk();
    abandon();
    return error();
}

void FileWriter::abandon() {
    if (reservedEnd_ > size_ && ftruncate(file_.get(), size_) != 0) {
        fail(errno);
    }
    if (file_.isOpen() && file_.close() != 0) {
        fail(errno);
    }
    if (created_ && !touched_) {
        std::remove(path_.c_str());
        created_ = false;
    }
    io_.reset();
}

int FileWriter::writePacket(void* opaque, std::uint8_t* buffer, int size) {
    auto* self = static_cast<FileWriter*>(opaque);
    if (self->error() != 0) {
        return self->error();
    }
    self->append(buffer, static_cast<std::size_t>(size));
    return size;
}

std::int64_t FileWriter::seek(void* opaque, std::int64_t offset, int whence) {
    auto* self = static_cast<FileWriter*>(opaque);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return self->size_;
    case SEEK_SET:
        break;
    case SEEK_CUR:
        offset += self->position_;
        break;
    case SEEK_END:
        offset += self->size_;
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (offset < 0) {
        return AVERROR(EINVAL);
    }
    self->position_ = offset;
    return offset;
}

void FileWriter::append(const std::uint8_t* bytes, std::size_t size) {
    while (size > 0) {
        const auto used = static_cast<std::int64_t>(chunk_.used);
        // What is still held may be written again: a header whose length is filled in at its end.
        if (position_ < chunk_.offset || position_ > chunk_.offset + used) {
            writeChunk();
        }
        if (chunk_.used == 0) {
            chunk_.offset = position_;
        }
        // Chunks end at multiples of their size, whatever was written before.
        const auto start = static_cast<std::size_t>(position_ - chunk_.offset);
        const std::size_t capacity =
            kChunkBytes - static_cast<std::size_t>(chunk_.offset) % kChunkBytes;
        const std::size_t count = std::min(size, capacity - start);
        std::copy_n(bytes, count, chunk_.bytes.data() + start);
        chunk_.used = std::max(chunk_.used, start + count);
        position_ += static_cast<std::int64_t>(count);
        size_ = std::max(size_, position_);
        bytes += count;
        size -= count;
        if (start + count == capacity) {
            writeChunk();
        }
    }
}

void FileWriter::writeChunk() {
    if (chunk_.used > 0 && error() == 0) {
        touch();
        reserve(chunk_.offset + static_cast<std::int64_t>(chunk_.used));
        writeOut();
    }
    chunk_.used = 0; // also after a failure: there is room for what comes, which is dropped
}

void FileWriter::writeOut() {
    std::size_t written = 0;
    while (error() == 0 && written < chunk_.used) {
        const ssize_t count =
            pwrite(file_.get(), chunk_.bytes.data() + written, chunk_.used - written,
                   static_cast<off_t>(chunk_.offset + static_cast<std::int64_t>(written)));
        if (count > 0) {
            written += static_cast<std::size_t>(count);
        } else if (count == 0) {
            fail(ENOSPC);
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
}

void FileWriter::touch() {
    if (touched_) {
        return;
    }
    touched_ = true;
    // Not for a new file: after a needless truncation, some file systems write it all to the disk
    // before they close it.
    if (!created_ && ftruncate(file_.get(), 0) != 0) {
        fail(errno);
    }
}

void FileWriter::reserve(std::int64_t end) {
    if (reservedEnd_ >= 0 && end > std::max(reservedEnd_, kReservedBytes)) {
        const bool reserved = fallocate(file_.get(), FALLOC_FL_KEEP_SIZE, end, kReservedBytes) == 0;
        reservedEnd_ = reserved ? end + kReservedBytes : -1;
    }
}

void FileWriter::fail(int errorNumber) {
    if (error_ == 0) {
        error_ = AVERROR(errorNumber);
    }
}

} // namespace velmora
