#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>

namespace velmora {

/// How a source counts time, and how an output will.
struct TimingRule {
    AVRational sourceTimeBase{1, 1};
    AVRational sourceRate{0, 1}; ///< pictures per second; 0: none is known
    AVRational outputTimeBase{1, 1};
};

/// Times of an output from those of a source. A container with coarse ticks rounds the times of
/// pictures at a constant rate; they get back the times that they were rounded from, and so a
/// constant rate stays one. Every other time stays what it is.
class PictureTiming {
public:
    explicit PictureTiming(const TimingRule& rule);

    /// `ticks` since the first picture, in the source's time base; the result in the output's.
    std::int64_t at(std::int64_t ticks) const;

private:
    TimingRule rule_;
    bool hasGrid_;
};

/// The rate at which the pictures of a stream come, as far as the container tells; 0/1 when that
/// cannot be.
AVRational usualRate(AVRational realRate, AVRational meanRate);

/// A time base in which both times of the source and those of the rate are whole ticks, if such a
/// one has at most `most` ticks in a second; else one in which those of the rate are. It has at
/// least `least` ticks in a second, if it can.
AVRational commonTimeBase(AVRational sourceTimeBase, AVRational rate, int least, int most);

} // namespace velmora
