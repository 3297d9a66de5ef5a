#include "WholeTables.h"

#include <cstdlib>

namespace velmora::test {

bool wholeTables() {
    return std::getenv("VELMORA_WHOLE_TABLES") !=
           nullptr; // NOLINT(concurrency-mt-unsafe): never set
}

} // namespace velmora::test
