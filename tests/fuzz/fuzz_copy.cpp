// Any bytes as a media file: a cut and a join that copy. The last byte chooses the output's type.

#include "MediaJob.h"
#include "MemoryFile.h"

#include <array>
#include <string>

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::array<std::string, 8> extensions{"mp4", "mov", "mkv", "avi",
                                                       "ts",  "flv", "wmv", "mpg"};
    if (size == 0) {
        return 0;
    }
    const velmora::fuzz::MemoryFile file(data, size);
    velmora::fuzz::cutAndJoin(file.path(), extensions[data[size - 1] % extensions.size()], false);
    return 0;
}
