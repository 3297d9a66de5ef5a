// Inputs that are broken, or break while they are copied.

#include "OutputFaultsSupport.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using testing::Values;

class InputBroken : public OutputFaults, public testing::WithParamInterface<std::string> {};

TEST_P(InputBroken, input_isCopiedAsFarAsItCanBeRead) {
    const std::string input = mediaPath(GetParam());
    const std::string output = folder_ / "out.mkv";

    const JobResult result = cut(input, 0, 100'000, output);

    EXPECT_EQ(result.states, std::vector{1});
    const std::size_t packets = packetsOf(output, "v:0").size();
    EXPECT_GT(packets, 0U);
    EXPECT_NEAR(static_cast<double>(packets), static_cast<double>(packetsOf(input, "v:0").size()),
                2.0);
}

INSTANTIATE_TEST_SUITE_P(Media, InputBroken,
                         Values("damaged.mp4", "damaged.ts", "damaged.avi", "cut-off.ts",
                                "cut-off.mkv", "cut-off.avi"),
                         [](const auto& parameter) { return asTestName(parameter.param); });

TEST_F(OutputFaults, inputCutOffInMidPacket_isJoinedWithTheNext) {
    const std::string broken = mediaPath("cut-off.mkv");
    const std::string whole = mediaPath("h264-bframes.mkv");
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(join({broken, whole, broken}, output).states, (std::vector{1, 1, 1}));
    EXPECT_GE(packetsOf(output, "v:0").size(),
              packetsOf(whole, "v:0").size() + 2 * packetsOf(broken, "v:0").size() - 2);
}

TEST_F(OutputFaults, inputOfEveryLength_neverBreaksTheRun) {
    const Bytes whole = readFile(mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=25:duration=1"
                                             " -c:v mpeg4 -g 12",
                                             "small.mkv"));
    const std::string input = folder_ / "in.mkv";
    const std::string output = folder_ / "out.mp4";
    for (std::size_t size = 0; size < whole.size(); size += 97) {
        writeFile(input, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));

        const JobResult result = cut(input, 0, 1000, output);

        EXPECT_TRUE(result.states.at(0) == 1 || result.states.at(0) == 2) << size;
        EXPECT_EQ(result.index, 1) << size;
    }
}

TEST_F(OutputFaults, damagedBytes_neverBreakTheRun) {
    const Bytes whole = readFile(mediaMadeBy("-f lavfi -i testsrc2=size=32x32:rate=25:duration=1"
                                             " -c:v mpeg4 -g 12",
                                             "small.mp4"));
    const std::string input = folder_ / "in.mp4";
    const std::string output = folder_ / "out.mkv";
    for (std::size_t at = 0; at < whole.size(); at += 101) {
        Bytes damaged = whole;
        damaged[at] = static_cast<std::uint8_t>(~damaged[at]);
        writeFile(input, damaged);

        const JobResult result = cut(input, 0, 1000, output);

        // Damage may hide the video stream, which ends the run.
        const bool ended = result.states.at(0) == 255 && result.index == 0;
        const bool counted = result.states.at(0) != 255 && result.index == 1;
        EXPECT_TRUE(ended || counted) << at;
    }
}

class InputVanishing : public OutputFaults {
protected:
    /// Joins a large file of which something becomes while it is copied, and another.
    JobResult joinWhile(const std::function<void()>& vanish) {
        fs::copy_file(largeSource(), input_);
        fillJoin({input_, largeSource()}, output_);
        const AtRunPoint watch(RunPoint::Packet, [&](int number) {
            if (number == 5) {
                vanish();
            }
        });
        return run();
    }

    std::size_t packets() { return packetsOf(output_, "v:0").size(); }

    const std::string input_ = folder_ / "large.mp4";
    const std::string output_ = folder_ / "out.mkv";
};

TEST_F(InputVanishing, removedInput_isCopiedInFull) {
    EXPECT_EQ(joinWhile([&] { fs::remove(input_); }).states, (std::vector{1, 1}));
    EXPECT_EQ(packets(), 200U);
}

TEST_F(InputVanishing, truncatedInput_endsThereAndTheNextGoesOn) {
    const JobResult result = joinWhile([&] { fs::resize_file(input_, 1'000'000); });

    EXPECT_EQ(result.states, (std::vector{1, 1}));
    EXPECT_EQ(result.index, 2);
    EXPECT_GT(packets(), 100U);
    EXPECT_LT(packets(), 200U);
}

TEST_F(InputVanishing, removedLaterInput_failsAlone) {
    const std::string later = folder_ / "later.mp4";
    fs::copy_file(largeSource(), later);
    fillJoin({largeSource(), later, largeSource()}, output_);
    const AtRunPoint watch(RunPoint::Packet, [&](int number) {
        if (number == 5) {
            fs::remove(later);
        }
    });

    EXPECT_EQ(run().states, (std::vector{1, 2, 1}));
    EXPECT_EQ(packets(), 200U);
}

} // namespace
} // namespace velmora::test
