#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora::fuzz {

/// A regular file without a folder, with the given content; gone with the object. Ends the process
/// when the system has no room for it.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t size);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// Opens the file as any path does.
    std::string path() const;

private:
    int descriptor_;
};

} // namespace velmora::fuzz
