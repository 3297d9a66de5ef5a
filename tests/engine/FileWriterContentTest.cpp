// That a file holds what was written to it, of every size and in every order.

#include "FileWriterSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <string>

namespace velmora::test {
namespace {

std::size_t pick(std::mt19937& random, std::span<const std::size_t> from) {
    return from[random() % from.size()];
}

class FileWriterOfSequence : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(FileWriterOfSequence, writesAndSeeks_fileHoldsTheSameAsMemory) {
    constexpr std::array kSizes{std::size_t{1}, std::size_t{3}, std::size_t{1000}, 32 * kKiB - 1,
                                32 * kKiB,      32 * kKiB + 1,  100 * kKiB,        kMiB - 1,
                                kMiB,           kMiB + 1,       2 * kMiB + 7};
    constexpr std::array kPlaces{std::size_t{0}, std::size_t{1},  std::size_t{40}, kMiB - 1,
                                 kMiB,           kMiB + 1,        2 * kMiB,        3 * kMiB - 2,
                                 4 * kMiB + 100, 5 * kMiB + 4095, 6 * kMiB};
    const TemporaryFolder folder;
    std::mt19937 random(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    Mirror mirror(writer);
    for (int i = 0; i < 60; ++i) {
        if (random() % 3 == 0) {
            mirror.seek(pick(random, kPlaces));
        }
        mirror.write(someBytes(pick(random, kSizes), static_cast<std::uint32_t>(i)));
    }

    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == mirror.content());
}

INSTANTIATE_TEST_SUITE_P(Seeds, FileWriterOfSequence, ::testing::Range(1U, 13U));

class FileWriterOfSize : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FileWriterOfSize, oneWrite_fileHasJustTheseBytes) {
    const TemporaryFolder folder;
    const Bytes bytes = someBytes(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, bytes);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

TEST_P(FileWriterOfSize, overLargerFile_nothingOfItIsLeft) {
    const TemporaryFolder folder;
    writeFile(folder / "file", someBytes(GetParam() + 3 * kMiB, 6));
    const Bytes bytes = someBytes(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, bytes);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FileWriterOfSize,
                         ::testing::Values(1, 2, 32 * kKiB - 1, 32 * kKiB, 32 * kKiB + 1, kMiB - 1,
                                           kMiB, kMiB + 1, 2 * kMiB, 3 * kMiB - 1, 16 * kMiB - 1,
                                           16 * kMiB, 16 * kMiB + 1, 17 * kMiB, 33 * kMiB + 5),
                         [](const auto& tested) { return std::to_string(tested.param); });

class FileWriterOfSmallSize : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FileWriterOfSmallSize, byteByByte_fileHasJustTheseBytes) {
    const TemporaryFolder folder;
    const Bytes bytes = someBytes(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    for (const std::uint8_t byte : bytes) {
        avio_w8(writer.io(), byte);
    }
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FileWriterOfSmallSize,
                         ::testing::Values(1, 32 * kKiB - 1, 32 * kKiB, 32 * kKiB + 1, kMiB - 1,
                                           kMiB, kMiB + 1, 2 * kMiB),
                         [](const auto& tested) { return std::to_string(tested.param); });

} // namespace
} // namespace velmora::test
