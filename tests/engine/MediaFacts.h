#pragma once

#include "InputMedia.h"

#include <string>
#include <vector>

namespace velmora::test {

/// What is known of a file, one fact a line.
using Facts = std::vector<std::string>;

/// The file as the media libraries read it without help, its streams known; null: they cannot.
InputContextHandle openPlainly(const std::string& path);

/// In what an input whose streams are known differs from the same file read plainly.
Facts streamInfoDifferences(const InputMedia& media, const AVFormatContext& plain);

/// The same of the packets that each of both gives next.
Facts packetDifferences(InputMedia& media, AVFormatContext& plain);

} // namespace velmora::test
