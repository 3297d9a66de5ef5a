#include "AvHandles.h"
#include "ConversionEngine.h"
#include "SnapshotReference.h"
#include "TestFiles.h"

extern "C" {
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

/// Pixels that all differ from their neighbours.
Bytes somePixels(int width, int height) {
    Bytes pixels(static_cast<std::size_t>(3 * width * height));
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
    }
    return pixels;
}

class WriteBmp : public ::testing::Test {
protected:
    void SetUp() override { av_log_set_level(AV_LOG_QUIET); }
    void TearDown() override { av_log_set_level(AV_LOG_INFO); }
};
using ScaleToBmp = WriteBmp;

void writeSomePicture(const std::string& path, int width = 4, int height = 3) {
    Bytes pixels = somePixels(width, height);
    ConversionEngine::writeBmp(pixels.data(), path, width, height);
}

TEST_F(WriteBmp, header_isRightInEveryByte) {
    const TemporaryFolder folder;
    Bytes pixels(std::size_t{3} * 320 * 240);
    ConversionEngine::writeBmp(pixels.data(), folder / "picture.bmp", 320, 240);

    Bytes header = readFile(folder / "picture.bmp");
    ASSERT_EQ(header.size(), 230'454U);
    header.resize(54);
    const Bytes expected{
        'B',  'M',              // 0: what it is
        0x36, 0x84, 0x03, 0x00, // 2: 230,454 bytes
        0,    0,                // 6
        0,    0,                // 8
        54,   0,    0,    0,    // 10: where the pixels begin
        40,   0,    0,    0,    // 14: size of the information header
        0x40, 0x01, 0,    0,    // 18: width 320
        0xF0, 0x00, 0,    0,    // 22: height 240
        1,    0,                // 26: planes
        24,   0,                // 28: bits of a pixel
        0,    0,    0,    0,    // 30: not compressed
        0x00, 0x84, 0x03, 0x00, // 34: 230,400 bytes of pixels
        0,    0,    0,    0,    // 38
        0,    0,    0,    0,    // 42
        0,    0,    0,    0,    // 46
        0,    0,    0,    0,    // 50
    };
    EXPECT_EQ(header, expected);
}

TEST_F(WriteBmp, rows_areStoredFromTheBottomUp) {
    const TemporaryFolder folder;
    Bytes pixels = somePixels(4, 3);
    const Bytes expected = bmpFileOf(pixels, 4, 3);
    ConversionEngine::writeBmp(pixels.data(), folder / "picture.bmp", 4, 3);
    EXPECT_EQ(readFile(folder / "picture.bmp"), expected);
}

TEST_F(WriteBmp, rows_areFlippedInTheBufferToo) {
    const TemporaryFolder folder;
    for (const int height : {1, 2, 3, 4, 7}) {
        Bytes pixels = somePixels(4, height);
        Bytes flipped = bmpFileOf(pixels, 4, static_cast<std::uint32_t>(height));
        flipped.erase(flipped.begin(), flipped.begin() + 54);
        ConversionEngine::writeBmp(pixels.data(), folder / "picture.bmp", 4, height);
        EXPECT_EQ(pixels, flipped) << height;
    }
}

struct Size {
    int width;
    int height;
    std::uint32_t imageBytes; ///< as the header says
};

class WriteBmpOfSize : public ::testing::TestWithParam<Size> {};

TEST_P(WriteBmpOfSize, widthThatWouldNeedPadding_onlyTheHeaderCountsIt) {
    const auto [width, height, imageBytes] = GetParam();
    const TemporaryFolder folder;
    Bytes pixels = somePixels(width, height);
    const Bytes expected =
        bmpFileOf(pixels, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    ConversionEngine::writeBmp(pixels.data(), folder / "picture.bmp", width, height);

    const Bytes file = readFile(folder / "picture.bmp");
    EXPECT_EQ(file, expected);
    ASSERT_EQ(file.size(), 54 + pixels.size());
    const auto numberAt = [&file](std::size_t place) {
        return file[place] + 256U * file[place + 1] + 65536U * file[place + 2];
    };
    EXPECT_EQ(numberAt(2), imageBytes + 54);
    EXPECT_EQ(numberAt(34), imageBytes);
}

INSTANTIATE_TEST_SUITE_P(Sizes, WriteBmpOfSize,
                         ::testing::Values(Size{1, 1, 4}, Size{2, 2, 16}, Size{3, 3, 36},
                                           Size{4, 4, 48}, Size{5, 2, 32}, Size{321, 7, 6748},
                                           Size{322, 3, 2904}, Size{323, 1, 972}),
                         [](const auto& tested) {
                             return std::to_string(tested.param.width) + "x" +
                                    std::to_string(tested.param.height);
                         });

TEST_F(WriteBmp, pictureWithoutPixels_isAHeader) {
    const TemporaryFolder folder;
    ConversionEngine::writeBmp(nullptr, folder / "picture.bmp", 0, 0);
    EXPECT_EQ(readFile(folder / "picture.bmp"), bmpFileOf({}, 0, 0));
}

TEST_F(WriteBmp, billionsOfRowsWithoutPixels_areAHeader) {
    const TemporaryFolder folder;
    ConversionEngine::writeBmp(nullptr, folder / "picture.bmp", 0, 2'000'000'000);
    EXPECT_EQ(readFile(folder / "picture.bmp").size(), 54U);
}

TEST_F(WriteBmp, negativeSize_writesNothing) {
    const TemporaryFolder folder;
    ConversionEngine::writeBmp(nullptr, folder / "picture.bmp", -4, 3);
    ConversionEngine::writeBmp(nullptr, folder / "picture.bmp", 4, -3);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(WriteBmp, largerFile_isReplacedAsAWhole) {
    const TemporaryFolder folder;
    writeFile(folder / "picture.bmp", Bytes(1000, 0xEE));
    writeSomePicture(folder / "picture.bmp");
    EXPECT_EQ(readFile(folder / "picture.bmp").size(), 54U + 36U);
}

TEST_F(WriteBmp, newFile_isForItsOwnerOnly) {
    const TemporaryFolder folder;
    writeSomePicture(folder / "picture.bmp");
    EXPECT_EQ(fs::status(folder / "picture.bmp").permissions() &
                  (fs::perms::group_all | fs::perms::others_all),
              fs::perms::none);
}

TEST_F(WriteBmp, pathThatCannotBe_writesNothing) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "kept");
    writeSomePicture(folder / "missing/picture.bmp");
    writeSomePicture(folder / "file/picture.bmp");
    writeSomePicture(folder / std::string(300, 'x'));
    writeSomePicture("");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
    EXPECT_EQ(readFile(folder / "file").size(), 4U);
}

// The place of the preview is known to all users of the machine: what another one may have put
// there is left alone.

TEST_F(WriteBmp, symbolicLink_isNotFollowed) {
    const TemporaryFolder folder;
    writeFile(folder / "precious", "kept");
    fs::create_symlink("precious", folder / "picture.bmp");
    writeSomePicture(folder / "picture.bmp");
    EXPECT_TRUE(fs::is_symlink(folder / "picture.bmp"));
    EXPECT_EQ(readFile(folder / "precious").size(), 4U);
}

TEST_F(WriteBmp, danglingLink_makesNoFile) {
    const TemporaryFolder folder;
    fs::create_symlink("nothing", folder / "picture.bmp");
    writeSomePicture(folder / "picture.bmp");
    EXPECT_TRUE(fs::is_symlink(folder / "picture.bmp"));
    EXPECT_FALSE(fs::exists(folder / "nothing"));
}

TEST_F(WriteBmp, fileWithAnotherName_isKept) {
    const TemporaryFolder folder;
    writeFile(folder / "precious", "kept");
    fs::create_hard_link(folder / "precious", folder / "picture.bmp");
    writeSomePicture(folder / "picture.bmp");
    EXPECT_EQ(readFile(folder / "precious").size(), 4U);
}

TEST_F(WriteBmp, pipe_isNotWaitedFor) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "picture.bmp";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    writeSomePicture(pipe);
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(WriteBmp, directory_isLeftAlone) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "picture.bmp");
    writeSomePicture(folder / "picture.bmp");
    EXPECT_TRUE(fs::is_empty(folder / "picture.bmp"));
}

