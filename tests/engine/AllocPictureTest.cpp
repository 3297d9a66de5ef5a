#include "ConversionEngine.h"
#include "TestMedia.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
#include <libavutil/pixdesc.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace velmora::test {
namespace {

struct Layout {
    AVPixelFormat format;
    int width;
    int height;
};

class AllocPicture : public ::testing::TestWithParam<Layout> {};

TEST_P(AllocPicture, planes_followEachOtherWithoutPadding) {
    const auto [format, width, height] = GetParam();
    const PictureHandle picture = ConversionEngine::allocPicture(format, width, height);

    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->format, format);
    EXPECT_EQ(picture->width, width);
    EXPECT_EQ(picture->height, height);
    std::array<std::uint8_t*, 4> planes{};
    std::array<int, 4> strides{};
    const int size = av_image_fill_arrays(planes.data(), strides.data(), picture->data[0], format,
                                          width, height, 1);
    ASSERT_GT(size, 0);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        EXPECT_EQ(picture->data[i], planes[i]) << "plane " << i;
        EXPECT_EQ(picture->linesize[i], strides[i]) << "plane " << i;
    }
    std::fill_n(picture->data[0], size, std::uint8_t{0x5A}); // all of it may be written
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, AllocPicture,
    ::testing::Values(Layout{AV_PIX_FMT_YUV420P, 320, 240}, Layout{AV_PIX_FMT_YUV420P, 321, 241},
                      Layout{AV_PIX_FMT_YUV411P, 720, 480}, Layout{AV_PIX_FMT_YUVJ422P, 2, 2},
                      Layout{AV_PIX_FMT_RGB24, 320, 240}, Layout{AV_PIX_FMT_BGR24, 7, 3},
                      Layout{AV_PIX_FMT_GRAY8, 1, 1}),
    [](const auto& tested) {
        const Layout& layout = tested.param;
        return asTestName(std::string(av_get_pix_fmt_name(layout.format)) + "_" +
                          std::to_string(layout.width) + "x" + std::to_string(layout.height));
    });

TEST(AllocPictureFailure, badSize_givesNull) {
    av_log_set_level(AV_LOG_QUIET);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, 0, 240), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, 320, 0), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, -320, 240), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, 320, -240), nullptr);
    constexpr int kHuge = std::numeric_limits<int>::max();
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_YUV420P, kHuge, kHuge), nullptr);
    av_log_set_level(AV_LOG_INFO);
}

TEST(AllocPictureFailure, unknownPixelFormat_givesNull) {
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_NONE, 320, 240), nullptr);
    EXPECT_EQ(ConversionEngine::allocPicture(AV_PIX_FMT_NB, 320, 240), nullptr);
}

} // namespace
} // namespace velmora::test
