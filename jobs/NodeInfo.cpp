#include "NodeInfo.h"

namespace velmora {

QString stateText(std::int32_t state) {
    switch (state) {
    case Ready:
        return "Ready";
    case Completed:
        return "Completed";
    case Failure:
        return "Failure";
    default:
        return {};
    }
}

} // namespace velmora
