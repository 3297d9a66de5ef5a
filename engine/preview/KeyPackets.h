#pragma once

#include "AvHandles.h"

namespace velmora {

class InputMedia;

/// The next packet of the video that is used; null at the end.
PacketHandle readVideoPacket(InputMedia& input);

/// The next one that is a key packet; null when none comes soon.
PacketHandle readKeyPacket(InputMedia& input);

} // namespace velmora
