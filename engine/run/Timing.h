#pragma once

namespace velmora {

/// How re-encoded packets get their time stamps.
enum class Timing {
    Cut,  ///< pictures are numbered; sound is stamped by its samples
    Join, ///< sound is numbered; pictures catch up with it where it is ahead
};

} // namespace velmora
