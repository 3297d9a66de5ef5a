// Any bytes as a media file: a cut and a join that encode anew.

#include "MediaJob.h"
#include "MemoryFile.h"

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const velmora::fuzz::MemoryFile file(data, size);
    velmora::fuzz::cutAndJoin(file.path(), "mkv", true);
    return 0;
}
