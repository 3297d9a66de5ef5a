#include "NestedSupport.h"

#include "InputMedia.h"

#include <filesystem>

namespace velmora::test {

namespace fs = std::filesystem;

std::string playList(const std::vector<std::string>& names) {
    std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:2\n";
    for (const std::string& name : names) {
        text += "#EXTINF:2,\n" + name + "\n";
    }
    return text + "#EXT-X-ENDLIST\n";
}

Bytes videoBytesOf(const std::string& path) {
    InputMedia media(path, nullptr);
    Bytes bytes;
    if (media.open() < 0 || media.readStreamInfo() < 0) {
        return bytes;
    }
    const PacketHandle packet(av_packet_alloc());
    while (media.read(*packet) >= 0) {
        if (packet->stream_index == media.videoStreamIndex()) {
            bytes.insert(bytes.end(), packet->data, packet->data + packet->size);
        }
        av_packet_unref(packet.get());
    }
    return bytes;
}

NestedFiles::NestedFiles() {
    for (const std::string& folder : {inside_ + "/below", outside_, inside_ + "-not"}) {
        fs::create_directories(folder);
    }
    fs::copy_file(mediaPath("mpeg2.ts"), part_);
    fs::copy_file(part_, inside_ + "/below/part.ts");
    fs::copy_file(part_, secret_);
    fs::copy_file(part_, inside_ + "-not/secret.ts");
    fs::create_symlink("below/part.ts", inside_ + "/to-part.ts");
    fs::create_symlink("below", inside_ + "/to-below");
    fs::create_symlink(secret_, inside_ + "/to-secret.ts");
    fs::create_symlink("../outside", inside_ + "/to-outside");
    av_log_set_level(AV_LOG_QUIET);
}

NestedFiles::~NestedFiles() {
    av_log_set_level(AV_LOG_INFO);
}

std::string NestedFiles::listOf(const std::vector<std::string>& names) const {
    writeFile(list_, playList(names));
    return list_;
}

void NestedFiles::expectUnusable(const std::string& path) {
    engine_.reset();
    engine_.probePath = path;
    EXPECT_LT(engine_.probe(), 0) << path;
    engine_.currentIndex = 0;
    engine_.startTimes[0] = 0.0;
    engine_.snapshotPath = folder_ / "picture.bmp";
    EXPECT_LT(engine_.snapshot(), 0) << path;
    EXPECT_EQ(cut(path, 0, 1000, output_).states, std::vector{2}) << path;
    EXPECT_FALSE(fs::exists(engine_.snapshotPath)) << path;
    EXPECT_FALSE(fs::exists(output_)) << path;
}

} // namespace velmora::test
