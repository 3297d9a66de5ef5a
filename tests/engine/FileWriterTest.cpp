#include "FileDescriptor.h"
#include "FileSizeLimit.h"
#include "FileWriterSupport.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST(FileWriter, bigFile_takesNoMoreRoomThanItsBytes) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    const Bytes bytes = someBytes(kMiB);
    for (int i = 0; i < 40; ++i) {
        write(writer, bytes);
    }
    EXPECT_EQ(writer.close(), 0);
    struct stat status {};
    ASSERT_EQ(stat((folder / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, static_cast<off_t>(40 * kMiB));
    EXPECT_LE(status.st_blocks * 512, static_cast<off_t>(41 * kMiB));
}

// Writing into space that was reserved before takes less time. A file system that reserves nothing
// is skipped.
TEST(FileWriter, bigFile_hasRoomReservedWhileItIsWritten) {
    const TemporaryFolder folder;
    const FileDescriptor other(
        open((folder / "other").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    if (fallocate(other.get(), FALLOC_FL_KEEP_SIZE, 0, 4096) != 0) {
        GTEST_SKIP() << "this file system reserves nothing";
    }
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    const Bytes bytes = someBytes(kMiB);
    for (const int written : {20, 40}) { // again once the first room is full
        for (int i = 0; i < 20; ++i) {
            write(writer, bytes);
        }
        struct stat status {};
        ASSERT_EQ(stat((folder / "file").c_str(), &status), 0);
        EXPECT_EQ(status.st_size, static_cast<off_t>(written * kMiB));
        EXPECT_GE(status.st_blocks * 512, static_cast<off_t>((written + 7) * kMiB));
    }
    EXPECT_EQ(writer.close(), 0);
}

TEST(FileWriter, seekBeyondTheEnd_gapReadsAsZeros) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    Mirror mirror(writer);
    mirror.write(someBytes(10));
    mirror.seek(3 * kMiB + 17);
    mirror.write(someBytes(10));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == mirror.content());
}

TEST(FileWriter, seekBeyondTheEndWithoutWriting_addsNothing) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, someBytes(10));
    avio_seek(writer.io(), static_cast<std::int64_t>(2 * kMiB), SEEK_SET);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(readFile(folder / "file"), someBytes(10));
}

TEST(FileWriter, seeksOfEveryKind_tellWhereTheyWent) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, someBytes(100'000));
    avio_flush(writer.io());

    EXPECT_EQ(avio_size(writer.io()), 100'000);
    EXPECT_EQ(avio_seek(writer.io(), 500, SEEK_SET), 500);
    EXPECT_EQ(avio_seek(writer.io(), 20, SEEK_CUR), 520);
    EXPECT_LT(avio_seek(writer.io(), -600, SEEK_CUR), 0);
    EXPECT_LT(avio_seek(writer.io(), -1, SEEK_SET), 0);
    EXPECT_EQ(avio_size(writer.io()), 100'000);
}

TEST(FileWriter, headerWrittenAgain_isWhatTheFileBeginsWith) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    Mirror mirror(writer);
    mirror.write(Bytes(40, 0));
    for (int i = 0; i < 50; ++i) {
        mirror.write(someBytes(100'003, static_cast<std::uint32_t>(i)));
    }
    mirror.seek(0);
    mirror.write(Bytes(40, 0xAB));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == mirror.content());
}

TEST(FileWriter, existingFile_keepsItsContentUntilSomethingIsWritten) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "what was there before");
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    EXPECT_EQ(readFile(folder / "file").size(), 21U);
    avio_seek(writer.io(), 0, SEEK_SET);
    avio_flush(writer.io());
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(readFile(folder / "file").size(), 21U);
}

TEST(FileWriter, existingFile_isKeptByItsPlaceAndRights) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "what was there before");
    fs::permissions(folder / "file", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("file", folder / "link");
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "link"), 0);
    write(writer, someBytes(5));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(readFile(folder / "file"), someBytes(5));
    EXPECT_EQ(fs::status(folder / "file").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST(FileWriter, newFileWithoutAByte_isRemovedAgain) {
    const TemporaryFolder folder;
    {
        FileWriter writer;
        ASSERT_EQ(writer.open(folder / "file"), 0);
        EXPECT_EQ(writer.close(), 0);
    }
    {
        const std::string path = folder / "other";
        FileWriter writer;
        ASSERT_EQ(writer.open(path), 0);
    }
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(FileWriter, existingEmptyFileWithoutAByte_stays) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(fs::exists(folder / "file"));
}

TEST(FileWriter, destroyedWithoutClose_fileHasAllBytes) {
    const TemporaryFolder folder;
    const Bytes bytes = someBytes(3 * kMiB + 11);
    {
        FileWriter writer;
        ASSERT_EQ(writer.open(folder / "file"), 0);
        write(writer, bytes);
    }
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

TEST(FileWriter, closedTwice_saysTheSame) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, someBytes(10));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(writer.error(), 0);
}

TEST(FileWriter, openAndClosed_leavesNoDescriptorOrThread) {
    const TemporaryFolder folder;
    const std::size_t descriptors = openDescriptors();
    const std::size_t threadsBefore = threads();
    {
        FileWriter writer;
        ASSERT_EQ(writer.open(folder / "file"), 0);
        write(writer, someBytes(2 * kMiB));
        EXPECT_EQ(openDescriptors(), descriptors + 1);
        EXPECT_EQ(writer.close(), 0);
        EXPECT_EQ(openDescriptors(), descriptors);
        EXPECT_EQ(threadsOnceEnded(threadsBefore), threadsBefore);
    }
    {
        const std::string path = folder / "other";
        FileWriter writer;
        ASSERT_EQ(writer.open(path), 0);
        write(writer, someBytes(kMiB));
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(threadsOnceEnded(threadsBefore), threadsBefore);
}

TEST(FileWriter, afterAFailedWrite_nothingMoreIsWritten) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    {
        FileSizeLimit limit(kMiB);
        write(writer, someBytes(3 * kMiB));
        EXPECT_LT(writer.error(), 0);
    }
    write(writer, someBytes(3 * kMiB));
    avio_flush(writer.io());
    EXPECT_EQ(writer.io()->error, AVERROR(EFBIG));
    EXPECT_EQ(writer.close(), AVERROR(EFBIG));
    EXPECT_EQ(fs::file_size(folder / "file"), kMiB);
}

} // namespace
} // namespace velmora::test
