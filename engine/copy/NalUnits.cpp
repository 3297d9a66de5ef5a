#include "NalUnits.h"

#include <algorithm>
#include <array>
#include <bit>

namespace velmora {
namespace {

using Packet = std::span<const std::uint8_t>;

std::optional<std::vector<NalUnit>> unitsByLength(Packet packet, int lengthSize) {
    std::vector<NalUnit> units;
    while (!packet.empty()) {
        const auto size = static_cast<std::size_t>(lengthSize);
        if (packet.size() < size) {
            return std::nullopt;
        }
        std::size_t length = 0;
        for (const std::uint8_t byte : packet.first(size)) {
            length = length << 8U | byte;
        }
        packet = packet.subspan(size);
        if (length > packet.size()) {
            return std::nullopt;
        }
        if (length > 0) {
            units.push_back(packet.first(length));
        }
        packet = packet.subspan(length);
    }
    return units;
}

/// Where the next start code begins; the end of the packet without one.
std::size_t nextStartCode(Packet packet, std::size_t from) {
    constexpr std::array<std::uint8_t, 3> kStartCode = {0, 0, 1};
    const auto found = std::search(packet.begin() + static_cast<std::ptrdiff_t>(from), packet.end(),
                                   kStartCode.begin(), kStartCode.end());
    return static_cast<std::size_t>(found - packet.begin());
}

std::vector<NalUnit> unitsByStartCode(Packet packet) {
    constexpr std::size_t kStartCodeBytes = 3;
    std::vector<NalUnit> units;
    std::size_t start = nextStartCode(packet, 0);
    while (start < packet.size()) {
        const std::size_t begin = start + kStartCodeBytes;
        start = nextStartCode(packet, begin);
        NalUnit unit = packet.subspan(begin, start - begin);
        while (!unit.empty() && unit.back() == 0) { // of a longer start code, or at the end
            unit = unit.first(unit.size() - 1);
        }
        if (!unit.empty()) {
            units.push_back(unit);
        }
    }
    return units;
}

} // namespace

std::optional<std::vector<NalUnit>> unitsOf(Packet packet, NalLengthSize lengthSize) {
    return lengthSize > 0 ? unitsByLength(packet, lengthSize)
                          : std::optional(unitsByStartCode(packet));
}

void appendWithLength(NalUnit unit, Bytes& packet) {
    const auto length = static_cast<std::uint32_t>(unit.size());
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        packet.push_back(static_cast<std::uint8_t>(length >> shift));
    }
    packet.insert(packet.end(), unit.begin(), unit.end());
}

bool NalBits::nextBit() {
    constexpr std::uint8_t kPreventsStartCode = 3;
    if (bit_ == 0 && byte_ < unit_.size() && zeros_ >= 2 && unit_[byte_] == kPreventsStartCode) {
        ++byte_;
        zeros_ = 0;
    }
    if (byte_ >= unit_.size()) {
        beyond_ = true;
        return false;
    }
    const std::uint8_t value = unit_[byte_];
    const bool bit = (value >> static_cast<unsigned>(7 - bit_) & 1U) != 0;
    if (++bit_ == 8) {
        bit_ = 0;
        ++byte_;
        zeros_ = value == 0 ? zeros_ + 1 : 0;
    }
    return bit;
}

std::uint32_t NalBits::read(int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) {
        value = value << 1U | (nextBit() ? 1U : 0U);
    }
    return value;
}

std::uint32_t NalBits::readExpGolomb() {
    constexpr int kMostZeros = 31;
    int zeros = 0;
    while (zeros < kMostZeros && !beyond_ && !nextBit()) {
        ++zeros;
    }
    return (1U << static_cast<unsigned>(zeros)) - 1 + read(zeros);
}

std::int32_t NalBits::readSignedExpGolomb() {
    const std::uint32_t code = readExpGolomb();
    const auto half = static_cast<std::int32_t>(code / 2 + code % 2);
    return code % 2 != 0 ? half : -half;
}

} // namespace velmora
