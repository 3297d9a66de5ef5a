#include "PacketClock.h"

extern "C" {
#include <libavutil/mathematics.h>
}

namespace velmora {

PacketClock::PacketClock(AVRational timeBase, AVRational unit) {
    if (timeBase.num <= 0 || timeBase.den <= 0 || unit.num <= 0 || unit.den <= 0) {
        return;
    }
    timeBase_ = timeBase;
    ticksPerUnitNum_ = static_cast<std::int64_t>(timeBase.den) * unit.num;
    ticksPerUnitDen_ = static_cast<std::int64_t>(timeBase.num) * unit.den;
}

std::int64_t PacketClock::ticksAt(std::int64_t units) const {
    return offset_ + av_rescale(units, ticksPerUnitNum_, ticksPerUnitDen_);
}

double PacketClock::secondsAt(std::int64_t units) const {
    return static_cast<double>(ticksAt(units)) * av_q2d(timeBase_);
}

} // namespace velmora
