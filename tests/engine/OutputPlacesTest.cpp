// Places that cannot be written to, and those that only seem so.

#include "CopySupport.h"
#include "OutputFaultsSupport.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(OutputFaults, pathThatCannotBeAFile_failsTheInput) {
    const std::string file = folder_ / "file.mp4";
    const std::string folder = folder_ / "folder.mp4";
    writeFile(file, "content");
    fs::create_directory(folder);
    const std::string longName(256, 'n');
    for (const std::string& output :
         {folder_ / "missing/out.mp4", folder, folder + "/", file + "/out.mp4",
          folder_ / (longName + ".mp4"), std::string("/proc/version.mp4"),
          std::string("/nowhere.velmora/out.mp4")}) {
        const JobResult result = join({source_, source_}, output);

        EXPECT_EQ(result.states, (std::vector{2, 2})) << output;
        EXPECT_EQ(result.index, 2) << output;
    }
    EXPECT_EQ(fs::file_size(file), 7U);
}

TEST_F(OutputFaults, pipeAsOutput_failsWithoutWaitingForAReader) {
    const std::string pipe = folder_ / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_EQ(cut(source_, 0, 1000, pipe).states, std::vector{2});
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(OutputFaults, deviceAsOutput_fails) {
    for (const char* device : {"/dev/null", "/dev/full"}) {
        const std::string link = folder_ / "device.mp4";
        fs::create_symlink(device, link);

        EXPECT_EQ(cut(source_, 0, 1000, link).states, std::vector{2}) << device;
        EXPECT_TRUE(fs::is_symlink(link));
        fs::remove(link);
    }
}

TEST_F(OutputFaults, loopOfLinks_fails) {
    const std::string loop = folder_ / "loop.mp4";
    fs::create_symlink("loop.mp4", loop);

    EXPECT_EQ(cut(source_, 0, 1000, loop).states, std::vector{2});
}

TEST_F(OutputFaults, linkToAnotherFile_writesThere) {
    const std::string target = folder_ / "target.mp4";
    const std::string link = folder_ / "link.mp4";
    fs::create_symlink(target, link);

    EXPECT_EQ(cut(source_, 0, 1000, link).states, std::vector{1});
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(decode(target).complaints, "");
}

/// The exit status of `action` in a process of its own, without the rights of the superuser.
int statusWithoutRights(const std::function<int()>& action) {
    constexpr uid_t kNobody = 65534;
    return statusOf([&] {
        const bool dropped = getuid() != 0 || setuid(kNobody) == 0;
        return dropped ? action() : kNotPermitted;
    });
}

TEST_F(OutputFaults, withoutPermission_failsAndChangesNothing) {
    const std::string input = copyOfMedia("mpeg4.mp4", folder_);
    const std::string closed = folder_ / "closed";
    const std::string open = folder_ / "open";
    fs::create_directory(closed);
    fs::create_directory(open);
    const std::string readOnly = open + "/read-only.mp4";
    writeFile(readOnly, "content");
    fs::permissions(folder_.path(), fs::perms(0755));
    fs::permissions(input, fs::perms(0644));
    fs::permissions(closed, fs::perms(0555));
    fs::permissions(open, fs::perms(0777));
    fs::permissions(readOnly, fs::perms(0444));
    const auto stateOf = [&](const std::string& output) {
        return statusWithoutRights([&] { return cut(input, 0, 1000, output).states.at(0); });
    };

    EXPECT_EQ(stateOf(open + "/out.mp4"), 1); // the input can be read
    EXPECT_EQ(stateOf(closed + "/out.mp4"), 2);
    EXPECT_EQ(stateOf(readOnly), 2);

    EXPECT_TRUE(fs::is_empty(closed));
    EXPECT_EQ(fs::file_size(readOnly), 7U);
}

} // namespace
} // namespace velmora::test
