#pragma once

#include "NalUnits.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace velmora {

enum class H264Unit : std::uint8_t {
    Slice = 1,
    DataPartitionA = 2,
    IdrSlice = 5,
    Sei = 6,
    SequenceSet = 7,
    PictureSet = 8,
    Delimiter = 9,
    EndOfSequence = 10,
    EndOfStream = 11,
    Filler = 12,
    SequenceSetExtension = 13,
    Prefix = 14,
    SubsetSequenceSet = 15,
    AuxiliarySlice = 19,
    ExtensionSlice = 20,
};

constexpr H264Unit typeOf(NalUnit unit) {
    return static_cast<H264Unit>(unit.front() & 0x1FU);
}

/// What a sequence parameter set tells, as far as it is needed here.
struct H264Sequence {
    std::uint32_t id = 0;
    std::uint8_t profile = 0;
    std::uint8_t constraints = 0;
    std::uint8_t level = 0;
    std::uint32_t chromaFormat = 1;
    std::uint32_t lumaDepth = 8;
    std::uint32_t chromaDepth = 8;
    bool hasSeparatePlanes = false;
    std::uint32_t frameNumberBits = 4;
    bool framesOnly = true;
    bool isAdaptive = false; ///< frames whose macroblocks are interlaced or not, one by one

    bool operator==(const H264Sequence&) const = default;
};

/// Nothing for a unit that is none, or is damaged.
std::optional<H264Sequence> parseSequence(NalUnit unit);

/// The parameter sets of a track, as its container's header has them.
class H264Sets {
public:
    /// Of a decoder configuration record, or of units with start codes. Nothing where there is none
    /// of a kind, what is there is damaged, or two have one id.
    static std::optional<H264Sets> parse(std::span<const std::uint8_t> extradata);

    /// How packets of the track that they come from are divided.
    NalLengthSize lengthSize() const { return lengthSize_; }
    const std::vector<H264Sequence>& sequences() const { return parsed_; }
    /// Whether all sequences have pictures of the same kind, so that each slice is of the first.
    bool areAlike() const;
    /// Whether the unit is one of them, to the byte.
    bool holds(NalUnit unit) const;
    /// An id that no set of either kind has; nothing when all are taken.
    std::optional<std::uint32_t> freeId() const;

    /// Adds those of `other`, which have other ids.
    void add(const H264Sets& other);
    /// A decoder configuration record for packets with lengths of four bytes.
    Bytes record() const;

private:
    bool take(NalUnit unit);

    NalLengthSize lengthSize_ = 0;
    std::vector<Bytes> sequences_;
    std::vector<H264Sequence> parsed_; ///< the same
    std::vector<Bytes> pictures_;
};

/// Whether the slice, which goes by this sequence, holds one field of a picture.
bool isField(NalUnit slice, const H264Sequence& sequence);

} // namespace velmora
