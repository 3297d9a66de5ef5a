#pragma once

extern "C" {
#include <libavcodec/codec_id.h>
#include <libavutil/rational.h>
}

namespace velmora {

/// Pictures per second, divided as integers; 0 when the denominator is 0.
inline int wholeFrameRate(AVRational rate) {
    return rate.den != 0 ? rate.num / rate.den : 0;
}

/// Rates above 1000 pictures per second come from containers that say 30000 and mean 29.97: their
/// denominator becomes 1001.
inline AVRational correctedFrameRate(AVRational rate) {
    return wholeFrameRate(rate) > 1000 ? AVRational{rate.num, 1001} : rate;
}

/// The rate of an output for which `frameRate` pictures per second are asked; 0.0 stands for the
/// source's, divided as integers.
inline double encodedFrameRate(double frameRate, AVRational sourceRate) {
    return frameRate == 0.0 ? wholeFrameRate(sourceRate) : frameRate;
}

/// The duration of a picture, in seconds, in such an output. Rates that no profile offers give the
/// source's own duration.
AVRational encodedFrameDuration(double frameRate, AVRational sourceRate, AVCodecID codec);

} // namespace velmora
