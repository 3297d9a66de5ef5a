// What is refused when it is to be opened for writing.

#include "FileDescriptor.h"
#include "FileWriterSupport.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST(FileWriterOpening, directory_isRefusedAndLeftAlone) {
    const TemporaryFolder folder;
    FileWriter writer;
    EXPECT_EQ(writer.open(folder.path()), AVERROR(EISDIR));
    EXPECT_TRUE(fs::is_directory(folder.path()));
}

TEST(FileWriterOpening, pipeWithoutReader_isRefusedWithoutWaiting) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    {
        FileWriter writer;
        EXPECT_LT(writer.open(pipe), 0);
    }
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(FileWriterOpening, pipeWithReader_isRefused) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const FileDescriptor reader(::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    {
        FileWriter writer;
        EXPECT_EQ(writer.open(pipe), AVERROR(EINVAL));
    }
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(FileWriterOpening, device_isRefused) {
    for (const char* path : {"/dev/null", "/dev/full"}) {
        FileWriter writer;
        EXPECT_EQ(writer.open(path), AVERROR(EINVAL)) << path;
        EXPECT_TRUE(fs::is_character_file(path));
    }
}

TEST(FileWriterOpening, pathThatCannotBe_givesTheSystemsError) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    FileWriter writer;
    EXPECT_EQ(writer.open(folder / "no/folder"), AVERROR(ENOENT));
    EXPECT_EQ(writer.open(folder / "file/below"), AVERROR(ENOTDIR));
    EXPECT_EQ(writer.open(folder / std::string(300, 'x')), AVERROR(ENAMETOOLONG));
    EXPECT_EQ(writer.open(""), AVERROR(ENOENT));
}

TEST(FileWriterOpening, readOnlyFile_isRefusedAndKept) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser writes every file";
    }
    const TemporaryFolder folder;
    writeFile(folder / "file", "kept");
    fs::permissions(folder / "file", fs::perms::owner_read);
    FileWriter writer;
    EXPECT_EQ(writer.open(folder / "file"), AVERROR(EACCES));
    EXPECT_EQ(readFile(folder / "file").size(), 4U);
}

TEST(FileWriterOpening, refused_leavesNoDescriptorOrThread) {
    const TemporaryFolder folder;
    const std::size_t descriptors = openDescriptors();
    const std::size_t threadsBefore = threads();
    FileWriter directory;
    FileWriter device;
    directory.open(folder.path());
    device.open("/dev/null");
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(threads(), threadsBefore);
}

} // namespace
} // namespace velmora::test
