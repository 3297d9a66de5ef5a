// What a re-encoded file says of its colours.

#include "MediaReader.h"
#include "ReencodeSupport.h"

namespace velmora::test {
namespace {

/// A source of red, green and blue that says nothing of a matrix.
class ReencodeOfRgb : public Reencode {
protected:
    std::string colourSpaceAt(int width, int height) {
        const std::string source = mediaMadeBy(
            "-f lavfi -i testsrc2=size=64x48:rate=25:duration=0.4 -c:v png -pix_fmt rgb24",
            "rgb.mov");
        engine_.videoWidth = width;
        engine_.videoHeight = height;
        const std::string output = folder_ / "out.mp4";
        EXPECT_EQ(cut(source, 0, 400, output).states, std::vector<int>{1});
        return fieldsOf(output, "v:0").value("color_space", "unknown");
    }
};

TEST_F(ReencodeOfRgb, smallPictures_have_the_matrix_of_standard_definition) {
    EXPECT_EQ(colourSpaceAt(160, 120), "smpte170m");
    EXPECT_EQ(colourSpaceAt(160, 718), "smpte170m");
}

TEST_F(ReencodeOfRgb, largePictures_have_the_matrix_of_high_definition) {
    EXPECT_EQ(colourSpaceAt(160, 720), "bt709");
}

TEST_F(Reencode, sourceWithAMatrix_keeps_it) {
    const std::string source = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x48:rate=25:duration=0.4 -c:v mpeg2video -colorspace bt470bg",
        "bt470bg.mpg");
    const std::string output = folder_ / "out.mp4";
    EXPECT_EQ(cut(source, 0, 400, output).states, std::vector<int>{1});
    EXPECT_EQ(fieldsOf(output, "v:0").value("color_space", "unknown"), "bt470bg");
}

} // namespace
} // namespace velmora::test
