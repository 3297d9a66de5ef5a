// Which picture is given for which request. The pictures of the sources carry their number.

#include "PictureServerSupport.h"

#include <filesystem>

namespace velmora::test {
namespace {

TEST_F(PictureServer, picture_atItsTime_isThatOne) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    for (const int number : {0, 1, 11, 12, 13, 30, 49, 7, 48}) {
        EXPECT_EQ(shownAt(number * 40), number);
        EXPECT_EQ(last().us, number * 40'000);
    }
}

TEST_F(PictureServer, picture_betweenTwo_isTheLaterOne) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    EXPECT_EQ(shownAt(41), 2);
    EXPECT_EQ(shownAt(400), 10);
    EXPECT_EQ(shownAt(401), 11);
}

TEST_F(PictureServer, picture_afterTheEnd_isTheLast) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    EXPECT_EQ(shownAt(5000), 49);
    EXPECT_EQ(last().us, 49 * 40'000);
    EXPECT_EQ(shownAt(4000), 49);
}

TEST_F(PictureServer, steps_goThroughEveryPicture) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    shownAt(0);
    for (int number = 1; number < 50; ++number) {
        ASSERT_EQ(stepped(1), number);
        ASSERT_TRUE(last().exact);
    }
    EXPECT_EQ(stepped(1), 49);
    for (int number = 48; number >= 0; --number) {
        ASSERT_EQ(stepped(-1), number);
    }
    EXPECT_EQ(stepped(-1), 0);
}

TEST_F(PictureServer, severalSteps_areOneRequest) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    shownAt(800);
    EXPECT_EQ(stepped(15), 35);
    EXPECT_EQ(stepped(-30), 5);
    EXPECT_EQ(stepped(-30), 0);
    EXPECT_EQ(stepped(100), 49);
}

TEST_F(PictureServer, firstRequestIsAStep_isAnsweredFromThePosition) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    EXPECT_EQ(shown({.kind = Kind::Step, .us = 960'000, .count = -1}), 23);
}

TEST_F(PictureServer, keyFrames_areReachedInBothDirections) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = 0, .count = 1}), 12);
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = last().us, .count = 1}), 24);
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = last().us, .count = 2}), 48);
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = last().us, .count = 1}), 48);
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = 1'000'000, .count = -1}), 24);
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = 960'000, .count = -1}), 12);
    EXPECT_EQ(shown({.kind = Kind::KeyFrame, .us = 0, .count = -1}), 0);
}

