// Which output a run takes: its format, what it replaces, and that it is none of the inputs.

#include "RunSupport.h"

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Run, existingOutput_isReplacedAsAWhole) {
    writeFile(output_, Bytes(3'000'000, 'x'));

    EXPECT_EQ(cut(source_, 0, 1000, output_).states, std::vector{1});

    const std::string fresh = folder_ / "fresh.mp4";
    cut(source_, 0, 1000, fresh);
    EXPECT_EQ(readFile(output_), readFile(fresh));
}

TEST_F(Run, extensionInCapitals_isKnown) {
    EXPECT_EQ(cut(source_, 0, 1000, folder_ / "OUT.MP4").states, std::vector{1});
}

TEST_F(Run, unknownOutputFormat_failsAllInputs) {
    for (const char* name : {"out.unknown", "out", "mp4", ".mp4x"}) {
        EXPECT_EQ(join({source_, source_}, folder_ / name).states, (std::vector{2, 2})) << name;
        EXPECT_FALSE(fs::exists(folder_ / name)) << name;
        // The format comes before the look for video.
        EXPECT_EQ(join({mediaPath("audio-only.m4a")}, folder_ / name).states, std::vector{2})
            << name;
    }
}

TEST_F(Run, unknownOutputFormatOfLaterInput_failsThatInput) {
    fillJoin({source_, source_, source_}, output_);
    engine_.outputPaths[1] = folder_ / "out.unknown";

    EXPECT_EQ(run().states, (std::vector{1, 2, 1}));
}

class RunOntoItself : public Run {
protected:
    /// The input's content is as before, whatever the name it was to be overwritten by.
    void expectRefused(const std::string& output, const std::vector<std::string>& inputs) {
        EXPECT_EQ(join(inputs, output).states, std::vector(inputs.size(), 2));
        EXPECT_EQ(readFile(input_), content_);
    }

    const std::string input_ = copyOfMedia("mpeg4.mp4", folder_);
    const Bytes content_ = readFile(input_);
};

TEST_F(RunOntoItself, samePath_failsAndLeavesTheInput) {
    expectRefused(input_, {input_});
    expectRefused(input_, {input_, source_});
    EXPECT_EQ(cut(input_, 0, 1000, input_).states, std::vector{2});
    EXPECT_EQ(readFile(input_), content_);
}

TEST_F(RunOntoItself, pathByAnotherSpelling_failsAndLeavesTheInput) {
    expectRefused((folder_.path() / "." / "mpeg4.mp4").string(), {input_});
}

TEST_F(RunOntoItself, symbolicLink_failsAndLeavesTheInput) {
    fs::create_symlink(input_, output_);
    expectRefused(output_, {input_});
    expectRefused(input_, {output_});
}

TEST_F(RunOntoItself, hardLink_failsAndLeavesTheInput) {
    fs::create_hard_link(input_, output_);
    expectRefused(output_, {input_});
    EXPECT_EQ(readFile(output_), content_);
}

TEST_F(RunOntoItself, laterInput_failsAllAndLeavesTheInput) {
    expectRefused(input_, {source_, input_});
    expectRefused(input_, {source_, source_, missing_, input_});
}

} // namespace
} // namespace velmora::test
