#include "InputFiles.h"
#include "NestedSupport.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

namespace velmora::test {
namespace {

/// Called once, after the engine's next look at a file that it has found.
thread_local std::function<void()> afterNextLook;

} // namespace
} // namespace velmora::test

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
int __real_fstat(int descriptor, struct stat* status);

int __wrap_fstat(int descriptor, struct stat* status) {
    const int result = __real_fstat(descriptor, status);
    if (const auto act = std::exchange(velmora::test::afterNextLook, nullptr)) {
        act();
    }
    return result;
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

/// An input whose demuxer asks for further files.
class NestedOpening : public NestedFiles {
protected:
    NestedOpening() {
        EXPECT_EQ(files_.open(), 0);
        EXPECT_GE(files_.attachTo(*context_), 0);
    }
    ~NestedOpening() override { avformat_free_context(context_); }

    int opened(const std::string& url) {
        AVIOContext* io = nullptr;
        const int result = context_->io_open(context_, &io, url.c_str(), AVIO_FLAG_READ, nullptr);
        if (result >= 0) {
            EXPECT_GT(avio_size(io), 0);
            EXPECT_EQ(context_->io_close2(context_, io), 0);
        }
        return result;
    }

    StopFlag stop_{0};
    InputFiles files_{part_, &stop_};
    AVFormatContext* context_ = avformat_alloc_context();
};

TEST_F(NestedOpening, whatIsNoRegularFile_isRefused) {
    const std::string pipe = inside_ + "/pipe.ts";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(opened(pipe), AVERROR(EINVAL));
    EXPECT_EQ(opened(inside_ + "/below"), AVERROR(EISDIR));
    EXPECT_EQ(opened("/dev/zero"), AVERROR(EACCES));
    EXPECT_EQ(opened(inside_ + "/missing"), AVERROR(ENOENT));
    EXPECT_EQ(opened(""), AVERROR(ENOENT));
}

TEST_F(NestedOpening, addressOfAnotherKind_isRefusedEvenWhereAFileHasThatName) {
    const fs::path before = fs::current_path();
    fs::current_path(inside_);
    for (const std::string name : {"http:x", "crypto:x", "crypto+file:x", "data:x", "concat:x",
                                   "subfile,,start,0,end,0,,:x", "nothing:x"}) {
        writeFile(name, "content");
        EXPECT_EQ(opened(name), AVERROR(EACCES)) << name;
    }
    EXPECT_EQ(opened("file:part.ts"), 0);
    fs::current_path(before);
}

TEST_F(NestedOpening, openDescriptorByItsName_countsAsTheFileItIsOf) {
    const FileDescriptor inside(::open(part_.c_str(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor outside(::open(secret_.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(opened("/proc/self/fd/" + std::to_string(inside.get())), 0);
    EXPECT_EQ(opened("/proc/self/fd/" + std::to_string(outside.get())), AVERROR(EACCES));
}

TEST_F(NestedOpening, nameThatComesToMeanAnotherFile_opensTheOneThatWasLookedAt) {
    const OpenWatch secret(secret_);
    const std::string name = inside_ + "/changing.ts";
    fs::create_symlink("part.ts", name);
    afterNextLook = [&] {
        fs::remove(name);
        fs::create_symlink(secret_, name);
    };
    EXPECT_EQ(opened(name), 0);
    EXPECT_EQ(opened(name), AVERROR(EACCES)); // it has changed
    EXPECT_EQ(secret.openings(), 0);
}

TEST_F(NestedOpening, folderThatHasMoved_stillHasItsFiles) {
    fs::rename(inside_, folder_ / "moved");
    EXPECT_EQ(opened(folder_ / "moved/part.ts"), 0);
    fs::create_directory(inside_);
    writeFile(inside_ + "/new.ts", "another folder by the old name");
    EXPECT_EQ(opened(inside_ + "/new.ts"), AVERROR(EACCES));
}

TEST_F(NestedOpening, raisedFlag_endsReading) {
    AVIOContext* io = nullptr;
    ASSERT_EQ(context_->io_open(context_, &io, part_.c_str(), AVIO_FLAG_READ, nullptr), 0);
    stop_ = 1;
    avio_r8(io);
    EXPECT_EQ(io->error, AVERROR_EXIT);
    context_->io_close2(context_, io);
}

TEST_F(NestedOpening, contextOfADemuxersOwn_mayOpenNothing) {
    AVFormatContext* own = avformat_alloc_context();
    own->io_open = context_->io_open;
    AVIOContext* io = nullptr;
    EXPECT_EQ(own->io_open(own, &io, part_.c_str(), AVIO_FLAG_READ, nullptr), AVERROR(EACCES));
    EXPECT_EQ(io, nullptr);
    avformat_free_context(own);
}

TEST_F(NestedOpening, severalAtATime_areClosedOneByOne) {
    const std::size_t before = openDescriptors();
    std::array<AVIOContext*, 3> parts{};
    for (AVIOContext*& part : parts) {
        ASSERT_EQ(context_->io_open(context_, &part, part_.c_str(), AVIO_FLAG_READ, nullptr), 0);
    }
    context_->io_close2(context_, parts[1]);
    EXPECT_EQ(openDescriptors(), before + 2);
    EXPECT_EQ(avio_r8(parts[0]), avio_r8(parts[2]));
    context_->io_close2(context_, parts[0]);
    context_->io_close2(context_, parts[2]);
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace velmora::test
