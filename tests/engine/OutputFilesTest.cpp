// What a run writes: one file, whatever the container.

#include "FaultyMedia.h"
#include "JobSupport.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

/// The content of each file of the folder, by its name.
std::map<std::string, Bytes> contentOf(const fs::path& folder) {
    std::map<std::string, Bytes> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        files[entry.path().filename()] = readFile(entry.path());
    }
    return files;
}

class OutputFiles : public JobTest {
protected:
    OutputFiles() { av_log_set_level(AV_LOG_QUIET); }
    ~OutputFiles() override { av_log_set_level(AV_LOG_INFO); }
};

// Containers of more than one file, by the names of their outputs.

class SeveralFiles : public OutputFiles, public testing::WithParamInterface<std::string> {
protected:
    const std::string source_ = copyOfMedia("mpeg2.ts", folder_);
    const std::string output_ = folder_ / GetParam();
};

TEST_P(SeveralFiles, new_isRefusedBeforeAnythingIsWritten) {
    const auto before = contentOf(folder_.path());

    EXPECT_EQ(join({source_, source_}, output_).states, (std::vector{2, 2}));

    EXPECT_TRUE(contentOf(folder_.path()) == before);
}

TEST_P(SeveralFiles, existing_staysAsItWas) {
    writeFile(output_, "earlier");
    const auto before = contentOf(folder_.path());

    EXPECT_EQ(cut(source_, 0, 1000, output_).states, std::vector{2});

    EXPECT_TRUE(contentOf(folder_.path()) == before);
}

TEST_P(SeveralFiles, cause_isLogged) {
    AtLogLine refusal(" is not written as one file", [](int) {});

    cut(source_, 0, 1000, output_);

    EXPECT_EQ(refusal.seen(), 1);
}

INSTANTIATE_TEST_SUITE_P(Names, SeveralFiles,
                         testing::Values("m.m3u8", "m.mpd", "m.chk", "m%03d.jpg", "%d.png", "m.jpg",
                                         "m.bmp", "m.y", "m.cpk"),
                         [](const auto& parameter) { return asTestName(parameter.param); });

// The play list's first part would have the name of the source.
TEST_F(OutputFiles, playListNamedLikeItsSource_leavesTheSourceAlone) {
    const std::string source = folder_ / "m0.ts";
    fs::copy_file(mediaPath("mpeg2.ts"), source);
    const auto before = contentOf(folder_.path());

    EXPECT_EQ(cut(source, 0, 1000, folder_ / "m.m3u8").states, std::vector{2});

    EXPECT_TRUE(contentOf(folder_.path()) == before);
}

/// The only video, besides raw pictures, that Sega's films take.
std::string cinepakSource() {
    return mediaMadeBy("-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -c:v cinepak",
                       "cinepak.avi");
}

TEST_F(OutputFiles, containerThatIsReadBack_isRefusedAlsoWhereItSuits) {
    const std::string output = folder_ / "out.cpk";
    writeFile(output, "earlier");

    EXPECT_EQ(cut(cinepakSource(), 0, 1000, output).states, std::vector{2});

    EXPECT_EQ(fs::file_size(output), 7U);
}

// All containers that the libraries know.

/// The extensions by which an output's container is chosen.
std::set<std::string> allExtensions() {
    std::set<std::string> extensions;
    void* position = nullptr;
    while (const AVOutputFormat* format = av_muxer_iterate(&position)) {
        std::istringstream list(format->extensions != nullptr ? format->extensions : "");
        for (std::string extension; std::getline(list >> std::ws, extension, ',');) {
            extensions.insert(extension);
        }
    }
    return extensions;
}

/// Files of which each suits other containers.
std::vector<std::string> sources() {
    return {mediaPath("mpeg4.mp4"),
            mediaPath("h264.mp4"),
            mediaPath("mpeg2.ts"),
            mediaPath("pixel.png"),
            mediaMadeBy("-i @mpeg4.mp4 -c:v mjpeg -an", "mjpeg.avi"),
            cinepakSource()};
}

TEST_F(OutputFiles, anyContainer_isRefusedOrWritesOneFile) {
    int written = 0;
    for (const std::string& source : sources()) {
        const fs::path input = folder_.path() / ("in" + fs::path(source).extension().string());
        fs::copy_file(source, input);
        for (const std::string& extension : allExtensions()) {
            for (const std::string& name : {"out." + extension, "out%03d." + extension}) {
                const auto before = contentOf(folder_.path());

                const JobResult result = cut(input, 0, 500, folder_ / name);

                auto files = contentOf(folder_.path());
                written += files.erase(name) > 0 && result.states == std::vector{1} ? 1 : 0;
                EXPECT_TRUE(files == before) << source << " to " << name;
                fs::remove(folder_ / name);
            }
        }
        fs::remove(input);
    }
    EXPECT_GT(written, 100); // most refuse each of the sources
}

// A muxer that has been let in.

TEST_F(OutputFiles, openingAnotherFile_isRefusedToTheMuxer) {
    const std::string other = folder_ / "other.mp4";
    int opened = 0;
    const FaultyMedia atHeader({.begin = [&](const AVFormatContext& output) {
        AVIOContext* io = nullptr;
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): as the muxer would call it
        opened = output.io_open(const_cast<AVFormatContext*>(&output), &io, other.c_str(),
                                AVIO_FLAG_WRITE, nullptr);
        return false;
    }});

    EXPECT_EQ(cut(mediaPath("mpeg4.mp4"), 0, 1000, folder_ / "out.mp4").states, std::vector{1});

    EXPECT_EQ(opened, AVERROR(EACCES));
    EXPECT_FALSE(fs::exists(other));
}

} // namespace
} // namespace velmora::test
