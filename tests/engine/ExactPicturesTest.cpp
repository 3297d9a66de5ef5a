// How the pictures of an exact cut look: upright, in proportion, in colours that players know.

#include "ExactSupport.h"
#include "MediaOperations.h"
#include "MediaReader.h"
#include "ReencodeSupport.h"

#include <filesystem>

namespace velmora::test {
namespace {

/// Its left half is red, its right half blue; in front of it, what turns it.
std::string redAndBlue(const std::string& name, const std::string& options, bool turned = false) {
    const std::string plain = mediaMadeBy(
        "-f lavfi -i color=red:size=64x64:rate=25:duration=1 -f lavfi -i "
        "color=blue:size=64x64:rate=25:duration=1 -filter_complex hstack -c:v libx264 -crf 4 "
        "-pix_fmt yuv420p " +
            (turned ? "" : options),
        "exact-halves-" + name);
    return !turned ? plain
                   : mediaMadeBy("-i " + plain + " -c copy " + options, "exact-turned-" + name);
}

void expectRed(const std::vector<int>& pixel) {
    ASSERT_EQ(pixel.size(), 3U);
    EXPECT_GT(pixel[0], 200);
    EXPECT_LT(pixel[2], 60);
}

void expectBlue(const std::vector<int>& pixel) {
    ASSERT_EQ(pixel.size(), 3U);
    EXPECT_LT(pixel[0], 60);
    EXPECT_GT(pixel[2], 200);
}

TEST_F(Exact, picture_turnedByAQuarter_isUpright) {
    const std::string output = folder_ / "out.mp4";
    const std::string source = redAndBlue("turned.mp4", "-metadata:s:v rotate=270", true);

    EXPECT_EQ(cut(source, 0, 500, output).states, std::vector<int>{ConversionEngine::Done});

    // "As the source" is its upright size; what was left is on top.
    EXPECT_EQ(fieldsOf(output, "v:0").at("width"), 64);
    EXPECT_EQ(fieldsOf(output, "v:0").at("height"), 128);
    EXPECT_FALSE(fieldsOf(output, "v:0").contains("side_data_list"));
    expectRed(pixelOf(output, 32, 20));
    expectBlue(pixelOf(output, 32, 108));
}

TEST_F(Exact, picture_otherProportions_getsBars) {
    const std::string output = folder_ / "out.mp4";
    video_.width = 128;
    video_.height = 128;

    cut(redAndBlue("plain.mp4", ""), 0, 500, output);

    expectRed(pixelOf(output, 32, 64));
    expectBlue(pixelOf(output, 96, 64));
    EXPECT_LT(pixelOf(output, 32, 10).at(0), 16);
    EXPECT_LT(pixelOf(output, 32, 118).at(0), 16);
}

TEST_F(Exact, picture_wideSamples_becomeSquare) {
    const std::string output = folder_ / "out.mp4";

    cut(redAndBlue("wide.mp4", "-aspect 4:1"), 0, 500, output);

    EXPECT_EQ(fieldsOf(output, "v:0").at("width"), 256);
    EXPECT_EQ(fieldsOf(output, "v:0").at("height"), 64);
    EXPECT_EQ(fieldsOf(output, "v:0").at("sample_aspect_ratio"), "1:1");
}

TEST_F(Exact, picture_highDynamicRange_isMappedToWhatPlayersKnow) {
    const std::string source = mediaMadeBy(
        "-f lavfi -i color=gray:size=128x64:rate=25:duration=1 -color_primaries bt2020 -color_trc "
        "smpte2084 -colorspace bt2020nc -c:v libx264 -pix_fmt yuv420p10le",
        "exact-pq.mkv");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(cut(source, 0, 500, output).states, std::vector<int>{ConversionEngine::Done});

    const auto stream = fieldsOf(output, "v:0");
    EXPECT_EQ(stream.at("pix_fmt"), "yuv420p");
    EXPECT_EQ(stream.at("color_transfer"), "bt709");
    EXPECT_EQ(stream.at("color_primaries"), "bt709");
    EXPECT_EQ(stream.at("color_space"), "bt709");
}

TEST_F(Exact, picture_fullRange_becomesLimited) {
    const std::string source = mediaMadeBy(
        "-f lavfi -i "
        "color=white:size=128x64:rate=25:duration=1,scale=out_range=full,format=yuv420p "
        "-color_range pc -c:v ffv1 -level 3",
        "exact-full.mkv");
    const std::string output = folder_ / "out.mp4";

    cut(source, 0, 500, output);

    EXPECT_GT(pixelOf(output, 64, 32).at(0), 250);
}

TEST_F(Exact, picture_interlacedAndSmaller_isMadeProgressive) {
    // Every second line is white: the fields are one black and one white picture.
    const std::string source = mediaMadeBy(
        "-f lavfi -i "
        "color=black:size=128x64:rate=25:duration=1,geq=lum='if(mod(Y,2),235,16)':cb=128:cr=128,"
        "setfield=tff -flags +ildct+ilme -top 1 -c:v mpeg2video -q:v 2",
        "exact-fields.mpg");
    const std::string output = folder_ / "out.mp4";
    video_.height = 32;
    video_.width = 64;

    EXPECT_EQ(cut(source, 0, 500, output).states, std::vector<int>{ConversionEngine::Done});
    EXPECT_EQ(fieldsOf(output, "v:0").at("field_order"), "progressive");
}

TEST_F(Exact, picture_asPng_isTheOneAtThatTimeUprightAndInFullSize) {
    const std::string source = redAndBlue("turned.mp4", "-metadata:s:v rotate=270", true);
    const std::string picture = folder_ / "out.png";

    EXPECT_EQ(mediaOperations().writePicture(source, 500, picture), 0);

    EXPECT_EQ(fieldsOf(picture, "v:0").at("width"), 64);
    EXPECT_EQ(fieldsOf(picture, "v:0").at("height"), 128);
    expectRed(pixelOf(picture, 32, 20));
}

TEST_F(Exact, picture_afterTheEnd_isTheLast) {
    const std::string source = mediaMadeBy(
        "-f lavfi -i color=red:size=128x64:rate=25:duration=1 -f lavfi -i "
        "color=blue:size=128x64:rate=25:duration=0.04 -filter_complex concat -c:v libx264 -g 50 "
        "-crf 4 -pix_fmt yuv420p",
        "exact-last.mp4");
    const std::string picture = folder_ / "out.png";

    EXPECT_EQ(mediaOperations().writePicture(source, 960, picture), 0);
    expectRed(pixelOf(picture, 64, 32));
    EXPECT_EQ(mediaOperations().writePicture(source, 961, picture), 0);
    expectBlue(pixelOf(picture, 64, 32));
    EXPECT_EQ(mediaOperations().writePicture(source, 50'000, picture), 0);
    expectBlue(pixelOf(picture, 64, 32));
}

TEST_F(Exact, picture_sourceIsTheTarget_isLeftAlone) {
    const std::string source = folder_ / "source.mp4";
    std::filesystem::copy_file(exactSource("plain.mp4"), source);
    const Bytes before = readFile(source);

    EXPECT_LT(mediaOperations().writePicture(source, 0, source), 0);

    EXPECT_EQ(readFile(source), before);
}

} // namespace
} // namespace velmora::test
