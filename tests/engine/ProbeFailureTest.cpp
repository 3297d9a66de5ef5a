// Files that a probe refuses, and what it leaves then.

#include "ProbeSupport.h"
#include "TestMedia.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

class ProbeFailure : public Probe {
protected:
    void SetUp() override {
        Probe::SetUp();
        descriptors_ = openDescriptors();
    }
    void TearDown() override {
        EXPECT_EQ(openDescriptors(), descriptors_);
        Probe::TearDown();
    }

    static void expectNoStreams() {
        EXPECT_EQ(engine().videoStreamIndex, -1);
        EXPECT_EQ(engine().audioStreamIndex, -1);
    }

private:
    std::size_t descriptors_ = 0;
};

TEST_F(ProbeFailure, fileThatIsNoMedia_isNotOpened) {
    for (const char* name : {"text.mp4", "empty.mp4", "truncated.mp4"}) {
        EXPECT_EQ(probeOf(mediaPath(name)), -1) << name;
        expectNoStreams();
    }
}

TEST_F(ProbeFailure, missingFile_isNotOpened) {
    const TemporaryFolder folder;
    EXPECT_EQ(probeOf(folder / "missing.mp4"), -1);
    EXPECT_EQ(probeOf(""), -1);
    EXPECT_EQ(probeOf(mediaPath("h264.mp4") + "/below"), -1);
    EXPECT_EQ(probeOf(folder / std::string(300, 'x')), -1);
    EXPECT_EQ(probeOf("https://example.invalid/a.mp4"), -1);
    expectNoStreams();
}

TEST_F(ProbeFailure, directory_isNotOpened) {
    const TemporaryFolder folder;
    EXPECT_EQ(probeOf(folder.path()), -1);
    EXPECT_EQ(probeOf("/"), -1);
}

TEST_F(ProbeFailure, pipe_isNotWaitedFor) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(probeOf(pipe), -1);
}

TEST_F(ProbeFailure, device_isNotOpened) {
    EXPECT_EQ(probeOf("/dev/zero"), -1);
    EXPECT_EQ(probeOf("/dev/null"), -1);
}

TEST_F(ProbeFailure, unreadableFile_isNotOpened) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "the superuser reads every file";
    }
    const TemporaryFolder folder;
    const std::string path = copyOfMedia("h264.mp4", folder);
    fs::permissions(path, fs::perms::none);
    EXPECT_EQ(probeOf(path), -1);
}

TEST_F(ProbeFailure, picturesThatCannotBe_giveNoStreamInfo) {
    EXPECT_EQ(probeOf(mediaPath("impossible-pictures.ivf")), -2);
    expectNoStreams();
}

TEST_F(ProbeFailure, videoOfUnknownCodec_hasNoDecoder) {
    EXPECT_EQ(probeOf(mediaPath("unknown-codec.avi")), -4);
    EXPECT_EQ(engine().streamCount, 2);
    EXPECT_EQ(engine().videoStreamIndex, 0);
    EXPECT_EQ(engine().audioStreamIndex, 1);
    EXPECT_EQ(probeOf(mediaPath("unknown-codec-only.avi")), -4);
    EXPECT_EQ(engine().streamCount, 1);
}

TEST_F(ProbeFailure, damagedDecoderHeader_decoderDoesNotOpen) {
    EXPECT_EQ(probeOf(mediaPath("damaged-decoder-header.avi")), -5);
    EXPECT_EQ(engine().streamCount, 1);
    EXPECT_EQ(engine().videoStreamIndex, 0);
}

TEST_F(ProbeFailure, afterAFailure_nextFileIsProbedAsEver) {
    EXPECT_EQ(probeOf(mediaPath("damaged-decoder-header.avi")), -5);
    EXPECT_EQ(probeOf(mediaPath("h264.mp4")), 0);
    EXPECT_EQ(engine().sourceWidth, 320);
}

TEST_F(ProbeFailure, allMedia_leaveNoDescriptorOpen) {
    for (const std::string& name : readableMedia()) {
        const std::string path = mediaPath(name);
        const std::size_t before = openDescriptors();
        EXPECT_EQ(probeOf(path), 0) << name;
        EXPECT_EQ(openDescriptors(), before) << name;
    }
}

} // namespace
} // namespace velmora::test
