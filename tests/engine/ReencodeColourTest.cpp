// The colours of a re-encoded file: what they are, and what it says of them.

#include "MediaReader.h"
#include "ReencodeSupport.h"

#include <numeric>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

/// The average of a picture's luma.
double lumaOf(const std::string& path) {
    const std::string pixels =
        runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-frames:v", "1", "-f",
                    "rawvideo", "-pix_fmt", "gray", "-vf", "extractplanes=y", "-"})
            .output;
    const double sum =
        std::accumulate(pixels.begin(), pixels.end(), 0.0, [](double total, char pixel) {
            return total + static_cast<unsigned char>(pixel);
        });
    return sum / static_cast<double>(pixels.size());
}

class ReencodeRange : public Reencode, public testing::WithParamInterface<const char*> {};

// White is 255 in full range and 235 in the range that the output is in.
TEST_P(ReencodeRange, fullRangeSource_becomesLimited) {
    const std::string white =
        mediaMadeBy(std::string("-f lavfi -i color=white:size=160x120:rate=25:duration=1,"
                                "scale=out_range=full,format=") +
                        GetParam() + " -color_range pc -c:v ffv1 -level 3",
                    std::string("white-") + GetParam() + ".mkv");
    for (const int width : {160, 96}) {
        engine_.videoWidth = width;
        const std::string output = folder_ / "out.mp4";

        EXPECT_EQ(cut(white, 0, 400, output).states, std::vector{1});

        EXPECT_NEAR(lumaOf(output), 235.0, 2.0) << width;
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, ReencodeRange,
                         testing::Values("yuv420p", "yuv420p10le", "yuv444p"),
                         [](const auto& made) { return std::string(made.param); });

TEST_F(Reencode, rgbSource_isTaggedByAMatrixThatPlayersKnow) {
    const std::string red = mediaMadeBy(
        "-f lavfi -i color=red:size=160x120:rate=25:duration=1 -pix_fmt bgr0 -c:v ffv1", "red.mkv");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(red, 0, 400, output).states, std::vector{1});

    EXPECT_EQ(fieldsOf(output, "v:0").at("color_space"), "smpte170m");
    EXPECT_NEAR(lumaOf(output), 81.0, 3.0);
}

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

TEST_F(ReencodeOfRgb, smallPictures_haveTheMatrixOfStandardDefinition) {
    EXPECT_EQ(colourSpaceAt(160, 120), "smpte170m");
    EXPECT_EQ(colourSpaceAt(160, 718), "smpte170m");
}

TEST_F(ReencodeOfRgb, largePictures_haveTheMatrixOfHighDefinition) {
    EXPECT_EQ(colourSpaceAt(160, 720), "bt709");
}

TEST_F(Reencode, sourceWithAMatrix_keepsIt) {
    const std::string source = mediaMadeBy(
        "-f lavfi -i testsrc2=size=64x48:rate=25:duration=0.4 -c:v mpeg2video -colorspace bt470bg",
        "bt470bg.mpg");
    const std::string output = folder_ / "out.mp4";
    EXPECT_EQ(cut(source, 0, 400, output).states, std::vector<int>{1});
    EXPECT_EQ(fieldsOf(output, "v:0").value("color_space", "unknown"), "bt470bg");
}

} // namespace
} // namespace velmora::test
