#include "ExpectedSize.h"

#include "InputMedia.h"

#include <algorithm>
#include <optional>

namespace velmora {
namespace {

constexpr double kBitsPerByte = 8.0;

struct Extent {
    double bytes;
    double seconds;
};

std::optional<Extent> extentOf(const std::string& path) {
    InputMedia media(path, nullptr);
    if (media.open() < 0 || media.readStreamInfo() < 0 || media.container()->duration <= 0) {
        return std::nullopt;
    }
    return Extent{static_cast<double>(avio_size(media.container()->pb)),
                  static_cast<double>(media.container()->duration) / AV_TIME_BASE};
}

/// Seconds of the source that the output takes.
double stretchOf(const Job& job, std::size_t index, double seconds) {
    return job.joins ? seconds
                     : std::clamp(seconds - job.startSeconds[index], 0.0, job.spanSeconds[index]);
}

} // namespace

std::int64_t expectedBytes(const Job& job) {
    const double bytesPerSecond =
        static_cast<double>(job.video.bitRate + job.audio.bitRate) / kBitsPerByte;
    double bytes = 0;
    for (std::size_t i = 0; i < job.inputPaths.size(); ++i) {
        const auto extent = extentOf(job.inputPaths[i]);
        if (!extent) {
            return 0;
        }
        const double seconds = stretchOf(job, i, extent->seconds);
        bytes +=
            job.reencodes ? seconds * bytesPerSecond : seconds / extent->seconds * extent->bytes;
    }
    return truncatedTo64Bits(bytes);
}

} // namespace velmora
