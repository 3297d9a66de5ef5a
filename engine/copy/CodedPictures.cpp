#include "CodedPictures.h"

#include "TimeBases.h"

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

std::span<const std::uint8_t> bytesOf(const AVPacket& packet) {
    return {packet.data, static_cast<std::size_t>(std::max(packet.size, 0))};
}

bool isKey(const AVPacket& packet) {
    return (packet.flags & AV_PKT_FLAG_KEY) != 0;
}

bool changesHeaders(const AVPacket& packet) {
    return av_packet_get_side_data(&packet, AV_PKT_DATA_NEW_EXTRADATA, nullptr) != nullptr ||
           av_packet_get_side_data(&packet, AV_PKT_DATA_PARAM_CHANGE, nullptr) != nullptr;
}

/// Of one unit of H.264.
std::string troubleWithUnit(NalUnit unit, const H264Sets& sets) {
    switch (typeOf(unit)) {
    case H264Unit::SequenceSet:
    case H264Unit::PictureSet:
        return sets.holds(unit) ? "" : "its decoder settings change on the way.";
    case H264Unit::Slice:
    case H264Unit::IdrSlice:
        return isField(unit, sets.sequences().front()) ? "its fields are coded one by one." : "";
    case H264Unit::DataPartitionA:
    case H264Unit::Prefix:
    case H264Unit::SubsetSequenceSet:
    case H264Unit::AuxiliarySlice:
    case H264Unit::ExtensionSlice:
        return "it has layers or parts that copies cannot keep.";
    default:
        return "";
    }
}

std::string troubleWithH264(const AVPacket& packet, const H264Sets& sets) {
    const auto units = unitsOf(bytesOf(packet), sets.lengthSize());
    if (!units || units->empty()) {
        return "it is damaged.";
    }
    for (const NalUnit unit : *units) {
        if (std::string trouble = troubleWithUnit(unit, sets); !trouble.empty()) {
            return trouble;
        }
    }
    return {};
}

} // namespace

int CodedPictures::open() {
    const int result = pictures_.open();
    if (result >= 0 && isH264()) {
        const AVCodecParameters& parameters = *stream().codecpar;
        sets_ = H264Sets::parse(
            {parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)});
    }
    return result;
}

int CodedPictures::goTo(std::int64_t time) {
    first_.reset();
    if (goToKeyFrame(time)) {
        return 0;
    }
    first_.reset();
    return pictures_.rewind();
}

/// Most containers find the right place at once, or the one before it. One that does not is asked
/// for places further and further back.
bool CodedPictures::goToKeyFrame(std::int64_t time) {
    constexpr std::int64_t kFarthest = INT64_C(1) << 40; // ticks
    const AVRational timeBase = stream().time_base;
    const std::int64_t begin = av_rescale_q(input().startUs(), kMicrosecond, timeBase);
    std::int64_t target = time;
    for (std::int64_t back = 1; target > begin && back < kFarthest; back *= 4) {
        if (pictures_.seek(target) < 0) {
            return false;
        }
        do {
            first_ = next();
        } while (first_ != nullptr && !isKey(*first_));
        if (first_ == nullptr || first_->pts == AV_NOPTS_VALUE) {
            return false;
        }
        if (first_->pts <= time) {
            return true;
        }
        target = std::min(target, first_->pts) - back;
    }
    return false;
}

PacketHandle CodedPictures::next() {
    if (first_ != nullptr) {
        return std::move(first_);
    }
    PacketHandle packet = pictures_.readPacket();
    if (packet != nullptr && isTimedByOrder()) {
        packet->pts = packet->dts;
    }
    return packet;
}

bool CodedPictures::isEntry(const AVPacket& packet) const {
    if (!isKey(packet) || !isH264()) {
        return isKey(packet);
    }
    const auto units = sets_ ? unitsOf(bytesOf(packet), sets_->lengthSize()) : std::nullopt;
    return units && std::ranges::any_of(
                        *units, [](NalUnit unit) { return typeOf(unit) == H264Unit::IdrSlice; });
}

std::string CodedPictures::troubleWith(const AVPacket& packet) const {
    if (packet.pts == AV_NOPTS_VALUE) {
        return "its pictures have no times of their own.";
    }
    if (changesHeaders(packet)) {
        return "its decoder settings change on the way.";
    }
    return isH264() && sets_ ? troubleWithH264(packet, *sets_) : std::string();
}

} // namespace velmora
