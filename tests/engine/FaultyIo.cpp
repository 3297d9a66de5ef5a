#include "FaultyIo.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <utility>

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
ssize_t __real_read(int descriptor, void* buffer, std::size_t size);
ssize_t __real_pwrite(int descriptor, const void* buffer, std::size_t size, off_t offset);

ssize_t __wrap_read(int descriptor, void* buffer, std::size_t size) {
    return velmora::test::FaultyIo::read(descriptor, buffer, size);
}

ssize_t __wrap_pwrite(int descriptor, const void* buffer, std::size_t size, off_t offset) {
    return velmora::test::FaultyIo::write(descriptor, buffer, size, offset);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace velmora::test {
namespace {

std::atomic<FaultyIo*> current{nullptr};

} // namespace

FaultyIo::FaultyIo(Decision onRead, Decision onWrite) {
    reading_.decision = std::move(onRead);
    writing_.decision = std::move(onWrite);
    current = this;
}

FaultyIo::~FaultyIo() {
    current = nullptr;
}

ssize_t FaultyIo::Direction::decide(std::size_t wanted) {
    const std::scoped_lock lock(mutex);
    if (!decision) {
        return static_cast<ssize_t>(wanted);
    }
    return std::min(decision(wanted, transferred), static_cast<ssize_t>(wanted));
}

ssize_t FaultyIo::Direction::count(ssize_t transferredNow) {
    const std::scoped_lock lock(mutex);
    transferred += std::max<ssize_t>(transferredNow, 0);
    return transferredNow;
}

ssize_t FaultyIo::read(int descriptor, void* buffer, std::size_t size) {
    FaultyIo* io = current;
    if (io == nullptr) {
        return __real_read(descriptor, buffer, size);
    }
    const ssize_t allowed = io->reading_.decide(size);
    if (allowed < 0) {
        errno = static_cast<int>(-allowed);
        return -1;
    }
    return io->reading_.count(__real_read(descriptor, buffer, static_cast<std::size_t>(allowed)));
}

ssize_t FaultyIo::write(int descriptor, const void* buffer, std::size_t size, off_t offset) {
    FaultyIo* io = current;
    if (io == nullptr) {
        return __real_pwrite(descriptor, buffer, size, offset);
    }
    const ssize_t allowed = io->writing_.decide(size);
    if (allowed < 0) {
        errno = static_cast<int>(-allowed);
        return -1;
    }
    return io->writing_.count(
        __real_pwrite(descriptor, buffer, static_cast<std::size_t>(allowed), offset));
}

FaultyIo::Decision inPiecesOf(std::size_t bytes) {
    return [bytes, calls = std::make_shared<int>(0)](std::size_t, std::int64_t) -> ssize_t {
        return ++*calls % 2 == 0 ? -EINTR : static_cast<ssize_t>(bytes);
    };
}

FaultyIo::Decision failingAfter(std::int64_t bytes, int errorNumber) {
    return [bytes, errorNumber](std::size_t wanted, std::int64_t before) -> ssize_t {
        const std::int64_t room = bytes - before;
        return room > 0 ? std::min<ssize_t>(room, static_cast<ssize_t>(wanted)) : -errorNumber;
    };
}

} // namespace velmora::test
