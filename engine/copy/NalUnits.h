#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace velmora {

using Bytes = std::vector<std::uint8_t>;

/// One unit of an H.264 or HEVC stream, from its header on, without start code or length.
using NalUnit = std::span<const std::uint8_t>;

/// How the units of a packet are told apart: by the length before each, in so many bytes; 0: by
/// start codes.
using NalLengthSize = int;

/// The units of a packet. Nothing where its bytes are none. They lie in `packet`.
std::optional<std::vector<NalUnit>> unitsOf(std::span<const std::uint8_t> packet,
                                            NalLengthSize lengthSize);

/// Appends the unit behind its length in four bytes.
void appendWithLength(NalUnit unit, Bytes& packet);

/// Reads the bits of a unit, passing over the bytes that only keep start codes from appearing.
/// Behind the end there are zeros.
class NalBits {
public:
    explicit NalBits(NalUnit unit) : unit_(unit) {}

    std::uint32_t read(int count); ///< at most 32
    bool flag() { return read(1) != 0; }
    std::uint32_t readExpGolomb();
    std::int32_t readSignedExpGolomb();
    /// Whether more has been read than there is.
    bool isBeyondEnd() const { return beyond_; }

private:
    bool nextBit();

    NalUnit unit_;
    std::size_t byte_ = 0;
    int bit_ = 0;
    int zeros_ = 0; ///< whole bytes before this one
    bool beyond_ = false;
};

} // namespace velmora
