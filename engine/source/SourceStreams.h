#pragma once

#include "AvHandles.h"

#include <span>

namespace velmora {

inline std::span<AVStream* const> streamsOf(const AVFormatContext& container) {
    return {container.streams, container.nb_streams};
}

/// A stream of pictures that follow each other in time, other than an attached picture.
inline bool isVideoStream(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
           (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

} // namespace velmora
