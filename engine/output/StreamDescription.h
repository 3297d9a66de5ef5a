#pragma once

#include "AvHandles.h"

namespace velmora {

/// Gives `output` the parameters of `source` as far as a copy of its packets needs them, with what
/// belongs to the stream: tags, side data such as the display matrix, aspect ratio, disposition.
/// 0 or a negative libav error code.
int copyStreamParameters(AVFormatContext& input, AVStream& source, const AVOutputFormat& format,
                         AVStream& output);

/// Gives `output` what belongs to the stream whatever its encoding: language and titles, the
/// disposition, and how its pictures are turned. 0 or a negative libav error code.
int copyStreamDescription(const AVStream& source, AVStream& output);

/// Likewise, of a stream whose pictures have been turned, or that is sound.
void copyStreamTags(const AVStream& source, AVStream& output);

/// Copies the tags that tell of the whole file, other than those of its container.
void copyFileTags(const AVFormatContext& input, AVDictionary** tags);

} // namespace velmora
