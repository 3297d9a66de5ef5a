#include "FileWriter.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <random>
#include <span>
#include <thread>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKiB = 1024;
constexpr std::size_t kMiB = 1024 * kKiB;

/// The same bytes for the same seed.
Bytes someBytes(std::size_t count, std::uint32_t seed = 5) {
    std::mt19937_64 random(seed);
    Bytes bytes(count + sizeof(std::uint64_t));
    for (std::size_t i = 0; i < count; i += sizeof(std::uint64_t)) {
        const std::uint64_t number = random();
        std::memcpy(&bytes[i], &number, sizeof(number));
    }
    bytes.resize(count);
    return bytes;
}

void write(FileWriter& writer, std::span<const std::uint8_t> bytes) {
    avio_write(writer.io(), bytes.data(), static_cast<int>(bytes.size()));
}

/// Does the same to a file and to a piece of memory.
class Mirror {
public:
    explicit Mirror(FileWriter& writer) : writer_(writer) {}

    void write(const Bytes& bytes) {
        test::write(writer_, bytes);
        const std::size_t end = position_ + bytes.size();
        content_.resize(std::max(content_.size(), end));
        std::ranges::copy(bytes, content_.begin() + static_cast<std::ptrdiff_t>(position_));
        position_ = end;
    }
    void seek(std::size_t position) {
        const auto target = static_cast<std::int64_t>(position);
        EXPECT_EQ(avio_seek(writer_.io(), target, SEEK_SET), target);
        position_ = position;
    }
    const Bytes& content() const { return content_; }

private:
    FileWriter& writer_;
    Bytes content_;
    std::size_t position_ = 0;
};

std::size_t pick(std::mt19937& random, std::span<const std::size_t> from) {
    return from[random() % from.size()];
}

class FileWriterOfSequence : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(FileWriterOfSequence, WritesAndSeeks_file_holds_the_same_as_memory) {
    constexpr std::array sizes{std::size_t{1}, std::size_t{3}, std::size_t{1000}, 32 * kKiB - 1,
                               32 * kKiB,      32 * kKiB + 1,  100 * kKiB,        kMiB - 1,
                               kMiB,           kMiB + 1,       2 * kMiB + 7};
    constexpr std::array places{std::size_t{0}, std::size_t{1},  std::size_t{40}, kMiB - 1,
                                kMiB,           kMiB + 1,        2 * kMiB,        3 * kMiB - 2,
                                4 * kMiB + 100, 5 * kMiB + 4095, 6 * kMiB};
    const TemporaryFolder folder;
    std::mt19937 random(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    Mirror mirror(writer);
    for (int i = 0; i < 60; ++i) {
        if (random() % 3 == 0) {
            mirror.seek(pick(random, places));
        }
        mirror.write(someBytes(pick(random, sizes), static_cast<std::uint32_t>(i)));
    }

    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == mirror.content());
}

INSTANTIATE_TEST_SUITE_P(Seeds, FileWriterOfSequence, ::testing::Range(1U, 13U));

class FileWriterOfSize : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FileWriterOfSize, OneWrite_file_has_just_these_bytes) {
    const TemporaryFolder folder;
    const Bytes bytes = someBytes(GetParam());
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, bytes);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

