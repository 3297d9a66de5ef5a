#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>

namespace velmora::test {

/// While one lives, all reads and writes of the engine's files go through it. One at a time; the
/// test program is linked so that the engine's calls of read(2) and pwrite(2) arrive here.
class FaultyIo {
public:
    /// Asked before each call with the bytes wanted and the bytes transferred by all calls before.
    /// The answer is how many bytes to transfer, or a negative errno. May be asked on any thread,
    /// one at a time.
    using Decision = std::function<ssize_t(std::size_t wanted, std::int64_t before)>;

    /// An empty decision lets everything pass.
    FaultyIo(Decision onRead, Decision onWrite);
    ~FaultyIo();
    FaultyIo(const FaultyIo&) = delete;
    FaultyIo& operator=(const FaultyIo&) = delete;

    std::int64_t bytesRead() const { return reading_.transferred; }
    std::int64_t bytesWritten() const { return writing_.transferred; }

    /// For the calls that arrive.
    static ssize_t read(int descriptor, void* buffer, std::size_t size);
    static ssize_t write(int descriptor, const void* buffer, std::size_t size, off_t offset);

private:
    struct Direction {
        ssize_t decide(std::size_t wanted);
        ssize_t count(ssize_t transferredNow);

        Decision decision;
        std::int64_t transferred = 0;
        std::mutex mutex;
    };

    Direction reading_;
    Direction writing_;
};

/// Every other call is interrupted by a signal, and no call transfers more than `bytes`.
FaultyIo::Decision inPiecesOf(std::size_t bytes);
/// Fails with `errorNumber` once `bytes` have been transferred.
FaultyIo::Decision failingAfter(std::int64_t bytes, int errorNumber);

} // namespace velmora::test
