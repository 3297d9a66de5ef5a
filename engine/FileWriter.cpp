#include "FileWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace velmora {
namespace {

// Large enough that handing a chunk over costs nothing; there are two of them.
constexpr std::size_t kChunkBytes = std::size_t{512} * 1024;
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
    filling_.bytes.resize(kChunkBytes);
    writing_.bytes.resize(kChunkBytes);
    const int result = createIo();
    return result < 0 ? result : startThread();
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

int FileWriter::startThread() {
    try {
        thread_ = std::thread([this] { writeChunks(); });
    } catch (const std::system_error& failure) {
        return AVERROR(failure.code().value());
    }
    return 0;
}

int FileWriter::close() {
    if (!file_.isOpen()) {
        return error();
    }
    if (io_ != nullptr) {
        avio_flush(io_.get());
    }
    handOver();
    abandon();
    return error();
}

void FileWriter::abandon() {
    endThread();
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

void FileWriter::endThread() {
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
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
        const auto used = static_cast<std::int64_t>(filling_.used);
        // What is still held may be written again: a header whose length is filled in at its end.
        if (position_ < filling_.offset || position_ > filling_.offset + used) {
            handOver();
        }
        if (filling_.used == 0) {
            filling_.offset = position_;
        }
        // Chunks end at multiples of their size, whatever was written before.
        const auto start = static_cast<std::size_t>(position_ - filling_.offset);
        const std::size_t capacity =
            kChunkBytes - static_cast<std::size_t>(filling_.offset) % kChunkBytes;
        const std::size_t count = std::min(size, capacity - start);
        std::copy_n(bytes, count, filling_.bytes.data() + start);
        filling_.used = std::max(filling_.used, start + count);
        position_ += static_cast<std::int64_t>(count);
        size_ = std::max(size_, position_);
        bytes += count;
        size -= count;
        if (start + count == capacity) {
            handOver();
        }
    }
}

void FileWriter::handOver() {
    if (filling_.used == 0 || !thread_.joinable()) {
        return;
    }
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return !pending_; });
        std::swap(filling_, writing_);
        pending_ = true;
    }
    changed_.notify_all();
    filling_.used = 0;
}

void FileWriter::writeChunks() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return pending_ || ending_; });
        if (!pending_) {
            return;
        }
        lock.unlock();
        writeOut(writing_);
        lock.lock();
        pending_ = false;
        changed_.notify_all();
    }
}

void FileWriter::writeOut(const Chunk& chunk) {
    if (!touched_) {
        touched_ = true;
        // Not for a new file: after a needless truncation, some file systems write it all to the
        // disk before they close it.
        if (!created_ && ftruncate(file_.get(), 0) != 0) {
            fail(errno);
        }
    }
    reserve(chunk.offset + static_cast<std::int64_t>(chunk.used));
    std::size_t written = 0;
    while (error() == 0 && written < chunk.used) {
        const ssize_t count =
            pwrite(file_.get(), chunk.bytes.data() + written, chunk.used - written,
                   static_cast<off_t>(chunk.offset + static_cast<std::int64_t>(written)));
        if (count > 0) {
            written += static_cast<std::size_t>(count);
        } else if (count == 0) {
            fail(ENOSPC);
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
}

void FileWriter::reserve(std::int64_t end) {
    if (reservedEnd_ >= 0 && end > std::max(reservedEnd_, kReservedBytes)) {
        const bool reserved = fallocate(file_.get(), FALLOC_FL_KEEP_SIZE, end, kReservedBytes) == 0;
        reservedEnd_ = reserved ? end + kReservedBytes : -1;
    }
}

void FileWriter::fail(int errorNumber) {
    int none = 0;
    error_.compare_exchange_strong(none, AVERROR(errorNumber));
}

} // namespace velmora
