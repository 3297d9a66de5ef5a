#include "FileReader.h"
#include "FileWriterSupport.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <random>
#include <vector>

namespace velmora::test {
namespace {

Bytes readAll(AVIOContext* io) {
    Bytes content;
    std::array<std::uint8_t, 5000> block{};
    for (int count = 0; (count = avio_read(io, block.data(), block.size())) > 0;) {
        content.insert(content.end(), block.begin(), block.begin() + count);
    }
    return content;
}

TEST(FileReader, regularFile_isReadWhole) {
    const TemporaryFolder folder;
    const Bytes content = someBytes(3'000'001);
    writeFile(folder / "bytes", content);
    FileReader reader(nullptr);

    ASSERT_EQ(reader.open(folder / "bytes"), 0);
    EXPECT_EQ(avio_size(reader.io()), 3'000'001);
    EXPECT_EQ(readAll(reader.io()), content);
    EXPECT_EQ(avio_feof(reader.io()), 1);
    EXPECT_EQ(reader.io()->error, 0);
}

TEST(FileReader, anySeek_readingGoesOnThere) {
    const TemporaryFolder folder;
    const Bytes content = someBytes(3'000'000);
    writeFile(folder / "bytes", content);
    FileReader reader(nullptr);
    ASSERT_EQ(reader.open(folder / "bytes"), 0);

    std::mt19937 random(4); // the same places in every run
    std::array<std::uint8_t, 3000> block{};
    for (int i = 0; i < 500; ++i) {
        const auto at = static_cast<std::ptrdiff_t>(random() % (content.size() - block.size()));
        ASSERT_EQ(avio_seek(reader.io(), at, SEEK_SET), at);
        ASSERT_EQ(avio_read(reader.io(), block.data(), block.size()),
                  static_cast<int>(block.size()));
        ASSERT_TRUE(std::ranges::equal(
            block, std::span(content).subspan(static_cast<std::size_t>(at), block.size())));
    }
}

TEST(FileReader, emptyFile_opensAndHasNoBytes) {
    const TemporaryFolder folder;
    writeFile(folder / "empty", "");
    FileReader reader(nullptr);
    ASSERT_EQ(reader.open(folder / "empty"), 0);
    EXPECT_EQ(avio_size(reader.io()), 0);
    EXPECT_TRUE(readAll(reader.io()).empty());
}

TEST(FileReader, fileThatGrew_tellsItsNewSize) {
    const TemporaryFolder folder;
    writeFile(folder / "growing", "12345");
    FileReader reader(nullptr);
    ASSERT_EQ(reader.open(folder / "growing"), 0);
    std::filesystem::resize_file(folder / "growing", 50);
    EXPECT_EQ(avio_size(reader.io()), 50);
}

TEST(FileReader, namesThatLookLikeAddresses_arePlainNames) {
    const TemporaryFolder folder;
    for (const char* name : {"http:x", "pipe:0", "a%20b", "%d.png", "concat:a|b", "-", "~"}) {
        writeFile(folder / name, "content");
        FileReader reader(nullptr);
        EXPECT_EQ(reader.open(folder / name), 0) << name;
    }
}

TEST(FileReader, relativePathThatLooksLikeAnAddress_isAPlainName) {
    const TemporaryFolder folder;
    writeFile(folder / "file:name", "content");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open("file:name"), 0);
    FileReader other(nullptr);
    EXPECT_EQ(other.open("file:missing"), AVERROR(ENOENT));
    std::filesystem::current_path(before);
}

TEST(FileReader, missingFile_givesTheSystemsError) {
    const TemporaryFolder folder;
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open(folder / "missing"), AVERROR(ENOENT));
    EXPECT_EQ(reader.open(""), AVERROR(ENOENT));
    writeFile(folder / "file", "");
    EXPECT_EQ(reader.open(folder / "file/below"), AVERROR(ENOTDIR));
    EXPECT_EQ(reader.open(folder / std::string(300, 'x')), AVERROR(ENAMETOOLONG));
    EXPECT_EQ(reader.io(), nullptr);
}

TEST(FileReader, directory_isRefused) {
    const TemporaryFolder folder;
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open(folder.path()), AVERROR(EISDIR));
}

TEST(FileReader, pipe_isRefusedWithoutWaitingForAWriter) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open(pipe), AVERROR(EINVAL));
}

TEST(FileReader, device_isRefused) {
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open("/dev/null"), AVERROR(EINVAL));
    EXPECT_EQ(reader.open("/dev/zero"), AVERROR(EINVAL));
}

TEST(FileReader, socket_isRefused) {
    const TemporaryFolder folder;
    const std::string path = folder / "socket";
    ASSERT_EQ(mknod(path.c_str(), S_IFSOCK | 0600, 0), 0);
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open(path), AVERROR(EINVAL));
}

TEST(FileReader, link_isFollowed) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    std::filesystem::create_symlink("file", folder / "link");
    std::filesystem::create_symlink("loop", folder / "loop");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open(folder / "link"), 0);
    FileReader other(nullptr);
    EXPECT_EQ(other.open(folder / "loop"), AVERROR(ELOOP));
    EXPECT_EQ(other.open(folder / "dangling"), AVERROR(ENOENT));
}

TEST(FileReader, unreadableFile_isRefused) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser reads every file";
    }
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    std::filesystem::permissions(folder / "file", std::filesystem::perms::none);
    FileReader reader(nullptr);
    EXPECT_EQ(reader.open(folder / "file"), AVERROR(EACCES));
}

TEST(FileReader, raisedFlag_endsReading) {
    const TemporaryFolder folder;
    writeFile(folder / "bytes", someBytes(3'000'000));
    StopFlag stop{0};
    FileReader reader(&stop);
    ASSERT_EQ(reader.open(folder / "bytes"), 0);
    EXPECT_EQ(avio_r8(reader.io()), someBytes(1)[0]);

    stop = 1;
    const Bytes rest = readAll(reader.io());

    EXPECT_LT(rest.size(), 2'999'999U);
    EXPECT_EQ(reader.io()->error, AVERROR_EXIT);
}

TEST(FileReader, identity_isThatOfTheOpenedFile) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    const auto expected = FileIdentity::ofPath(folder / "file");
    FileReader reader(nullptr);
    ASSERT_EQ(reader.open(folder / "file"), 0);
    ASSERT_TRUE(expected);
    EXPECT_EQ(reader.identity(), *expected);

    std::filesystem::remove(folder / "file");
    writeFile(folder / "file", "another");
    EXPECT_EQ(reader.identity(), *expected);
}

TEST(FileReader, destroyed_leavesNoDescriptorOpen) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    const std::size_t before = openDescriptors();
    {
        FileReader reader(nullptr);
        ASSERT_EQ(reader.open(folder / "file"), 0);
        EXPECT_EQ(openDescriptors(), before + 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace velmora::test
