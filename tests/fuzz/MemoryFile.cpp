#include "MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace velmora::fuzz {

MemoryFile::MemoryFile(const std::uint8_t* bytes, std::size_t size)
    : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    for (std::size_t written = 0; written < size;) {
        const ssize_t count = write(descriptor_, bytes + written, size - written);
        if (count <= 0) {
            std::abort();
        }
        written += static_cast<std::size_t>(count);
    }
}

MemoryFile::~MemoryFile() {
    close(descriptor_);
}

std::string MemoryFile::path() const {
    return "/proc/self/fd/" + std::to_string(descriptor_);
}

} // namespace velmora::fuzz
