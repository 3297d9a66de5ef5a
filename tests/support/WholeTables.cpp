#include "WholeTables.h"

#include <cstdlib>

namespace velmora::test {

bool wholeTables() {
    return std::getenv("VELMORA_WHOLE_TABLES") != nullptr;
}

} // namespace velmora::test
