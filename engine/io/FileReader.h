#pragma once

#include "AvHandles.h"
#include "FileDescriptor.h"
#include "FileIdentity.h"
#include "StopFlag.h"

#include <string>

namespace velmora {

/// The byte source of one input for libavformat. Reads regular files only: a pipe would block the
/// opening thread where nobody can stop it. The path is never read as an address, so names with
/// ":" or "%" are plain names.
class FileReader {
public:
    /// Reads fail with AVERROR_EXIT once `stop` is raised; null: never.
    explicit FileReader(const StopFlag* stop) : stop_(stop) {}
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    ~FileReader() = default;

    /// 0, or a negative libav error code.
    int open(const std::string& path);

    AVIOContext* io() const { return io_.get(); }
    /// The first bytes of the file, at most as many as asked for; what `io` reads next stays.
    std::string beginning(std::size_t bytes) const;
    /// As the file was when it was opened.
    const FileIdentity& identity() const { return identity_; }

private:
    static int readPacket(void* opaque, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* opaque, std::int64_t offset, int whence);

    const StopFlag* stop_;
    FileDescriptor file_;
    FileIdentity identity_;
    IoContextHandle io_;
};

} // namespace velmora
