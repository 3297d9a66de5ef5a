#include "FrameRate.h"

#include <algorithm>
#include <array>

namespace velmora {
namespace {

struct RateEntry {
    double frameRate;
    AVRational duration;
};

// The whole rates over 1001 are meant so: players and profiles have counted on them.
constexpr std::array kOfferedRates = {
    RateEntry{10.0, {1, 10}},         RateEntry{12.0, {1001, 12012}},
    RateEntry{14.985, {1001, 15000}}, RateEntry{15.0, {1001, 15015}},
    RateEntry{18.0, {1, 18}},         RateEntry{20.0, {1001, 20020}},
    RateEntry{23.975, {1001, 24000}}, RateEntry{24.0, {1001, 24024}},
    RateEntry{25.0, {1001, 25025}},   RateEntry{29.97, {1001, 30000}},
    RateEntry{30.0, {1001, 30030}},   RateEntry{50.0, {1, 50}},
    RateEntry{60.0, {1, 60}},
};

bool isEqual(AVRational a, AVRational b) {
    return a.num == b.num && a.den == b.den;
}

/// Two rates that MPEG-4 cannot express are replaced by their neighbours.
AVRational sourceFrameDuration(AVRational sourceRate, AVCodecID codec) {
    if (codec == AV_CODEC_ID_MPEG4 && isEqual(sourceRate, {785645, 32768})) {
        return {1001, 24000};
    }
    if (codec == AV_CODEC_ID_MPEG4 && isEqual(sourceRate, {982057, 32768})) {
        return {100, 2997};
    }
    return av_inv_q(sourceRate);
}

} // namespace

AVRational encodedFrameDuration(double frameRate, AVRational sourceRate, AVCodecID codec) {
    const auto* const offered = std::ranges::find(
        kOfferedRates, encodedFrameRate(frameRate, sourceRate), &RateEntry::frameRate);
    if (offered != kOfferedRates.end()) {
        return offered->duration;
    }
    return frameRate == 0.0 ? sourceFrameDuration(sourceRate, codec) : av_inv_q(sourceRate);
}

} // namespace velmora
