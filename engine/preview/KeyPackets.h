#pragma once

#include "AvHandles.h"

namespace velmora {

class InputMedia;

/// The video's next key packet; null when none comes soon.
PacketHandle readKeyPacket(InputMedia& input);

} // namespace velmora
