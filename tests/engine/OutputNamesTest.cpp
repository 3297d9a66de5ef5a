// Names of outputs and inputs.

#include "OutputFaultsSupport.h"

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(OutputFaults, unusualName_isTakenAsItIs) {
    const std::vector<std::string> names{"with:colon",
                                         "file:name",
                                         "http:colons",
                                         "100%d",
                                         "%s%n%05d",
                                         "\"double\" and 'single'",
                                         "new\nline",
                                         "back\\slash",
                                         " blanks ",
                                         "-dash",
                                         "*?[a]{b}$HOME`x`|;&<>#",
                                         "Größe",
                                         "日本語",
                                         "שלום",
                                         "\U0001F3AC",
                                         "no\xFFutf8",
                                         std::string(251, 'n')};
    for (const std::string& name : names) {
        const std::string input = folder_ / ("in " + name.substr(0, 200) + ".mp4");
        const std::string output = folder_ / (name + ".mp4");
        fs::copy_file(source_, input);

        EXPECT_EQ(cut(input, 0, 1000, output).states, std::vector{1}) << name;

        EXPECT_TRUE(fs::exists(output)) << name;
        fs::remove(input);
        fs::remove(output);
        EXPECT_TRUE(fs::is_empty(folder_.path())) << name; // nothing under another name
    }
}

TEST_F(OutputFaults, relativeName_isOfTheWorkingFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder_.path());
    for (const char* name : {"out.mp4", "with:colon.mp4", "-y.mp4"}) {
        EXPECT_EQ(cut(source_, 0, 1000, name).states, std::vector{1}) << name;
        EXPECT_TRUE(fs::exists(folder_ / name)) << name;
    }
    fs::current_path(before);
}

TEST_F(OutputFaults, longPath_isNotCutShort) {
    fs::path deep = folder_.path();
    for (int i = 0; i < 8; ++i) {
        deep /= std::string(200, static_cast<char>('a' + i));
    }
    fs::create_directories(deep);
    const std::string output = deep / "out.mp4";
    ASSERT_GT(output.size(), 1024U);

    EXPECT_EQ(cut(source_, 0, 1000, output).states, std::vector{1});
    EXPECT_TRUE(fs::exists(output));
}

} // namespace
} // namespace velmora::test
