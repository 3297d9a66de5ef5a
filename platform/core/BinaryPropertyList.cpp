#include "BinaryPropertyList.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace velmora {
namespace {

constexpr std::uint64_t kTrailerSize = 32;
constexpr std::uint64_t kMaxMemory = std::uint64_t{16} * 1024 * 1024;
constexpr std::uint64_t kMemoryOfNode = 64; // whatever it holds
constexpr std::uint64_t kInvalid = std::numeric_limits<std::uint64_t>::max();

/// One object of the list: a marker byte, for larger objects a length, and the content.
struct Object {
    int kind = 0;              ///< the marker's upper half
    std::uint64_t count = 0;   ///< bytes, characters, items or entries
    std::uint64_t content = 0; ///< the place of the first byte after the marker and the length
};

constexpr int kUtf16Text = 0x6;
constexpr int kArray = 0xA;
constexpr int kSet = 0xC;
constexpr int kDictionary = 0xD;

class Layout {
public:
    explicit Layout(const QByteArray& content) : content_(content) {}

    bool isSafe();

private:
    std::uint64_t size() const { return static_cast<std::uint64_t>(content_.size()); }
    /// Big-endian; `kInvalid` outside of the content, and for numbers of odd widths.
    std::uint64_t number(std::uint64_t place, std::uint64_t width) const;
    bool readTrailer();
    bool readObject(std::uint64_t index, Object& object) const;
    bool holdItems(const Object& object);
    bool hold(std::uint64_t index);

    static bool isContainer(const Object& object) {
        return object.kind == kArray || object.kind == kSet || object.kind == kDictionary;
    }

    const QByteArray& content_;
    std::uint64_t offsetWidth_ = 0;
    std::uint64_t referenceWidth_ = 0;
    std::uint64_t objects_ = 0;
    std::uint64_t root_ = 0;
    std::uint64_t offsets_ = 0; ///< the place of the table of the objects' places
    std::uint64_t memory_ = 0;  ///< of all that is held
    std::vector<bool> isHeld_;
};

std::uint64_t Layout::number(std::uint64_t place, std::uint64_t width) const {
    if (width < 1 || width > 8 || place > size() || width > size() - place) {
        return kInvalid;
    }
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < width; ++i) {
        value =
            value << 8U | static_cast<unsigned char>(content_[static_cast<qsizetype>(place + i)]);
    }
    return value;
}

bool Layout::readTrailer() {
    if (size() < kTrailerSize) {
        return false;
    }
    const std::uint64_t trailer = size() - kTrailerSize;
    offsetWidth_ = number(trailer + 6, 1);
    referenceWidth_ = number(trailer + 7, 1);
    objects_ = number(trailer + 8, 8);
    root_ = number(trailer + 16, 8);
    offsets_ = number(trailer + 24, 8);
    return objects_ <= size() && root_ < objects_;
}

bool Layout::readObject(std::uint64_t index, Object& object) const {
    if (index >= objects_) {
        return false;
    }
    const std::uint64_t place = number(offsets_ + index * offsetWidth_, offsetWidth_);
    const std::uint64_t marker = number(place, 1);
    if (marker == kInvalid) {
        return false;
    }
    object.kind = static_cast<int>(marker >> 4U);
    object.count = marker & 0xFU;
    object.content = place + 1;
    if (object.count == 0xF) { // then a whole number follows, with a marker of its own
        const std::uint64_t exponent = number(place + 1, 1) & 0xFU;
        const std::uint64_t width = exponent <= 3 ? std::uint64_t{1} << exponent : 0;
        object.count = number(place + 2, width);
        object.content = place + 2 + width;
    }
    return object.count <= size();
}

bool Layout::holdItems(const Object& object) {
    const std::uint64_t items = object.kind == kDictionary ? 2 * object.count : object.count;
    for (std::uint64_t i = 0; i < items; ++i) {
        if (!hold(number(object.content + i * referenceWidth_, referenceWidth_))) {
            return false;
        }
    }
    return true;
}

bool Layout::hold(std::uint64_t index) {
    Object object;
    if (!readObject(index, object)) {
        return false;
    }
    memory_ += kMemoryOfNode + object.count * (object.kind == kUtf16Text ? 3 : 1);
    const bool again = isContainer(object) && isHeld_[index];
    isHeld_[index] = true;
    return !again && memory_ <= kMaxMemory;
}

bool Layout::isSafe() {
    if (!readTrailer()) {
        return false;
    }
    isHeld_.assign(objects_, false);
    if (!hold(root_)) {
        return false;
    }
    for (std::uint64_t index = 0; index < objects_; ++index) {
        Object object;
        if (!readObject(index, object) || (isContainer(object) && !holdItems(object))) {
            return false;
        }
    }
    return true;
}

} // namespace

bool isSafeBinaryPropertyList(const QByteArray& content) {
    return Layout(content).isSafe();
}

} // namespace velmora