TEST_F(PictureServer, keyFrameOnly_isTheOneBeforeAndApproximate) {
    open(numberedMedia("plain.mp4", "-g 12 -bf 2"));
    EXPECT_EQ(shownFirst({.kind = Kind::KeyAt, .us = 900'000}), 12);
    EXPECT_FALSE(last().exact);
    EXPECT_EQ(shownFirst({.kind = Kind::KeyAt, .us = 960'000}), 24);
    EXPECT_TRUE(last().exact);
}

TEST_F(PictureServer, farPicture_isPrecededByTheKeyFrame) {
    open(numberedMedia("plain.mp4", "-g 25 -bf 2"));
    EXPECT_EQ(shownFirst({.us = 1'840'000}), 25);
    EXPECT_FALSE(last().exact);
    EXPECT_EQ(awaitExact(), 46);
}

TEST_F(PictureServer, newestRequest_isTheOneThatIsAnswered) {
    open(numberedMedia("plain.mp4", "-g 250"));
    for (int i = 0; i < 40; ++i) {
        ask({.us = (i * 7 % 50) * 40'000});
    }
    EXPECT_EQ(shownAt(1240), 31);
}

TEST_F(PictureServer, view_boundsThePictureAndNeverEnlargesIt) {
    open(numberedMedia("plain.mp4", "-g 12"));
    shown({.us = 0, .width = 64, .height = 32});
    EXPECT_EQ(last().width, 64);
    EXPECT_EQ(last().height, 32);
    EXPECT_EQ(last().pixels.size(), 64U * 32U);
    shown({.us = 0, .width = 1000, .height = 800});
    EXPECT_EQ(last().width, 256);
    EXPECT_EQ(last().height, 128);
}

TEST_F(PictureServer, view_ofAnySize_hasThePicture) {
    open(numberedMedia("plain.mp4", "-g 12"));
    for (int width = 256; width > 160; width -= 7) {
        EXPECT_EQ(shown({.us = 840'000, .width = width, .height = width / 2}), 21) << width;
    }
}

TEST_F(PictureServer, turnedVideo_isUpright) {
    const std::string halves = mediaMadeBy(
        "-f lavfi -i color=red:size=64x64:rate=25:duration=1 -f lavfi -i "
        "color=blue:size=64x64:rate=25:duration=1 -filter_complex hstack -c:v libx264 -crf 4 "
        "-pix_fmt yuv420p",
        "server-halves.mp4");
    open(mediaMadeBy("-i " + halves + " -c copy -metadata:s:v rotate=270", "server-turned.mp4"));
    shown({.us = 0, .width = 400, .height = 400});
    ASSERT_EQ(last().width, 64);
    ASSERT_EQ(last().height, 128);
    expectColour(32, 20, 255, 0, 0); // what was left is on top
    expectColour(32, 108, 0, 0, 255);
}

TEST_F(PictureServer, colours_areThoseOfMatrixAndRange) {
    const char* const picture = "-f lavfi -i color=0x2080e0:size=128x64:rate=25:duration=1,scale=";
    const std::string lossless = " -c:v libx264 -qp 0 ";
    open(mediaMadeBy(picture +
                         std::string("out_color_matrix=bt709,format=yuv444p -colorspace "
                                     "bt709") +
                         lossless,
                     "server-709.mp4"));
    shown({.us = 0});
    expectColour(64, 32, 0x20, 0x80, 0xe0);
    open(mediaMadeBy(picture +
                         std::string("out_color_matrix=bt601,format=yuv420p -colorspace "
                                     "smpte170m") +
                         lossless,
                     "server-601.mp4"));
    shown({.us = 0});
    expectColour(64, 32, 0x20, 0x80, 0xe0);
    open(mediaMadeBy(picture +
                         std::string("out_color_matrix=bt709:out_range=full,format=yuv420p "
                                     "-colorspace bt709 -color_range pc") +
                         lossless,
                     "server-full.mp4"));
    shown({.us = 0});
    expectColour(64, 32, 0x20, 0x80, 0xe0);
    open(mediaMadeBy(picture + std::string("out_range=full,format=gbrp -c:v ffv1"),
                     "server-rgb.mkv"));
    shown({.us = 0});
    expectColour(64, 32, 0x20, 0x80, 0xe0);
}

struct Source {
    const char* name;
    const char* options;
};

class PictureServerOf : public PictureServer, public ::testing::WithParamInterface<Source> {};

/// Each picture, from the last to the first and then at random places, and every step.
TEST_P(PictureServerOf, source_hasEveryPicture) {
    const std::string source = numberedMedia(GetParam().name, GetParam().options);
    const std::vector<Shown> all = allPictures(source);
    ASSERT_GE(all.size(), 2U);
    open(source);
    for (auto picture = all.rbegin(); picture != all.rend(); ++picture) {
        ASSERT_EQ(shown({.us = picture->us}), picture->number) << picture->us;
        EXPECT_NEAR(static_cast<double>(last().us), static_cast<double>(picture->us), 1);
    }
    for (std::size_t i = 1; i < all.size(); ++i) {
        ASSERT_EQ(stepped(1), all[i].number);
    }
    for (std::size_t i = 0; i < 40; ++i) {
        const Shown& picture = all[i * 31 % all.size()];
        ASSERT_EQ(shown({.us = picture.us}), picture.number);
        ASSERT_EQ(stepped(-1), all[std::max<std::size_t>(i * 31 % all.size(), 1) - 1].number);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Sources, PictureServerOf,
    ::testing::Values(Source{"open.mp4", "-g 10 -bf 2 -x264-params open-gop=1:scenecut=0"},
                      Source{"ntsc.mp4", "-r 30000/1001 -g 10 -bf 2"},
                      Source{"vfr.mkv",
                             "-vf select=not(eq(mod(n\\,7)\\,2)) -vsync vfr -g 12 -bf 2"},
                      Source{"plain.ts", "-g 12 -bf 2"}, Source{"plain.flv", "-g 12 -bf 2"},
                      Source{"plain.avi", "-c:v mpeg4 -q:v 2 -g 12"},
                      Source{"bframes.avi", "-c:v mpeg4 -q:v 2 -g 12 -bf 2"},
                      Source{"plain.mpg", "-c:v mpeg2video -q:v 2 -g 12 -bf 2"},
                      Source{"plain.h264", "-g 12 -bf 2"}, Source{"slow.mp4", "-r 1 -g 2"},
                      Source{"fragments.mp4", "-g 12 -bf 2 -movflags frag_keyframe+empty_moov"},
                      Source{"hevc.mkv", "-c:v libx265 -x265-params log-level=0:keyint=12"},
                      Source{"plain.webm", "-c:v libvpx -b:v 2M -g 12"}),
    [](const auto& source) { return asTestName(source.param.name); });

TEST_F(PictureServer, onePicture_isAllThereIs) {
    open(numberedMedia("one.mp4", "-frames:v 1"));
    EXPECT_EQ(shownAt(0), 0);
    EXPECT_EQ(shownAt(3000), 0);
    EXPECT_EQ(stepped(1), 0);
    EXPECT_EQ(stepped(-1), 0);
}

TEST_F(PictureServer, clockThatJumps_goesOn) {
    const std::string one = numberedMedia("plain.ts", "-g 12 -bf 2");
    const Bytes content = readFile(one);
    Bytes twice = content;
    twice.insert(twice.end(), content.begin(), content.end());
    writeFile(folder_ / "twice.ts", twice);
    open(folder_ / "twice.ts");
    EXPECT_EQ(shownAt(1000), 25);
    EXPECT_EQ(shownAt(2000 + 1000), 25);
    EXPECT_EQ(stepped(1), 26);
    EXPECT_EQ(shownAt(49 * 40), 49);
    EXPECT_EQ(stepped(1), 0);
}

TEST_F(PictureServer, withoutPictures_answersWithNone) {
    for (const std::string& path : {mediaPath("audio-only.m4a"), mediaPath("text.mp4"),
                                    mediaPath("headers-gone.ts"), std::string("/nowhere.mp4")}) {
        open(path);
        ask({.us = 0});
        EXPECT_EQ(awaitExact(), kNoNumber) << path;
    }
}

TEST_F(PictureServer, damagedFile_hasAPictureEverywhere) {
    for (const char* const name : {"damaged.mp4", "damaged.ts", "damaged.avi", "cut-off.ts",
                                   "damaged-start.mp4", "starts-mid-open-group.ts"}) {
        open(mediaPath(name));
        for (const int us : {0, 500'000, 1'500'000, 3'900'000}) {
            ask({.us = us});
            awaitExact();
            EXPECT_FALSE(last().pixels.empty()) << name << ' ' << us;
        }
    }
}

TEST_F(PictureServer, fileThatVanishes_isShownOn) {
    const std::string path = folder_ / "gone.mp4";
    std::filesystem::copy_file(numberedMedia("plain.mp4", "-g 12 -bf 2"), path);
    open(path);
    EXPECT_EQ(shownAt(0), 0);
    std::filesystem::remove(path);
    EXPECT_EQ(shownAt(1000), 25);
    EXPECT_EQ(stepped(-1), 24);
}

TEST_F(PictureServer, fileThatVanishesAndIsReadFromItsBeginning_doesNoHarm) {
    const std::string path = folder_ / "gone.avi";
    std::filesystem::copy_file(numberedMedia("plain.avi", "-c:v mpeg4 -q:v 2 -g 12"), path);
    open(path);
    EXPECT_EQ(shownAt(1960), 49);
    std::filesystem::remove(path);
    ask({.us = 40'000, .width = 200});
    awaitExact();
    ask({.us = 80'000, .width = 200});
    awaitExact();
}

TEST_F(PictureServer, goesAwayAtAnyTime) {
    const std::string source = numberedMedia("plain.mp4", "-g 250 -bf 2");
    const std::size_t before = threads();
    const std::size_t descriptors = openDescriptors();
    for (int i = 0; i < 30; ++i) {
        open(source);
        ask({.us = i * 40'000});
        ask({.kind = Kind::KeyFrame, .us = 0, .count = 1});
    }
    close();
    EXPECT_EQ(threadsOnceEnded(before), before);
    EXPECT_EQ(openDescriptors(), descriptors);
}

} // namespace
} // namespace velmora::test
