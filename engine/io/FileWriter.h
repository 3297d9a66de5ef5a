#pragma once

#include "AvHandles.h"
#include "FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

/// The byte sink of one output for libavformat. Collects what the muxer writes into chunks and
/// writes them to the file.
///
/// A file that was there before keeps its content until the first chunk is to be written; a file
/// that was created and got no byte is removed again. The first failed write is kept and reported
/// by every later operation; nothing more is written after it. Disk space is reserved ahead of what
/// is written, and what is left of it given back. Belongs to one thread and has none of its own:
/// handing chunks over to one took a third more processor time of a copy and saved hardly any of
/// the clock's.
class FileWriter {
public:
    FileWriter() = default;
    ~FileWriter();
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;

    /// Regular files only. 0, or a negative libav error code.
    int open(const std::string& path);

    AVIOContext* io() const { return io_.get(); }

    /// Writes what is held, waits for it and closes the file. 0, or the code of the first failure
    /// since the file was opened.
    int close();

    /// Closes the file without writing what is held. Where nothing has been written, it is as if it
    /// had never been opened.
    void abandon();

    /// The first failure so far, or 0.
    int error() const { return error_; }

private:
    struct Chunk {
        std::vector<std::uint8_t> bytes;
        std::size_t used = 0;
        std::int64_t offset = 0; ///< of the first byte, in the file
    };

    static int writePacket(void* opaque, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* opaque, std::int64_t offset, int whence);

    int createIo();
    void append(const std::uint8_t* bytes, std::size_t size);
    void writeChunk();
    void writeOut();
    void touch();
    void reserve(std::int64_t end);
    void fail(int errorNumber);

    std::string path_;
    FileDescriptor file_;
    bool created_ = false; ///< by open(), so it may be removed again
    IoContextHandle io_;
    std::int64_t position_ = 0; ///< where the muxer writes next
    std::int64_t size_ = 0;     ///< of the file, once all is written
    Chunk chunk_;
    bool touched_ = false;         ///< whether anything has been written, or tried
    std::int64_t reservedEnd_ = 0; ///< -1: the file system reserves nothing
    int error_ = 0;
};

} // namespace velmora
