#include "PictureTiming.h"

#include "FrameRate.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace velmora {
namespace {

constexpr int kMostRate = 300; // pictures per second; what is above is a time base

bool isRate(AVRational rate) {
    return rate.num > 0 && rate.den > 0 && av_cmp_q(rate, {kMostRate, 1}) <= 0;
}

/// The usual one that is meant, where the mean over a file is near one; else one of few digits.
AVRational nominal(AVRational mean) {
    // Ends with 0/0, as the library wants it.
    constexpr std::array<AVRational, 13> kUsual{{{15, 1},
                                                 {24'000, 1001},
                                                 {24, 1},
                                                 {25, 1},
                                                 {30'000, 1001},
                                                 {30, 1},
                                                 {48, 1},
                                                 {50, 1},
                                                 {60'000, 1001},
                                                 {60, 1},
                                                 {120, 1},
                                                 {240, 1},
                                                 {0, 0}}};
    constexpr double kNear = 0.01;
    constexpr int kFewDigits = 1001;
    const AVRational nearest =
        kUsual.at(static_cast<std::size_t>(av_find_nearest_q_idx(mean, kUsual.data())));
    if (std::abs(av_q2d(nearest) / av_q2d(mean) - 1.0) <= kNear) {
        return nearest;
    }
    AVRational few{};
    av_reduce(&few.num, &few.den, mean.num, mean.den, kFewDigits);
    return few;
}

} // namespace

PictureTiming::PictureTiming(const TimingRule& rule) : rule_(rule), hasGrid_(false) {
    constexpr int kTicksBetween = 4; // with fewer, every time would be on the grid
    hasGrid_ = isRate(rule.sourceRate) &&
               av_rescale_q(1, av_inv_q(rule.sourceRate), rule.sourceTimeBase) >= kTicksBetween;
}

std::int64_t PictureTiming::at(std::int64_t ticks) const {
    if (hasGrid_) {
        const AVRational picture = av_inv_q(rule_.sourceRate);
        const std::int64_t number = av_rescale_q(ticks, rule_.sourceTimeBase, picture);
        const std::int64_t rounded = av_rescale_q(number, picture, rule_.sourceTimeBase);
        if (std::llabs(rounded - ticks) <= 1) {
            return av_rescale_q(number, picture, rule_.outputTimeBase);
        }
    }
    return av_rescale_q(ticks, rule_.sourceTimeBase, rule_.outputTimeBase);
}

AVRational usualRate(AVRational realRate, AVRational meanRate) {
    const AVRational corrected = correctedFrameRate(realRate);
    if (isRate(realRate) && isRate(corrected)) {
        return corrected;
    }
    return isRate(meanRate) ? nominal(meanRate) : AVRational{0, 1};
}

AVRational commonTimeBase(AVRational sourceTimeBase, AVRational rate, int least, int most) {
    const std::int64_t ofSource = sourceTimeBase.den;
    const std::int64_t ofRate = std::clamp(rate.num, 1, most);
    const std::int64_t both = std::lcm(ofSource, ofRate);
    const std::int64_t common = both <= most ? both : ofRate;
    const std::int64_t wanted = both <= most ? std::min(least, most) : most;
    const std::int64_t multiple = common < wanted ? wanted / common : 1;
    return {1, static_cast<int>(multiple * common)};
}

} // namespace velmora