TEST_P(FileWriterOfSize, OverLargerFile_nothing_of_it_is_left) {
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

TEST_P(FileWriterOfSmallSize, ByteByByte_file_has_just_these_bytes) {
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

TEST(FileWriter, BigFile_takes_no_more_room_than_its_bytes) {
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
TEST(FileWriter, BigFile_has_room_reserved_while_it_is_written) {
    const TemporaryFolder folder;
    const FileDescriptor other(
        open((folder / "other").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    if (fallocate(other.get(), FALLOC_FL_KEEP_SIZE, 0, 4096) != 0) {
        GTEST_SKIP() << "this file system reserves nothing";
    }
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    const Bytes bytes = someBytes(kMiB);
    for (int i = 0; i < 20; ++i) {
        write(writer, bytes);
    }
    struct stat status {};
    ASSERT_EQ(stat((folder / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, static_cast<off_t>(20 * kMiB));
    EXPECT_GE(status.st_blocks * 512, static_cast<off_t>(28 * kMiB));
    EXPECT_EQ(writer.close(), 0);
}

TEST(FileWriter, SeekBeyondTheEnd_gap_reads_as_zeros) {
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

TEST(FileWriter, SeekBeyondTheEndWithoutWriting_adds_nothing) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, someBytes(10));
    avio_seek(writer.io(), static_cast<std::int64_t>(2 * kMiB), SEEK_SET);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(readFile(folder / "file"), someBytes(10));
}

TEST(FileWriter, SeeksOfEveryKind_tell_where_they_went) {
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

TEST(FileWriter, HeaderWrittenAgain_is_what_the_file_begins_with) {
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

TEST(FileWriter, ExistingFile_keeps_its_content_until_something_is_written) {
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

TEST(FileWriter, ExistingFile_is_kept_by_its_place_and_rights) {
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

TEST(FileWriter, NewFileWithoutAByte_is_removed_again) {
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

TEST(FileWriter, ExistingEmptyFileWithoutAByte_stays) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_TRUE(fs::exists(folder / "file"));
}

TEST(FileWriter, DestroyedWithoutClose_file_has_all_bytes) {
    const TemporaryFolder folder;
    const Bytes bytes = someBytes(3 * kMiB + 11);
    {
        FileWriter writer;
        ASSERT_EQ(writer.open(folder / "file"), 0);
        write(writer, bytes);
    }
    EXPECT_TRUE(readFile(folder / "file") == bytes);
}

TEST(FileWriter, ClosedTwice_says_the_same) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    write(writer, someBytes(10));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(writer.close(), 0);
    EXPECT_EQ(writer.error(), 0);
}

TEST(FileWriter, Directory_is_refused_and_left_alone) {
    const TemporaryFolder folder;
    FileWriter writer;
    EXPECT_EQ(writer.open(folder.path()), AVERROR(EISDIR));
    EXPECT_TRUE(fs::is_directory(folder.path()));
}

TEST(FileWriter, PipeWithoutReader_is_refused_without_waiting) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    {
        FileWriter writer;
        EXPECT_LT(writer.open(pipe), 0);
    }
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(FileWriter, PipeWithReader_is_refused) {
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

TEST(FileWriter, Device_is_refused) {
    for (const char* path : {"/dev/null", "/dev/full"}) {
        FileWriter writer;
        EXPECT_EQ(writer.open(path), AVERROR(EINVAL)) << path;
        EXPECT_TRUE(fs::is_character_file(path));
    }
}

TEST(FileWriter, PathThatCannotBe_gives_the_systems_error) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    FileWriter writer;
    EXPECT_EQ(writer.open(folder / "no/folder"), AVERROR(ENOENT));
    EXPECT_EQ(writer.open(folder / "file/below"), AVERROR(ENOTDIR));
    EXPECT_EQ(writer.open(folder / std::string(300, 'x')), AVERROR(ENAMETOOLONG));
    EXPECT_EQ(writer.open(""), AVERROR(ENOENT));
}

TEST(FileWriter, ReadOnlyFile_is_refused_and_kept) {
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

TEST(FileWriter, OpenAndClosed_leaves_no_descriptor_or_thread) {
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

TEST(FileWriter, Refused_leaves_no_descriptor_or_thread) {
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

/// While one lives, files of this process cannot grow beyond a size; the signal that the system
/// would send is ignored.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::size_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        lift();
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void lift() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
    void (*handler_)(int);
};

class FileWriterWithoutRoom : public ::testing::TestWithParam<std::size_t> {};

TEST_P(FileWriterWithoutRoom, Close_reports_the_failed_write) {
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

TEST_P(FileWriterWithoutRoom, JustEnough_is_no_failure) {
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

void awaitFailure(const FileWriter& writer) {
    while (writer.error() == 0) {
        std::this_thread::yield();
    }
}

TEST(FileWriter, AfterAFailedWrite_nothing_more_is_written) {
    const TemporaryFolder folder;
    FileWriter writer;
    ASSERT_EQ(writer.open(folder / "file"), 0);
    {
        FileSizeLimit limit(kMiB);
        write(writer, someBytes(3 * kMiB));
        awaitFailure(writer);
    }
    write(writer, someBytes(3 * kMiB));
    avio_flush(writer.io());
    EXPECT_EQ(writer.io()->error, AVERROR(EFBIG));
    EXPECT_EQ(writer.close(), AVERROR(EFBIG));
    EXPECT_EQ(fs::file_size(folder / "file"), kMiB);
}

} // namespace
} // namespace velmora::test
