#include "H264Packets.h"

#include <algorithm>
#include <cstring>

namespace velmora {
namespace {

constexpr NalLengthSize kLengthSize = 4;

bool tellsSettings(NalUnit unit) {
    constexpr std::uint8_t kUnregisteredData = 5;
    return typeOf(unit) == H264Unit::Sei && unit.size() > 1 && unit[1] == kUnregisteredData;
}

bool isKept(NalUnit unit, H264Kept kept) {
    switch (typeOf(unit)) {
    case H264Unit::SequenceSet:
    case H264Unit::PictureSet:
    case H264Unit::Delimiter:
        return false;
    default:
        return kept == H264Kept::AllButSets || !tellsSettings(unit);
    }
}

int replaceData(AVPacket& packet, const Bytes& data) {
    AVBufferRef* buffer = av_buffer_alloc(data.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    if (buffer == nullptr) {
        return AVERROR(ENOMEM);
    }
    std::ranges::copy(data, buffer->data);
    std::memset(buffer->data + data.size(), 0, AV_INPUT_BUFFER_PADDING_SIZE);
    av_buffer_unref(&packet.buf);
    packet.buf = buffer;
    packet.data = buffer->data;
    packet.size = static_cast<int>(data.size());
    return 0;
}

} // namespace

int convertH264(AVPacket& packet, NalLengthSize lengthSize, H264Kept kept) {
    const std::span<const std::uint8_t> bytes(packet.data, static_cast<std::size_t>(packet.size));
    const auto units = unitsOf(bytes, lengthSize);
    if (!units) {
        return AVERROR_INVALIDDATA;
    }
    const auto keep = [kept](NalUnit unit) { return isKept(unit, kept); };
    if (lengthSize == kLengthSize && std::ranges::all_of(*units, keep)) {
        return 0;
    }
    Bytes converted;
    converted.reserve(bytes.size() + units->size());
    for (const NalUnit unit : *units) {
        if (keep(unit)) {
            appendWithLength(unit, converted);
        }
    }
    return converted.empty() ? AVERROR_INVALIDDATA : replaceData(packet, converted);
}

} // namespace velmora
