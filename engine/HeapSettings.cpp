#include "HeapSettings.h"

#include <malloc.h>

namespace velmora {

// Opening a file takes and frees a few MiB, most of it in decoders that hardly live. By default all
// of it goes back to the system each time, and clearing the pages anew takes longer than the work:
// 200 probes take 0.16 s instead of 0.55 s.
void keepFreedMemory() {
#ifdef __GLIBC__
    constexpr int keptBytes = 8 * 1024 * 1024;
    // Larger blocks stay mappings of their own: an index that grows is moved without a copy.
    constexpr int mappedBytes = 1024 * 1024;
    mallopt(M_TRIM_THRESHOLD, keptBytes);
    mallopt(M_MMAP_THRESHOLD, mappedBytes);
#endif
}

} // namespace velmora
