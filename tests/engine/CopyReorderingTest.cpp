// Pictures that are stored in another order than they are shown, where that is hard to tell.

#include "CopySupport.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

TEST_F(Copy, cutOfOpenGroup_keepsEveryPacketInPlace) {
    const Source source(mediaPath("h264-open-gop.mp4"));
    const std::string output = folder_ / "out.mp4";

    cut(source.path, 1500, 2500, output);

    expectPackets(output, {{&source, source.keyBefore(1.5), 30}});
}

// Nothing in such a file tells in which order its pictures are shown.
TEST_F(Copy, reorderedH264InAvi_keepsTheOrderOfCoding) {
    const Source source(mediaMadeBy("-i @h264-bframes.avi -c copy -an", "reordered.avi"));
    const std::string output = folder_ / "out.avi";

    EXPECT_EQ(join({source.path, source.path}, output).states, (std::vector{1, 1}));
    expectVideo(output, {wholeOf(source), wholeOf(source)});

    const std::string other = folder_ / "out.mp4";
    EXPECT_EQ(join({source.path}, other).states, std::vector{1});
    const StreamFacts copy = streamOf(other, "v:0");
    const Numbering numbering(copy.timeBase, source.frameDuration);
    ASSERT_EQ(copy.packets.size(), source.video.packets.size());
    for (std::size_t i = 0; i < copy.packets.size(); ++i) {
        EXPECT_EQ(copy.packets[i].dts, numbering.at(static_cast<std::int64_t>(i)));
        EXPECT_EQ(copy.packets[i].pts, copy.packets[i].dts);
    }
}

/// Reads an H.264 header bit by bit.
class Bits {
public:
    Bits(const Bytes& content, std::size_t at) : content_(content), position_(8 * at) {}

    unsigned next() {
        const unsigned byte = content_.at(position_ / 8);
        return byte >> (7 - position_++ % 8) & 1U;
    }
    /// An exponential Golomb code.
    unsigned code() {
        int zeros = 0;
        while (next() == 0) {
            ++zeros;
        }
        unsigned value = 1;
        for (; zeros > 0; --zeros) {
            value = 2 * value + next();
        }
        return value - 1;
    }
    std::size_t position() const { return position_; }

private:
    const Bytes& content_;
    std::size_t position_;
};

/// The bit of the first sequence header, of the Main profile, that announces the part in which an
/// encoder may tell how far it reorders.
std::size_t usabilityBit(const Bytes& content) {
    constexpr std::array<std::uint8_t, 2> kBegin{0x67, 0x4D};
    const auto header = std::search(content.begin(), content.end(), kBegin.begin(), kBegin.end());
    Bits bits(content, static_cast<std::size_t>(header - content.begin()) + 4);
    bits.code(); // its number
    bits.code(); // bits of a frame's number
    if (bits.code() == 0) {
        bits.code(); // bits of an order count
    }
    bits.code(); // references
    bits.next(); // gaps
    bits.code(); // width
    bits.code(); // height
    bits.next(); // frames
    bits.next(); // direct mode
    for (unsigned edges = 4 * bits.next(); edges > 0; --edges) {
        bits.code();
    }
    return bits.position();
}

// Many encoders do not tell; then only the pictures do.
TEST_F(Copy, undeclaredReordering_isFoundAndKept) {
    for (const char* name : {"h264-bframes.mp4", "h264-bframes.flv", "h264-bframes.mkv"}) {
        const std::string silent = copyOfMedia(name, folder_);
        Bytes content = readFile(silent);
        const std::size_t bit = usabilityBit(content);
        content.at(bit / 8) &= static_cast<std::uint8_t>(~(0x80U >> bit % 8));
        writeFile(silent, content);
        Source source(silent);
        source.pictures = Source(mediaPath(name)).pictures; // not every decoder finds them all now
        const std::string output = folder_ / "out.mp4";

        EXPECT_EQ(join({silent}, output).states, std::vector{1}) << name;

        SCOPED_TRACE(name);
        expectPackets(output, {wholeOf(source)});
    }
}

} // namespace
} // namespace velmora::test
