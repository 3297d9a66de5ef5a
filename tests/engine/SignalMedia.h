#pragma once

#include <string>

namespace velmora::test {

/// The path of a file of 25 pictures a second that begins with a flash and a beep, by what is
/// special about it: "even" (nothing: two seconds of pictures and of sound), "ntsc", "fast"
/// (rates), "shortSound", "longSound" (a second less of sound, of pictures), "mute", "bFrames",
/// "blocks" (half a second of each in turn), "mpeg4" (in avi). Shared by all tests: never write to
/// it.
std::string signalOf(const std::string& name);

} // namespace velmora::test
