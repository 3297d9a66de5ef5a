#include "SeamCheck.h"

#include "Decoder.h"
#include "EngineLog.h"
#include "InputMedia.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace velmora {
namespace {

// Behind a seam: more pictures than any decoder still takes for its own.
constexpr std::size_t kBehindSeam = 32;
constexpr std::int64_t kBackSeconds = 3;

/// Decodes a file's pictures from some place on.
class StrictPictures {
public:
    explicit StrictPictures(const std::string& path) : input_(path, nullptr) {}

    bool open() {
        if (input_.open() < 0 || input_.readStreamInfo() < 0 || input_.videoStream() == nullptr ||
            decoder_.open(*input_.videoStream(), input_.path()) < 0) {
            return false;
        }
        decoder_.failOnErrors();
        return true;
    }
    InputMedia& input() { return input_; }
    const AVStream& stream() const { return *input_.videoStream(); }
    /// When the next picture is shown; nothing at the end, or after an error.
    std::optional<std::int64_t> next();
    bool hasFailed() const { return failed_; }

private:
    void decodeOne();

    InputMedia input_;
    Decoder decoder_;
    std::int64_t begin_ = AV_NOPTS_VALUE; ///< of the key frame with which decoding began
    bool failed_ = false;
};

std::optional<std::int64_t> StrictPictures::next() {
    for (;;) {
        if (const FrameHandle picture = decoder_.receive()) {
            if (picture->pts >= begin_) {
                return picture->pts;
            }
            continue;
        }
        if (decoder_.hasEnded() || failed_) {
            return std::nullopt;
        }
        decodeOne();
    }
}

/// What stands before the first key frame of a place, or is shown before it, belongs to another
/// one.
void StrictPictures::decodeOne() {
    const PacketHandle packet(av_packet_alloc());
    if (packet == nullptr || input_.read(*packet) < 0) {
        decoder_.sendEnd();
        return;
    }
    if (packet->stream_index != stream().index) {
        return;
    }
    if (begin_ == AV_NOPTS_VALUE && (packet->flags & AV_PKT_FLAG_KEY) != 0) {
        begin_ = packet->pts;
    }
    if (begin_ != AV_NOPTS_VALUE) {
        failed_ = !decoder_.send(*packet) && packet->pts >= begin_;
    }
}

/// Ticks of the file between a picture and where it should be.
bool isAt(std::int64_t time, std::int64_t first, AVRational timeBase, std::int64_t expected,
          AVRational expectedTimeBase) {
    const std::int64_t wanted = av_rescale_q(expected, expectedTimeBase, timeBase);
    return std::llabs(time - first - wanted) <= 1;
}

bool isStartSound(const std::string& path, const WrittenPictures& expected, std::int64_t& first) {
    StrictPictures pictures(path);
    if (!pictures.open()) {
        return false;
    }
    const std::size_t count = std::min(expected.head + kBehindSeam, expected.times.size());
    for (std::size_t i = 0; i < count; ++i) {
        const auto time = pictures.next();
        if (!time) {
            return false;
        }
        first = i == 0 ? *time : first;
        if (!isAt(*time, first, pictures.stream().time_base, expected.times[i],
                  expected.timeBase)) {
            return false;
        }
    }
    return !pictures.hasFailed();
}

/// Whether a place that is looked for may be behind the key frame before it.
bool landsAnywhere(const InputMedia& input) {
    return (input.container()->iformat->flags & AVFMT_TS_DISCONT) != 0;
}

/// From the last key frame before what was encoded for the end, to the end.
bool isEndSound(const std::string& path, const WrittenPictures& expected, std::int64_t first) {
    StrictPictures pictures(path);
    if (!pictures.open()) {
        return false;
    }
    const AVRational timeBase = pictures.stream().time_base;
    const std::size_t before = expected.times.size() - expected.tail;
    const std::int64_t from =
        first +
        av_rescale_q(expected.times[before > 0 ? before - 1 : 0], expected.timeBase, timeBase) -
        (landsAnywhere(pictures.input()) ? av_rescale_q(kBackSeconds, {1, 1}, timeBase) : 0);
    if (pictures.input().seekStream(pictures.stream().index, from) < 0) {
        return false;
    }
    std::optional<std::int64_t> time = pictures.next();
    const auto begins = std::ranges::find_if(expected.times, [&](std::int64_t wanted) {
        return time && isAt(*time, first, timeBase, wanted, expected.timeBase);
    });
    if (begins - expected.times.begin() > static_cast<std::ptrdiff_t>(before)) {
        return false;
    }
    for (auto wanted = begins; wanted != expected.times.end(); ++wanted) {
        if (!time || !isAt(*time, first, timeBase, *wanted, expected.timeBase)) {
            return false;
        }
        time = pictures.next();
    }
    return !time && !pictures.hasFailed();
}

} // namespace

bool hasSoundSeams(const std::string& path, const WrittenPictures& expected) {
    std::int64_t first = 0;
    return isStartSound(path, expected, first) && isEndSound(path, expected, first);
}

} // namespace velmora
