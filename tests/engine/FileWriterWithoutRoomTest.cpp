// What is told of a file that may not become as large as it is to be.

#include "FileSizeLimit.h"
#include "FileWriterSupport.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <string>

namespace velmora::test {
namespace {

class FileWriterWithoutRoom : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FileWriterWithoutRoom, close_reportsTheFailedWrite) {
    const TemporaryFolder folder;
    const FileSizeLimit limit(GetParam());
    const std::size_t descriptors = openDescriptors();
    const std::size_t threadsBefore = threads();
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, someBytes(GetParam() + 1));

    EXPECT_EQ(writer.close(), AVERROR(EFBIG));
    EXPECT_EQ(writer.error(), AVERROR(EFBIG));
    EXPECT_EQ(writer.close(), AVERROR(EFBIG));
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(threadsOnceEnded(threadsBefore), threadsBefore);
}

TEST_P(FileWriterWithoutRoom, justEnough_isNoFailure) {
    const TemporaryFolder folder;
    const FileSizeLimit limit(GetParam());
    const Bytes bytes = someBytes(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, bytes);

    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

INSTANTIATE_TEST_SUITE_P(Limits, FileWriterWithoutRoom,
                         ::testing::Values(1, 1000, kMiB - 1, kMiB, 3 * kMiB + 100, 17 * kMiB),
                         [](const auto& tested) { return std::to_string(tested.param); });

} // namespace
} // namespace velmora::test
