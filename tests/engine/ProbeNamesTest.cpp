// A name is a name, whatever characters it has.

#include "ProbeSupport.h"
#include "TestMedia.h"

#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

class ProbeOfName : public Probe, public ::testing::WithParamInterface<std::string> {};

TEST_P(ProbeOfName, anyName_isOpened) {
    const TemporaryFolder folder;
    const std::string path = folder / GetParam();
    fs::copy_file(mediaPath("h264.mp4"), path);
    EXPECT_EQ(probeOf(path), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
    EXPECT_EQ(engine().durationUs, 4'000'000);
}

INSTANTIATE_TEST_SUITE_P(Names, ProbeOfName,
                         ::testing::Values("a:b.mp4", "http:x.mp4", "pipe:1", "concat:a|b.mp4",
                                           "100%.mp4", "%d.mp4", "%03d%s%n.mp4",
                                           "it's \"quoted\".mp4", "`$(id)`.mp4", "two\nlines.mp4",
                                           "tab\there.mp4", "  spaces  .mp4", "-i.mp4", "~.mp4",
                                           "#?&;*[a].mp4", "back\\slash.mp4", "Größe é.mp4",
                                           "видео.mp4", "動画ファイル.mp4", "فيديو.mp4",
                                           "वीडियो.mp4", "🎬.mp4", "not utf-8 \xff\xfe.mp4",
                                           "no extension", "wrong.txt", "misleading.png"));

TEST_F(Probe, relativeNameWithColon_isAPlainName) {
    const TemporaryFolder folder;
    fs::copy_file(mediaPath("h264.mp4"), folder / "file:x.mp4");
    fs::copy_file(mediaPath("h264.mp4"), folder / "data:x.mp4");
    const auto before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(probeOf("file:x.mp4"), 0);
    EXPECT_EQ(probeOf("data:x.mp4"), 0);
    EXPECT_EQ(probeOf("./data:x.mp4"), 0);
    fs::current_path(before);
}

TEST_F(Probe, link_isFollowed) {
    const TemporaryFolder folder;
    fs::create_symlink(mediaPath("h264.mp4"), folder / "link.mp4");
    EXPECT_EQ(probeOf(folder / "link.mp4"), 0);
}

} // namespace
} // namespace velmora::test
