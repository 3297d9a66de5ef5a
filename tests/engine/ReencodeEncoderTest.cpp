// What the encoders are set to, as the files tell it.

#include "ReencodeSupport.h"

extern "C" {
#include <libavcodec/codec_id.h>
}

#include <ostream>
#include <string>
#include <string_view>

namespace velmora::test {
namespace {

/// The bytes of all the packets of the pictures, without what the container keeps of them.
std::string codedPictures(const std::string& path) {
    return runProgram({"ffmpeg", "-v", "error", "-nostdin", "-i", path, "-map", "0:v", "-c", "copy",
                       "-f", "data", "-"})
        .output;
}

class ReencodeX264 : public ReencodeEncoder, public testing::WithParamInterface<const char*> {};

// The encoder writes its options into the stream.
TEST_P(ReencodeX264, option_isInTheStream) {
    engine_.videoWidth = 320; // enough for four slices
    engine_.videoHeight = 256;

    const std::string coded = codedPictures(made(smallSource(), "avi"));

    EXPECT_NE(coded.find(std::string(" ") + GetParam() + " "), std::string::npos)
        << coded.substr(coded.find("options:"), 1000);
}

INSTANTIATE_TEST_SUITE_P(
    Options, ReencodeX264,
    // The first three are of the preset "superfast". The least distance of key pictures, 25, is
    // limited to 7 by their greatest, 12; without it there would be 1.
    testing::Values("subme=1", "me=dia", "trellis=0", "me_range=16", "qpmin=10", "qpmax=51",
                    "qpstep=4", "qcomp=0.60", "keyint=12", "keyint_min=7", "bframes=0",
                    "sliced_threads=1", "slices=4", "rc=abr", "bitrate=400"),
    [](const auto& tested) { return asTestName(tested.param); });

struct Headers {
    const char* extension;
    bool inPictures;
};

void PrintTo(const Headers& headers, std::ostream* out) {
    *out << headers.extension;
}

class ReencodeHeaders : public ReencodeEncoder, public testing::WithParamInterface<Headers> {};

// Containers that keep the headers of the pictures themselves get pictures without.
TEST_P(ReencodeHeaders, headers_areWhereTheContainerWantsThem) {
    constexpr std::string_view kLayerHeader("\0\0\1\x20", 4); // of MPEG-4
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_MP3);

    const std::string coded = codedPictures(made(smallSource(), GetParam().extension));

    ASSERT_FALSE(coded.empty());
    EXPECT_EQ(coded.find(kLayerHeader) != std::string::npos, GetParam().inPictures);
}

INSTANTIATE_TEST_SUITE_P(Containers, ReencodeHeaders,
                         testing::Values(Headers{"mp4", false}, Headers{"mov", false},
                                         Headers{"mkv", false}, Headers{"wmv", false},
                                         Headers{"avi", true}, Headers{"ts", true}),
                         [](const auto& tested) { return std::string(tested.param.extension); });

} // namespace
} // namespace velmora::test
