#include "TestFiles.h"

#include "FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <system_error>
#include <thread>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

std::size_t entriesOf(const char* folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

[[noreturn]] void fail(const fs::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

void writeAll(const fs::path& path, const void* bytes, std::size_t size) {
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    const FileDescriptor file(open(path.c_str(), flags, 0666));
    // One call writes up to 2 GiB of a regular file.
    if (!file.isOpen() || write(file.get(), bytes, size) != static_cast<ssize_t>(size)) {
        fail(path);
    }
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "velmora-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        fail(pattern);
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

Bytes readFile(const fs::path& path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    Bytes content(file.isOpen() ? fs::file_size(path) : 0);
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = read(file.get(), &content[done], content.size() - done);
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    if (!file.isOpen() || done < content.size()) {
        fail(path);
    }
    return content;
}

void writeFile(const fs::path& path, const Bytes& content) {
    writeAll(path, content.data(), content.size());
}

void writeFile(const fs::path& path, std::string_view content) {
    writeAll(path, content.data(), content.size());
}

std::size_t openDescriptors() {
    return entriesOf("/proc/self/fd");
}

std::size_t threads() {
    // With the first thread, the thread sanitizer starts one of its own.
    static const bool sanitizersIsThere = (std::thread([] {}).join(), true);
    static_cast<void>(sanitizersIsThere);
    return entriesOf("/proc/self/task");
}

// A thread that has been joined stays in the list for an instant.
std::size_t threadsOnceEnded(std::size_t expected) {
    constexpr int kMostTries = 100'000;
    for (int i = 0; i < kMostTries && threads() > expected; ++i) {
        std::this_thread::yield();
    }
    return threads();
}

} // namespace velmora::test
