#pragma once

#include "AvHandles.h"

#include <string>

namespace velmora {

/// Whether every picture of the codec stands for itself.
bool isIntraOnly(AVCodecID codec);

/// Whether pictures can be encoded such that a decoder takes them and the stream's own for one
/// stream.
bool canEncodeLike(const AVStream& stream);

/// Why the streams cannot be copied exactly into a file of this format, as a sentence; empty when
/// they can, if nothing in them speaks against it. `sound` may be null.
std::string refusalOf(const AVStream& pictures, const AVStream* sound,
                      const AVOutputFormat& format);

/// What the container can do at the edges of sound that is copied.
struct SoundAbilities {
    bool startsBefore = false; ///< packets before the beginning are decoded, but not heard
    bool shiftsAll = false;    ///< a packet before the beginning would move the pictures, too
    bool cutsEnd = false;      ///< what is behind the end is not heard
};
SoundAbilities soundAbilities(const AVOutputFormat& format);

/// How many packets before the first one that is heard its decoder needs.
int soundPreRoll(AVCodecID codec);

} // namespace velmora
