// What play lists may name.

#include "InputMedia.h"
#include "NestedSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST_F(NestedFiles, partsInTheFolderOrBelow_areRead) {
    const Bytes expected = videoBytesOf(part_);
    ASSERT_FALSE(expected.empty());
    for (const std::string& name : std::vector<std::string>{
             "part.ts", "below/part.ts", "below/../part.ts", "to-part.ts", "to-below/part.ts",
             part_, "file:" + part_, "../inside/part.ts", inside_ + "/to-below/part.ts"}) {
        EXPECT_TRUE(videoBytesOf(listOf({name})) == expected) << name;
    }
}

TEST_F(NestedFiles, severalParts_areCutAndPreviewed) {
    const std::string list = listOf({"part.ts", "below/part.ts"});
    const std::size_t pictures = packetsOf(part_, "v:0").size();

    EXPECT_EQ(cut(list, 0, 100'000, output_).states, std::vector{1});
    EXPECT_EQ(packetsOf(output_, "v:0").size(), 2 * pictures);
    engine_.probePath = list;
    engine_.snapshotPath = folder_ / "picture.bmp";
    engine_.currentIndex = 0;
    engine_.startTimes[0] = 0.0;
    EXPECT_EQ(engine_.snapshot(), 0);
    EXPECT_TRUE(fs::exists(engine_.snapshotPath));
}

TEST_F(NestedFiles, partsOutside_areNotOpened) {
    const OpenWatch secret(secret_);
    const OpenWatch beside(inside_ + "-not/secret.ts");
    for (const std::string& name : std::vector<std::string>{
             secret_, "file:" + secret_, "../outside/secret.ts", "below/../../outside/secret.ts",
             "to-secret.ts", "to-outside/secret.ts", inside_ + "/to-secret.ts",
             "../inside-not/secret.ts", "crypto:" + secret_, "crypto+file:" + secret_,
             "concat:" + secret_, "subfile,,start,0,end,0,,:" + secret_, "async:" + secret_,
             "data:video/mp2t;base64,R0ARAAAAsA0AAcEAAAABEAAqsQSy.ts"}) {
        expectUnusable(listOf({name}));
    }
    EXPECT_EQ(secret.openings(), 0);
    EXPECT_EQ(beside.openings(), 0);
}

TEST_F(NestedFiles, partOutsideAmongOthers_isLeftOut) {
    const Bytes expected = videoBytesOf(part_);
    const std::size_t pictures = packetsOf(part_, "v:0").size();
    const OpenWatch secret(secret_);

    EXPECT_EQ(cut(listOf({"part.ts", secret_}), 0, 100'000, output_).states, std::vector{1});

    EXPECT_EQ(packetsOf(output_, "v:0").size(), pictures);
    EXPECT_EQ(secret.openings(), 0);
}

TEST_F(NestedFiles, refusal_isLoggedWithInputAndName) {
    const std::string list = listOf({"to-secret.ts"});
    AtLogLine refusal(list + ": open nested file " + inside_ + "/to-secret.ts: Permission denied",
                      [](int) {});
    videoBytesOf(list);
    EXPECT_EQ(refusal.seen(), 1);
}

TEST_F(NestedFiles, keyOutside_isNotOpened) {
    const std::string key = outside_ + "/key.ts";
    writeFile(key, "0123456789abcdef");
    const OpenWatch watch(key);
    writeFile(list_, "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXT-X-KEY:METHOD=AES-128,URI=\"" + key +
                         "\"\n#EXTINF:2,\npart.ts\n#EXT-X-ENDLIST\n");
    expectUnusable(list_);
    EXPECT_EQ(watch.openings(), 0);
}

TEST_F(NestedFiles, listOfListsOutside_isNotOpened) {
    writeFile(outside_ + "/list.m3u8", playList({"secret.ts"}));
    const OpenWatch watch(outside_ + "/list.m3u8");
    writeFile(list_, "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1000\n../outside/list.m3u8\n");
    expectUnusable(list_);
    EXPECT_EQ(watch.openings(), 0);
}

TEST_F(NestedFiles, listNamedLikeAnAddress_findsItsParts) {
    const Bytes expected = videoBytesOf(part_);
    const fs::path before = fs::current_path();
    fs::current_path(inside_);
    for (const std::string name : {"file:list.m3u8", "http:list.m3u8", "data:list.m3u8"}) {
        writeFile(name, playList({"part.ts"}));
        EXPECT_TRUE(videoBytesOf(name) == expected) << name;
    }
    fs::current_path(before);
}

TEST_F(NestedFiles, listsThatLeadBackToThemselves_comeToAnEnd) {
    const std::string variant = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\n";
    writeFile(list_, variant + "list.m3u8\n");
    EXPECT_TRUE(videoBytesOf(list_).empty());
    writeFile(list_, variant + "other.m3u8\n");
    writeFile(inside_ + "/other.m3u8", variant + "list.m3u8\n" + variant + "other.m3u8\n");
    EXPECT_TRUE(videoBytesOf(list_).empty());
}

TEST_F(NestedFiles, listOfLists_isRead) {
    writeFile(inside_ + "/small.m3u8", playList({"part.ts"}));
    writeFile(list_, "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nsmall.m3u8\n");
    EXPECT_TRUE(videoBytesOf(list_) == videoBytesOf(part_));
}

// Their reader would wait for what is never added.
TEST_F(NestedFiles, listWithoutAnEnd_isRefused) {
    const std::string endless = "#EXTM3U\n#EXT-X-TARGETDURATION:100000\n#EXTINF:2,\npart.ts\n";
    writeFile(list_, endless);
    expectUnusable(list_);
    writeFile(inside_ + "/endless.m3u8", endless);
    writeFile(list_, "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nendless.m3u8\n");
    expectUnusable(list_);
    writeFile(list_, endless + std::string(5 << 20, '\n') + "#EXT-X-ENDLIST\n");
    expectUnusable(list_);
}

TEST_F(NestedFiles, outputThatMayBeAPart_isRefusedAndKept) {
    const std::string list = listOf({"part.ts", "below/part.ts"});
    for (const std::string& output : {part_, inside_ + "/below/part.ts"}) {
        const Bytes before = readFile(output);
        EXPECT_EQ(cut(list, 0, 100'000, output).states, std::vector{2});
        EXPECT_EQ(join({mediaPath("h264.mp4"), list}, output).states, (std::vector{2, 2}));
        EXPECT_TRUE(readFile(output) == before);
    }
    writeFile(output_, "of no use any more");
    EXPECT_EQ(cut(list, 0, 100'000, output_).states, std::vector{1});
    EXPECT_EQ(cut(list, 0, 100'000, inside_ + "/new.ts").states, std::vector{1});
}

TEST_F(NestedFiles, closed_leavesNoDescriptorOpen) {
    const std::string list = listOf({"part.ts", "below/part.ts"});
    const std::string broken = listOf({"part.ts", secret_});
    const std::size_t before = openDescriptors();
    for (const std::string& path : {list, broken, part_}) {
        videoBytesOf(path);
        EXPECT_EQ(openDescriptors(), before) << path;
        InputMedia given(path, nullptr);
        ASSERT_GE(given.open(), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
}

// Demuxers that open what they name without asking.

TEST_F(NestedFiles, listOfTheConcatDemuxer_opensNothing) {
    const OpenWatch secret(secret_);
    const OpenWatch part(part_);
    writeFile(inside_ + "/abs.m3u8", playList({secret_}));
    const std::string list = inside_ + "/list.ffconcat";
    for (const std::string& name :
         std::vector<std::string>{secret_, "../outside/secret.ts", "to-secret.ts",
                                  "to-outside/secret.ts", "abs.m3u8", "part.ts"}) {
        writeFile(list, "ffconcat version 1.0\nfile '" + name + "'\n");
        expectUnusable(list);
    }
    EXPECT_EQ(secret.openings(), 0);
    EXPECT_EQ(part.openings(), 0);
}

TEST_F(NestedFiles, dashManifest_opensNothing) {
    const std::string secret = outside_ + "/secret.mp4";
    fs::copy_file(mediaPath("mpeg4.mp4"), secret);
    const OpenWatch watch(secret);
    const std::string manifest = inside_ + "/manifest.mpd";
    for (const std::string& name : std::vector<std::string>{secret, "../outside/secret.mp4"}) {
        std::string text = "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\""
                           " profiles=\"urn:mpeg:dash:profile:isoff-live:2011\" type=\"static\""
                           " mediaPresentationDuration=\"PT4S\"><Period>"
                           "<AdaptationSet contentType=\"video\"><Representation id=\"0\""
                           " mimeType=\"video/mp4\" codecs=\"mp4v.20.0\" bandwidth=\"1000\">"
                           "<SegmentTemplate timescale=\"1\" duration=\"4\" startNumber=\"1\"";
        text.append(" initialization=\"").append(name).append("\" media=\"").append(name);
        text += "\"/></Representation></AdaptationSet></Period></MPD>";
        writeFile(manifest, text);
        expectUnusable(manifest);
    }
    EXPECT_EQ(watch.openings(), 0);
}

} // namespace
} // namespace velmora::test
