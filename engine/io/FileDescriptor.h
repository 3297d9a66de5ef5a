#pragma once

#include <utility>

namespace velmora {

/// Owns one open file descriptor; -1 is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }

    int get() const { return descriptor_; }
    bool isOpen() const { return descriptor_ >= 0; }

    /// Gives the result of close(2): some file systems report a failed write only here.
    int close();

private:
    int descriptor_ = -1;
};

} // namespace velmora
