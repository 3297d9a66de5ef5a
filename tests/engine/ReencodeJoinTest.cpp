// Several inputs in one output.

#include "ReencodeSupport.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

TEST_F(Reencode, join_takesInputsThatDifferInEverything) {
    const std::vector<std::string> inputs = {mediaPath("h264.mp4"), mediaPath("mpeg4.avi"),
                                             mediaPath("hevc.mp4"), mediaPath("vorbis.mkv")};
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(join(inputs, output).states, std::vector<int>(inputs.size(), 1));

    std::size_t pictures = 0;
    for (const std::string& input : inputs) {
        pictures += frameMd5s(input, "v:0").size();
    }
    EXPECT_EQ(packetsOf(output, "v:0").size(), pictures - 1); // one stays in the encoder
    EXPECT_TRUE(ffmpegDecodesClean(output));
}

TEST_F(Reencode, joinOfEqualRates_keepsSoundAndPictureTogether) {
    const std::string source = mediaPath("h264.mp4");
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(join({source, source, source, source}, output).states, std::vector(4, 1));

    const double ownOffset = endOf(source, "v:0") - endOf(source, "a:0");
    const double offset = endOf(output, "v:0") - endOf(output, "a:0");
    constexpr double kFrames = 1.0 / 30 + 1024.0 / 44100;
    EXPECT_LE(std::abs(offset - ownOffset), kFrames + 1.0 / 30); // and the encoder's last picture
    const auto packets = packetsOf(output, "v:0");
    for (std::size_t i = 1; i < packets.size(); ++i) {
        ASSERT_GT(packets[i].dts.value(), packets[i - 1].dts.value()) << i;
    }
}

TEST_F(Reencode, laterInputWithSound_failsWhereTheFirstHadNone) {
    const std::string output = folder_ / "out.mp4";

    EXPECT_EQ(join({mediaPath("video-only.mp4"), mediaPath("h264.mp4")}, output).states,
              (std::vector{1, 2}));
}

TEST_F(ReencodeEncoder, secondCutInput_stopsAtOnce) {
    const std::string once = folder_ / "once.mp4";
    const std::string twice = folder_ / "twice.mp4";
    ASSERT_EQ(cut(smallSource(), 0, 500, once).states, std::vector{1});
    fillPaths({smallSource(), smallSource()}, twice);
    for (std::size_t i = 0; i < 2; ++i) {
        engine_.startTimes[i] = 0.0;
        engine_.spans[i] = 0.5;
    }
    engine_.joinMode = 0;
    engine_.reencode = 1;

    EXPECT_EQ(run().states, std::vector(2, 1));

    EXPECT_TRUE(readFile(twice) == readFile(once));
}

TEST_F(ReencodeEncoder, percent_ofAJoinWithoutLengthIsAllOnceSomethingIsWritten) {
    const std::string output = folder_ / "out.mp4";
    fillJoin({smallSource(), smallSource()}, output);
    choose(AV_CODEC_ID_H264, AV_CODEC_ID_AAC);
    engine_.joinTotalMs = 0;
    engine_.reencode = 1;

    const JobResult result = run();

    EXPECT_EQ(result.states, std::vector(2, 1));
    EXPECT_EQ(result.percent, 100);
    EXPECT_EQ(engine_.spans[0], 0.0);
}

} // namespace
} // namespace velmora::test
