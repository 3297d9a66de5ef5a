// What stands in for sound that an input does not have, and where there is none.

#include "ReencodeSupport.h"
#include "SignalMedia.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

class ReencodeSilence : public Reencode {
protected:
    const std::string even_ = signalOf("even");
    const std::string output_ = folder_ / "out.mp4";
};

TEST_F(ReencodeSilence, laterInputWithoutPictures_goesOnWhereTheSoundEnded) {
    const std::string soundOnly = mediaMadeBy(
        "-f lavfi -i sine=f=1000:sample_rate=44100:d=0.2,volume=8,apad=whole_dur=3 -c:a pcm_s16le",
        "signal-sound-only.wav");

    EXPECT_EQ(join({even_, soundOnly, even_}, output_).states, std::vector(3, 1));

    const auto flashes = flashesIn(output_);
    const auto beeps = beepsIn(output_);
    ASSERT_EQ(flashes.size(), 2U);
    ASSERT_EQ(beeps.size(), 3U);
    EXPECT_NEAR(beeps[1], 2.0, 0.12);
    EXPECT_NEAR(beeps[2], beeps[1] + 3.0, 0.05);
    EXPECT_NEAR(flashes[1], beeps[2], 0.07);
}

/// The avi with a code for its sound that stands for no codec.
void forgetSoundCodec(const std::string& source, const std::string& target) {
    Bytes content = readFile(source);
    constexpr std::string_view kKind = "auds";
    const auto header = std::search(content.begin(), content.end(), kKind.begin(), kKind.end());
    constexpr std::string_view kName = "strf";
    const auto format = std::search(header, content.end(), kName.begin(), kName.end());
    ASSERT_NE(format, content.end());
    format[8] = 0xFE;
    format[9] = 0xCA;
    writeFile(target, content);
}

/// A file with sound that cannot be decoded.
class UnknownSound : public ReencodeSilence {
protected:
    UnknownSound() { forgetSoundCodec(signalOf("mpeg4"), unknown_); }

    /// Joins the inputs, all but one of which can be heard, and the last.
    void expectLastBeepAtItsFlash(const std::vector<std::string>& inputs) {
        EXPECT_EQ(join(inputs, output_).states, std::vector(inputs.size(), 1));

        const auto flashes = flashesIn(output_);
        const auto beeps = beepsIn(output_);
        ASSERT_EQ(flashes.size(), inputs.size());
        ASSERT_EQ(beeps.size(), inputs.size() - 1);
        EXPECT_NEAR(beeps.back(), flashes.back(), 0.07);
    }

    const std::string unknown_ = folder_ / "unknown.avi";
};

TEST_F(UnknownSound, ofALaterInput_isReplaced) {
    expectLastBeepAtItsFlash({even_, unknown_, even_});
}

TEST_F(UnknownSound, ofTheFirstJoinedInput_isReplaced) {
    expectLastBeepAtItsFlash({unknown_, even_});
}

TEST_F(UnknownSound, whereTheFirstInputHadNone_fails) {
    const std::string silent = mediaMadeBy("-i @mpeg4.mp4 -c copy -an", "silent.mp4");

    EXPECT_EQ(join({silent, unknown_}, output_).states, (std::vector{1, 2}));
}

TEST_F(UnknownSound, ofACut_isLeftOut) {
    EXPECT_EQ(cut(unknown_, 0, 2000, output_).states, std::vector{1});

    EXPECT_TRUE(fieldsOf(output_, "a:0").is_null());
    EXPECT_NEAR(endOf(output_, "v:0"), 2.0, 0.05);
}

// Otherwise a cancelled join would go on for as long as the missing sound takes.
TEST_F(ReencodeSilence, stop_addsNoMoreOfIt) {
    const std::string longPictures =
        mediaMadeBy("-f lavfi -i color=black:s=64x48:r=1:d=600 -f lavfi -i "
                    "sine=f=1000:sample_rate=44100:d=0.2 -c:v mpeg4 -c:a aac -ac 2",
                    "signal-long-pictures.mp4");
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_VORBIS);
    const std::string output = folder_ / "out.mkv";
    // A block for each picture, a few for the sound that there is.
    const AtRunPoint blocks(RunPoint::Packet, [&](int count) {
        if (count > 640) {
            engine_.stopRequested = 1;
        }
    });

    EXPECT_EQ(join({longPictures}, output).states, std::vector{255});

    EXPECT_LT(blocks.seen(), 2000); // ten minutes of sound are 25,000
}

TEST_F(ReencodeSilence, cut_addsNone) {
    EXPECT_EQ(cut(signalOf("shortSound"), 0, 2000, output_).states, std::vector{1});

    EXPECT_NEAR(endOf(output_, "a:0"), 1.0, 0.08);
    EXPECT_NEAR(endOf(output_, "v:0"), 2.0, 0.05);
}

} // namespace
} // namespace velmora::test
