// What becomes of a run when the disk takes no more.

#include "FileSizeLimit.h"
#include "OutputFaultsSupport.h"

#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using testing::Values;

class OutputFull : public OutputFaults, public testing::WithParamInterface<std::string> {
protected:
    const std::string large_ = largeSource();
    const std::string output_ = folder_ / ("out." + GetParam());
};

TEST_P(OutputFull, onlyInput_fails) {
    const FileSizeLimit limit(1'500'000);

    const JobResult result = cut(large_, 0, 4000, output_);

    EXPECT_EQ(result.states, std::vector{2});
    EXPECT_EQ(result.index, 1);
    EXPECT_LE(fs::file_size(output_), 1'500'000U);
}

TEST_P(OutputFull, atTheVeryEnd_failsTheLastInput) {
    cut(source_, 0, 4000, output_);
    const FileSizeLimit limit(fs::file_size(output_) - 1);

    EXPECT_EQ(join({source_}, output_).states, std::vector{2});
}

TEST_P(OutputFull, exactlyFitting_isDone) {
    cut(source_, 0, 4000, output_);
    const FileSizeLimit limit(fs::file_size(output_));

    EXPECT_EQ(cut(source_, 0, 4000, output_).states, std::vector{1});
}

TEST_P(OutputFull, inSecondInput_failsThatAndTheRest) {
    const auto size = static_cast<rlim_t>(fs::file_size(large_));
    const FileSizeLimit limit(size * 3 / 2);

    const JobResult result = join({large_, large_, large_}, output_);

    EXPECT_EQ(result.states, (std::vector{1, 2, 2}));
    EXPECT_EQ(result.index, 3);
}

INSTANTIATE_TEST_SUITE_P(Containers, OutputFull, Values("mp4", "mkv", "avi", "ts"),
                         [](const auto& parameter) { return parameter.param; });

/// A disk of one megabyte, which only this process sees.
bool mountSmallDisk(const std::string& folder) {
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("velmora-test", folder.c_str(), "tmpfs", 0, "size=1m") == 0;
}

TEST_F(OutputFaults, fullDisk_failsTheInput) {
    const std::string source = largeSource();
    const int state = statusOf([&]() -> int {
        if (!mountSmallDisk(folder_.path())) {
            return kNotPermitted;
        }
        return cut(source, 0, 4000, folder_ / "out.mp4").states.at(0);
    });
    if (state == kNotPermitted) {
        GTEST_SKIP() << "no file system can be mounted here";
    }

    EXPECT_EQ(state, 2);
}

} // namespace
} // namespace velmora::test