TEST_F(WriteBmp, fileOfAnotherUser_isKept) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can give a file away";
    }
    const TemporaryFolder folder;
    const std::string path = folder / "picture.bmp";
    writeFile(path, "kept");
    ASSERT_EQ(chown(path.c_str(), 12345, 12345), 0);
    writeSomePicture(path);
    EXPECT_EQ(readFile(path).size(), 4U);
}

TEST_F(WriteBmp, any_leavesNoDescriptorOpen) {
    const TemporaryFolder folder;
    fs::create_symlink("nothing", folder / "link");
    writeFile(folder / "file", "kept");
    fs::create_hard_link(folder / "file", folder / "other name");
    const std::size_t before = openDescriptors();
    writeSomePicture(folder / "picture.bmp");
    writeSomePicture(folder / "link");
    writeSomePicture(folder / "file");
    writeSomePicture(folder.path());
    EXPECT_EQ(openDescriptors(), before);
}

FrameHandle greyPicture(int width, int height, std::uint8_t level) {
    FrameHandle picture(av_frame_alloc());
    picture->format = AV_PIX_FMT_GRAY8;
    picture->width = width;
    picture->height = height;
    EXPECT_EQ(av_frame_get_buffer(picture.get(), 0), 0);
    std::fill_n(picture->data[0], picture->linesize[0] * height, level);
    return picture;
}

TEST_F(ScaleToBmp, oneColour_fillsAPictureOfTheSizeAskedFor) {
    const TemporaryFolder folder;
    const CodecContextHandle decoder(avcodec_alloc_context3(nullptr));
    const FrameHandle picture = greyPicture(64, 48, 255);
    ConversionEngine::scaleToBmp(folder / "picture.bmp", *decoder, *picture, 32, 16);
    EXPECT_EQ(readFile(folder / "picture.bmp"),
              bmpFileOf(Bytes(std::size_t{3} * 32 * 16, 255), 32, 16));
}

TEST_F(ScaleToBmp, pictureWithoutSize_writesNothing) {
    const TemporaryFolder folder;
    const CodecContextHandle decoder(avcodec_alloc_context3(nullptr));
    const FrameHandle picture(av_frame_alloc());
    picture->format = AV_PIX_FMT_YUV420P;
    ConversionEngine::scaleToBmp(folder / "picture.bmp", *decoder, *picture, 32, 16);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

} // namespace
} // namespace velmora::test
