#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <functional>

namespace velmora::test {

/// While one lives, it may let calls fail that the engine makes into the media libraries. One at a
/// time; the test program is linked so that these calls arrive here.
class FaultyMedia {
public:
    /// Each is asked before its call and answers whether that fails; an empty one lets everything
    /// pass. May be asked on any thread.
    struct Decisions {
        std::function<bool(const AVFormatContext&)> begin = {}; ///< the output, with its header
        std::function<bool(const AVPacket&)> write = {};        ///< into the output
        /// Null: the drain.
        std::function<bool(const AVCodecContext&, const AVFrame*)> encode = {};
        std::function<bool(const AVFrame&)> allocate = {}; ///< the memory of a frame
        std::function<bool(int samples)> queue = {};       ///< of sound
        // These decide nothing.
        std::function<void()> open = {};     ///< an input is to be opened
        std::function<void()> resample = {}; ///< a resampler is to be set up
        /// Changes what has been found out about the streams of an input.
        std::function<void(AVFormatContext&)> describe = {};
    };

    explicit FaultyMedia(Decisions decisions);
    ~FaultyMedia();
    FaultyMedia(const FaultyMedia&) = delete;
    FaultyMedia& operator=(const FaultyMedia&) = delete;

    /// For the calls that arrive; null when none lives.
    static const Decisions* current();

private:
    const Decisions decisions_;
};

} // namespace velmora::test
