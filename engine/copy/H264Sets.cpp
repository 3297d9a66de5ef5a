#include "H264Sets.h"

#include <algorithm>
#include <array>

namespace velmora {
namespace {

constexpr std::uint32_t kIds = 32; // that a sequence set may have
constexpr std::size_t kMostPictureSets = 255;

/// Those whose sets tell of the chroma format and the depth.
bool isHighProfile(std::uint8_t profile) {
    constexpr std::array<std::uint8_t, 13> kHigh = {100, 110, 122, 244, 44,  83, 86,
                                                    118, 128, 138, 139, 134, 135};
    return std::ranges::find(kHigh, profile) != kHigh.end();
}

void skipScalingList(NalBits& bits, int size) {
    std::int32_t last = 8;
    std::int32_t next = 8;
    for (int i = 0; i < size && !bits.isBeyondEnd(); ++i) {
        if (next != 0) {
            next = (last + bits.readSignedExpGolomb()) & 0xFF;
        }
        last = next == 0 ? last : next;
    }
}

void parseHighPart(NalBits& bits, H264Sequence& sequence) {
    constexpr int kSmallLists = 6;
    sequence.chromaFormat = bits.readExpGolomb();
    sequence.hasSeparatePlanes = sequence.chromaFormat == 3 && bits.flag();
    sequence.lumaDepth = 8 + bits.readExpGolomb();
    sequence.chromaDepth = 8 + bits.readExpGolomb();
    bits.flag(); // lossless transform bypass
    const int lists = bits.flag() ? (sequence.chromaFormat != 3 ? 8 : 12) : 0;
    for (int i = 0; i < lists; ++i) {
        if (bits.flag()) {
            skipScalingList(bits, i < kSmallLists ? 16 : 64);
        }
    }
}

void skipPictureOrder(NalBits& bits) {
    const std::uint32_t type = bits.readExpGolomb();
    if (type == 0) {
        bits.readExpGolomb();
    } else if (type == 1) {
        bits.flag();
        bits.readSignedExpGolomb();
        bits.readSignedExpGolomb();
        const std::uint32_t count = bits.readExpGolomb();
        for (std::uint32_t i = 0; i < count && !bits.isBeyondEnd(); ++i) {
            bits.readSignedExpGolomb();
        }
    }
}

std::uint32_t idOf(NalUnit unit) {
    if (typeOf(unit) == H264Unit::PictureSet) {
        return NalBits(unit.subspan(1)).readExpGolomb();
    }
    const auto sequence = parseSequence(unit);
    return sequence ? sequence->id : kIds;
}

bool hasId(const std::vector<Bytes>& sets, std::uint32_t id) {
    return std::ranges::any_of(sets, [id](const Bytes& set) { return idOf(set) == id; });
}

bool holdsUnit(const std::vector<Bytes>& units, NalUnit unit) {
    return std::ranges::any_of(units,
                               [unit](const Bytes& own) { return std::ranges::equal(own, unit); });
}

void appendSet(const Bytes& set, Bytes& record) {
    record.push_back(static_cast<std::uint8_t>(set.size() >> 8U));
    record.push_back(static_cast<std::uint8_t>(set.size()));
    record.insert(record.end(), set.begin(), set.end());
}

/// The units of the two lists in a decoder configuration record.
std::optional<std::vector<NalUnit>> unitsOfRecord(std::span<const std::uint8_t> record) {
    constexpr std::size_t kListsBegin = 5;
    std::vector<NalUnit> units;
    std::size_t at = kListsBegin;
    for (const int mask : {0x1F, 0xFF}) {
        if (at >= record.size()) {
            return std::nullopt;
        }
        for (int left = record[at++] & mask; left > 0; --left) {
            if (at + 2 > record.size()) {
                return std::nullopt;
            }
            const std::size_t size = static_cast<std::size_t>(record[at]) << 8U | record[at + 1];
            at += 2;
            if (size == 0 || size > record.size() - at) {
                return std::nullopt;
            }
            units.push_back(record.subspan(at, size));
            at += size;
        }
    }
    return units;
}

} // namespace

std::optional<H264Sequence> parseSequence(NalUnit unit) {
    if (unit.size() < 4 || typeOf(unit) != H264Unit::SequenceSet) {
        return std::nullopt;
    }
    H264Sequence sequence;
    NalBits bits(unit.subspan(1));
    sequence.profile = static_cast<std::uint8_t>(bits.read(8));
    sequence.constraints = static_cast<std::uint8_t>(bits.read(8));
    sequence.level = static_cast<std::uint8_t>(bits.read(8));
    sequence.id = bits.readExpGolomb();
    if (isHighProfile(sequence.profile)) {
        parseHighPart(bits, sequence);
    }
    sequence.frameNumberBits = 4 + bits.readExpGolomb();
    skipPictureOrder(bits);
    bits.readExpGolomb(); // reference pictures
    bits.flag();          // gaps in their numbers
    bits.readExpGolomb(); // width
    bits.readExpGolomb(); // height
    sequence.framesOnly = bits.flag();
    sequence.isAdaptive = !sequence.framesOnly && bits.flag();
    const bool isSound = !bits.isBeyondEnd() && sequence.id < kIds && sequence.chromaFormat <= 3 &&
                         sequence.frameNumberBits <= 16 && sequence.lumaDepth <= 14 &&
                         sequence.chromaDepth <= 14;
    return isSound ? std::optional(sequence) : std::nullopt;
}

std::optional<H264Sets> H264Sets::parse(std::span<const std::uint8_t> extradata) {
    constexpr std::size_t kLengthSizeAt = 4;
    H264Sets sets;
    std::optional<std::vector<NalUnit>> units;
    if (extradata.size() > kLengthSizeAt + 2 && extradata[0] == 1) {
        sets.lengthSize_ = (extradata[kLengthSizeAt] & 3) + 1;
        units = unitsOfRecord(extradata);
    } else {
        units = unitsOf(extradata, 0);
    }
    if (!units || !std::ranges::all_of(*units, [&](NalUnit unit) { return sets.take(unit); }) ||
        sets.sequences_.empty() || sets.pictures_.empty() || sets.sequences_.size() >= kIds ||
        sets.pictures_.size() > kMostPictureSets) {
        return std::nullopt;
    }
    return sets;
}

/// False: the unit is damaged, or takes another one's place. What is no set is passed over.
bool H264Sets::take(NalUnit unit) {
    constexpr std::size_t kMostBytes = 0xFFFF; // that a record can tell of
    const bool isSequence = typeOf(unit) == H264Unit::SequenceSet;
    if ((!isSequence && typeOf(unit) != H264Unit::PictureSet) || holds(unit)) {
        return true;
    }
    std::vector<Bytes>& sets = isSequence ? sequences_ : pictures_;
    const auto sequence = parseSequence(unit);
    if (unit.size() > kMostBytes || (isSequence && !sequence) || hasId(sets, idOf(unit))) {
        return false;
    }
    sets.emplace_back(unit.begin(), unit.end());
    if (sequence) {
        parsed_.push_back(*sequence);
    }
    return true;
}

bool H264Sets::holds(NalUnit unit) const {
    return holdsUnit(sequences_, unit) || holdsUnit(pictures_, unit);
}

std::optional<std::uint32_t> H264Sets::freeId() const {
    // A record has room for one less of each kind than there are ids.
    const bool hasRoom = sequences_.size() < kIds - 1 && pictures_.size() < kMostPictureSets;
    for (std::uint32_t id = kIds - 1; hasRoom && id > 0; --id) {
        if (!hasId(sequences_, id) && !hasId(pictures_, id)) {
            return id;
        }
    }
    return std::nullopt;
}

bool H264Sets::areAlike() const {
    return std::ranges::all_of(parsed_, [this](H264Sequence sequence) {
        sequence.id = parsed_.front().id;
        return sequence == parsed_.front();
    });
}

void H264Sets::add(const H264Sets& other) {
    sequences_.insert(sequences_.end(), other.sequences_.begin(), other.sequences_.end());
    parsed_.insert(parsed_.end(), other.parsed_.begin(), other.parsed_.end());
    pictures_.insert(pictures_.end(), other.pictures_.begin(), other.pictures_.end());
}

Bytes H264Sets::record() const {
    constexpr std::uint8_t kFourBytes = 0xFF;
    H264Sequence most = parsed_.front();
    for (const H264Sequence& sequence : parsed_) {
        most.constraints &= sequence.constraints;
        most.profile = std::max(most.profile, sequence.profile);
        most.level = std::max(most.level, sequence.level);
    }
    Bytes record = {1, most.profile, most.constraints, most.level, kFourBytes};
    record.push_back(static_cast<std::uint8_t>(0xE0U | sequences_.size()));
    for (const Bytes& set : sequences_) {
        appendSet(set, record);
    }
    record.push_back(static_cast<std::uint8_t>(pictures_.size()));
    for (const Bytes& set : pictures_) {
        appendSet(set, record);
    }
    if (isHighProfile(most.profile)) {
        record.push_back(static_cast<std::uint8_t>(0xFCU | most.chromaFormat));
        record.push_back(static_cast<std::uint8_t>(0xF8U | (most.lumaDepth - 8)));
        record.push_back(static_cast<std::uint8_t>(0xF8U | (most.chromaDepth - 8)));
        record.push_back(0); // no extensions
    }
    return record;
}

bool isField(NalUnit slice, const H264Sequence& sequence) {
    if (sequence.framesOnly) {
        return false;
    }
    NalBits bits(slice.subspan(1));
    bits.readExpGolomb(); // first macroblock
    bits.readExpGolomb(); // type
    bits.readExpGolomb(); // picture set
    if (sequence.hasSeparatePlanes) {
        bits.read(2);
    }
    bits.read(static_cast<int>(sequence.frameNumberBits));
    return bits.flag();
}

} // namespace velmora
