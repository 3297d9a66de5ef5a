// Where encoders put their headers: into the stream, or apart from it for the container.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace velmora::test {
namespace {

struct Container {
    const char* extension;
    bool soundApart;
    bool picturesApart;
};

void PrintTo(const Container& container, std::ostream* out) {
    *out << container.extension;
}

class EncoderHeaders : public Reencode, public testing::WithParamInterface<Container> {};

TEST_P(EncoderHeaders, headers_standApartWhereTheContainerWantsThem) {
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    std::atomic<int> sound{-1};
    std::atomic<int> pictures{-1};
    const FaultyMedia watch({.encode = [&](const AVCodecContext& encoder, const AVFrame*) {
        const int apart = (encoder.flags & AV_CODEC_FLAG_GLOBAL_HEADER) != 0 ? 1 : 0;
        (encoder.codec_type == AVMEDIA_TYPE_AUDIO ? sound : pictures) = apart;
        return false;
    }});

    const std::string output = folder_ / (std::string("out.") + GetParam().extension);
    ASSERT_EQ(cut(mediaPath("mpeg4.mp4"), 0, 500, output).states, std::vector{1});

    EXPECT_EQ(sound, GetParam().soundApart ? 1 : 0);
    EXPECT_EQ(pictures, GetParam().picturesApart ? 1 : 0);
}

// For sound, the name of the container decides; for pictures, what it says of itself.
INSTANTIATE_TEST_SUITE_P(Containers, EncoderHeaders,
                         testing::Values(Container{"mp4", true, true}, Container{"mov", true, true},
                                         Container{"3gp", true, true},
                                         Container{"mkv", false, true},
                                         Container{"avi", false, false}),
                         [](const auto& parameter) {
                             return std::string(parameter.param.extension);
                         });

} // namespace
} // namespace velmora::test
