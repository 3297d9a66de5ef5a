#pragma once

#include "PictureReader.h"
#include "SeamEncoder.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// Decodes those pictures of a source that an exact copy encodes again. The source is opened when
/// the first of them is wanted. Belongs to one thread.
class SeamSource {
public:
    /// Ends early once `stop` is raised; null: never.
    SeamSource(std::string path, const StopFlag* stop) : path_(std::move(path)), stop_(stop) {}

    /// Takes a packet, and when its picture is shown. 0 or a negative libav error code.
    using Write = std::function<int(AVPacket& packet, std::int64_t time)>;

    /// Encodes the pictures that are shown at these times, in ticks of the source; there is one at
    /// least. 0, AVERROR_INVALIDDATA when they cannot all be decoded, or another negative libav
    /// error code.
    int encode(const std::vector<std::int64_t>& times, SeamEncoder& encoder, const Write& write);

private:
    int open();
    int encodeAll(const std::vector<std::int64_t>& times, SeamEncoder& encoder, const Write& write);

    std::string path_;
    const StopFlag* stop_;
    std::optional<PictureReader> pictures_;
};

} // namespace velmora
