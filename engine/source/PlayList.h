#pragma once

#include "FileReader.h"

namespace velmora {

/// Whether libavformat takes the file for an HLS play list.
bool isPlayList(const FileReader& file);

/// Whether the file is a play list that names parts without an end, as one for a broadcast that
/// goes on does. Its reader would wait for more of them, for as long as the list says. So is one
/// that is too large to be looked at.
bool isEndlessPlayList(const FileReader& file);

} // namespace velmora
