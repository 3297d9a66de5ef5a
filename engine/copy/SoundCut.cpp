#include "SoundCut.h"

#include <algorithm>

namespace velmora {

/// Where packets are whole and none may be before the beginning, the nearest one is the first.
bool SoundCut::isHeard(std::int64_t time, std::int64_t duration) const {
    if (rule_.splits || rule_.abilities.startsBefore) {
        return time + duration > 0;
    }
    return rule_.abilities.shiftsAll ? time >= 0 : time + duration / 2 >= 0;
}

bool SoundCut::isBehind(std::int64_t time, std::int64_t duration) const {
    if (rule_.end == kToTheEnd) {
        return false;
    }
    const bool isCut = rule_.splits || rule_.abilities.cutsEnd;
    return isCut ? time >= rule_.end : time + duration / 2 >= rule_.end;
}

SoundCut::Part SoundCut::partOf(const Held& packet) const {
    Part part{.number = packet.number, .time = packet.time, .duration = packet.duration};
    if (rule_.splits && part.time < 0) {
        part.skipped = std::min(-part.time, part.duration);
        part.time += part.skipped;
        part.duration -= part.skipped;
    }
    const bool isCut = (rule_.splits || rule_.abilities.cutsEnd) && rule_.end != kToTheEnd;
    if (isCut && rule_.end - part.time < part.duration) {
        part.left = part.duration - (rule_.end - part.time);
        part.duration -= part.left;
    }
    return part;
}

std::vector<SoundCut::Part> SoundCut::add(std::int64_t time, std::int64_t duration) {
    const Held packet{added_++, time, duration};
    ended_ = ended_ || isBehind(time, duration);
    if (ended_) {
        return {};
    }
    if (!isHeard(time, duration)) {
        before_.push_back(packet);
        const auto needed = rule_.abilities.startsBefore && !rule_.splits ? rule_.preRoll : 0;
        while (before_.size() > static_cast<std::size_t>(needed)) {
            before_.pop_front();
        }
        return {};
    }
    std::vector<Part> parts;
    for (const Held& held : before_) {
        parts.push_back(partOf(held));
    }
    before_.clear();
    parts.push_back(partOf(packet));
    return parts;
}

} // namespace velmora
