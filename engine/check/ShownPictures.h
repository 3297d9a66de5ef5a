#pragma once

namespace velmora {

class InputMedia;

/// Whether the very first packet is shown: a player that finds one it cannot decode shows nothing,
/// or grey.
bool showsFirstPicture(InputMedia& input);
/// Whether the last picture is shown. In the rare file in which that cannot be found the first one
/// has told enough.
bool showsLastPicture(InputMedia& input);

} // namespace velmora
