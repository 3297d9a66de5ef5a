// The peaks of a file's sound.

#include "PeakCollector.h"
#include "PeakReader.h"
#include "Program.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

using Blocks = std::map<std::int64_t, std::vector<SoundPeak>>;

/// What a source gives of a stretch.
struct ReadPeaks {
    PeaksEnd end = PeaksEnd::Stopped;
    Blocks blocks;

    SoundPeak at(std::int64_t peak) const {
        return blocks.at(peak / kPeaksPerBlock).at(static_cast<std::size_t>(peak % kPeaksPerBlock));
    }
    /// The peaks at which anything is louder than `level`.
    std::vector<std::int64_t> louderThan(int level) const {
        std::vector<std::int64_t> loud;
        for (const auto& [block, peaks] : blocks) {
            for (std::size_t i = 0; i < peaks.size(); ++i) {
                if (std::max(-peaks[i].low, +peaks[i].high) > level) {
                    loud.push_back(block * kPeaksPerBlock + static_cast<std::int64_t>(i));
                }
            }
        }
        return loud;
    }
};

ReadPeaks readFrom(PeakSource& source, PeakBlocks wanted) {
    ReadPeaks read;
    read.end = source.read(wanted, [&read](std::int64_t block, std::vector<SoundPeak> peaks) {
        read.blocks[block] = std::move(peaks);
    });
    return read;
}

ReadPeaks peaksOf(const std::string& path, PeakBlocks wanted = {0, 8}) {
    PeakReader source(path, nullptr);
    return readFrom(source, wanted);
}

/// The greatest one. A decoder that begins elsewhere may round otherwise.
int difference(const std::vector<SoundPeak>& a, const std::vector<SoundPeak>& b) {
    int most = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        most = std::max({most, std::abs(a[i].low - b[i].low), std::abs(a[i].high - b[i].high)});
    }
    return most;
}

class PeaksTest : public ::testing::Test {
protected:
    /// A file of half a minute that is silent but for clicks of a millisecond on the left, at 1.005
    /// s, 11.505 s and 25.255 s.
    std::string clicks(const std::string& name, const std::string& options = "") {
        const std::string sound =
            "aevalsrc=if(between(t\\,1.005\\,1.006)+between(t\\,11.505\\,11.506)+"
            "between(t\\,25.255\\,25.256)\\,-0.5\\,0)|0:s=48000:d=30";
        return make(name, "-f lavfi -i " + sound + " " + options);
    }
    /// The words of `arguments` have no blanks in them.
    std::string make(const std::string& name, const std::string& arguments) {
        std::string path = folder_ / name;
        std::vector<std::string> command = {"ffmpeg", "-v", "error", "-y"};
        std::istringstream words(arguments);
        std::copy(std::istream_iterator<std::string>(words), {}, std::back_inserter(command));
        command.push_back(path);
        const ProgramResult result = runProgram(command);
        EXPECT_EQ(result.status, 0) << result.errors;
        return path;
    }

    TemporaryFolder folder_;
};

TEST_F(PeaksTest, clicks_areWhereTheyAreAndAsLoud) {
    const ReadPeaks read = peaksOf(clicks("clicks.wav"));
    EXPECT_EQ(read.end, PeaksEnd::SoundEnd);
    EXPECT_EQ(read.louderThan(0), std::vector<std::int64_t>({100, 1150, 2525}));
    EXPECT_EQ(read.at(100), (SoundPeak{-64, 0}));
    EXPECT_EQ(read.at(2525), (SoundPeak{-64, 0}));
}

TEST_F(PeaksTest, sampleFormats_giveTheSamePeaks) {
    for (const char* const codec : {"pcm_u8", "pcm_s16le", "pcm_s32le", "pcm_f32le", "pcm_f64le",
                                    "pcm_s64le", "flac", "alac"}) {
        const std::string path = clicks(std::string(codec) + ".mka", std::string("-c:a ") + codec);
        const ReadPeaks read = peaksOf(path);
        EXPECT_EQ(read.louderThan(1), std::vector<std::int64_t>({100, 1150, 2525})) << codec;
        EXPECT_NEAR(read.at(1150).low, -64, 1) << codec;
        EXPECT_NEAR(read.at(1150).high, 0, 1) << codec;
    }
}

TEST_F(PeaksTest, lossyCodecs_keepPlaceAndLoudness) {
    for (const char* const name : {"clicks.m4a", "clicks.mp3", "clicks.ts", "clicks.ogg"}) {
        const ReadPeaks read = peaksOf(clicks(name, "-b:a 320k"));
        const std::vector<std::int64_t> loud = read.louderThan(40);
        for (const std::int64_t click : {100, 1150, 2525}) {
            const bool found = std::ranges::any_of(
                loud, [click](std::int64_t peak) { return std::abs(peak - click) <= 1; });
            EXPECT_TRUE(found) << name << ' ' << click;
        }
        EXPECT_LE(loud.size(), 6U) << name;
    }
}

TEST_F(PeaksTest, rateThatPeaksDoNotDivide_keepsPlace) {
    const ReadPeaks read = peaksOf(clicks("odd.wav", "-ar 11025 -c:a pcm_s16le"));
    const std::vector<std::int64_t> loud = read.louderThan(30);
    ASSERT_GE(loud.size(), 3U);
    EXPECT_EQ(loud.front(), 100);
    EXPECT_EQ(loud.back(), 2525);
}

TEST_F(PeaksTest, laterPiece_isAsInTheWhole) {
    for (const char* const name : {"a.wav", "a.m4a", "a.mp3", "a.ts", "a.mkv", "a.ogg"}) {
        const std::string path = make(name, "-f lavfi -i aevalsrc=sin(440*2*PI*t)*(t/30):d=30");
        const ReadPeaks whole = peaksOf(path);
        PeakReader source(path, nullptr);
        for (const std::int64_t first : {1, 2, 0}) {
            const ReadPeaks piece = readFrom(source, {first, 1});
            EXPECT_EQ(piece.end == PeaksEnd::Read, first < 2) << name;
            ASSERT_EQ(piece.blocks.size(), 1U) << name;
            EXPECT_LE(difference(piece.blocks.at(first), whole.blocks.at(first)), 1)
                << name << ' ' << first;
        }
    }
}

TEST_F(PeaksTest, soundThatStartsLate_isSilentBefore) {
    const std::string path = make(
        "late.mp4", "-f lavfi -i color=size=32x32:rate=10:duration=15 -itsoffset 12 -f lavfi -i "
                    "sine=duration=3 -map 0 -map 1 -c:v mpeg4 -c:a aac");
    const ReadPeaks read = peaksOf(path);
    const std::vector<std::int64_t> loud = read.louderThan(8);
    ASSERT_FALSE(loud.empty());
    EXPECT_NEAR(static_cast<double>(loud.front()), 1200, 3);
    EXPECT_EQ(read.blocks.size(), 2U);
}

TEST_F(PeaksTest, containerThatStartsLate_countsFromItsStart) {
    const std::string path = clicks("offset.mkv", "-c:a pcm_s16le -output_ts_offset 5000");
    EXPECT_EQ(peaksOf(path).louderThan(1), std::vector<std::int64_t>({100, 1150, 2525}));
}

TEST_F(PeaksTest, oppositeChannels_doNotCancelOut) {
    const std::string path = make("opposite.wav", "-f lavfi -i aevalsrc=0.5|-0.5:s=8000:d=1");
    EXPECT_EQ(peaksOf(path).at(50), (SoundPeak{-64, 64}));
}

TEST_F(PeaksTest, withoutSound_saysSo) {
    EXPECT_EQ(peaksOf(mediaPath("video-only.mp4")).end, PeaksEnd::NoSound);
    EXPECT_EQ(peaksOf("/nowhere.mp4").end, PeaksEnd::NoSound);
    EXPECT_EQ(peaksOf(mediaPath("text.mp4")).end, PeaksEnd::NoSound);
}

TEST_F(PeaksTest, beyondTheEnd_givesNothing) {
    const ReadPeaks read = peaksOf(clicks("short.m4a"), {1'000'000, 4});
    EXPECT_EQ(read.end, PeaksEnd::SoundEnd);
    EXPECT_TRUE(read.blocks.empty());
}

TEST_F(PeaksTest, damagedPart_leavesTheRest) {
    const std::string path = clicks("damaged.mka", "-c:a mp3");
    Bytes content = readFile(path);
    for (std::size_t i = content.size() * 9 / 20; i < content.size() * 11 / 20; ++i) {
        content[i] = static_cast<std::uint8_t>(i * 7);
    }
    writeFile(path, content);
    const ReadPeaks read = peaksOf(path);
    const std::vector<std::int64_t> loud = read.louderThan(30);
    ASSERT_FALSE(loud.empty());
    EXPECT_NEAR(static_cast<double>(loud.front()), 100, 3); // the encoder's delay is not told
    EXPECT_NEAR(static_cast<double>(loud.back()), 2525, 3);
}

TEST_F(PeaksTest, raisedFlag_stops) {
    const std::string path = clicks("stopped.wav");
    StopFlag stop{0};
    PeakReader source(path, &stop);
    int given = 0;
    const PeaksEnd end = source.read({0, 8}, [&](std::int64_t, const std::vector<SoundPeak>&) {
        ++given;
        stop = 1;
    });
    EXPECT_EQ(end, PeaksEnd::Stopped);
    EXPECT_EQ(given, 1);
}

/// Sound with 100 samples in a peak.
FrameHandle monoSound(const std::vector<float>& samples) {
    FrameHandle frame(av_frame_alloc());
    frame->format = AV_SAMPLE_FMT_FLT;
    frame->sample_rate = 100 * kPeaksPerSecond;
    frame->nb_samples = static_cast<int>(samples.size());
    av_channel_layout_default(&frame->ch_layout, 1);
    av_frame_get_buffer(frame.get(), 0);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as the format says
    std::ranges::copy(samples, reinterpret_cast<float*>(frame->data[0]));
    return frame;
}

TEST(PeakCollector, everySample_counts) {
    for (std::size_t i = 0; i < 100; ++i) {
        ReadPeaks read;
        PeakCollector collector({0, 1}, [&](std::int64_t block, std::vector<SoundPeak> peaks) {
            read.blocks[block] = std::move(peaks);
        });
        std::vector<float> samples(100);
        samples[i] = 1.0F;
        collector.add(*monoSound(samples), 300);
        collector.finish();
        EXPECT_EQ(read.louderThan(0), std::vector<std::int64_t>({3})) << i;
    }
}

TEST(PeakCollector, valuesThatAreNone_areNoPeaks) {
    ReadPeaks read;
    PeakCollector collector({0, 1}, [&](std::int64_t block, std::vector<SoundPeak> peaks) {
        read.blocks[block] = std::move(peaks);
    });
    collector.add(*monoSound(std::vector<float>(100, std::nanf(""))), 0);
    collector.add(*monoSound({-1e30F, HUGE_VALF}), 100);
    collector.finish();
    EXPECT_EQ(read.at(0), SoundPeak());
    EXPECT_EQ(read.at(1), (SoundPeak{-127, 127}));
}

TEST(PeakCollector, placesOutside_areLeftOut) {
    std::vector<std::int64_t> given;
    PeakCollector collector(
        {2, 2}, [&](std::int64_t block, const std::vector<SoundPeak>&) { given.push_back(block); });
    constexpr std::int64_t kBlock = 100 * kPeaksPerBlock;
    for (const std::int64_t place :
         {std::numeric_limits<std::int64_t>::min() + 1, std::numeric_limits<std::int64_t>::max(),
          -kBlock, kBlock, 4 * kBlock, 1000 * kBlock}) {
        collector.add(*monoSound({1.0F}), place);
    }
    EXPECT_TRUE(given.empty());
    collector.add(*monoSound({1.0F}), 3 * kBlock);
    EXPECT_EQ(given, std::vector<std::int64_t>({2}));
    collector.finishAtSoundEnd();
    EXPECT_EQ(given, std::vector<std::int64_t>({2, 3}));
    EXPECT_TRUE(collector.isComplete());
}

TEST(PeakCollector, soundAcrossTheStart_countsFromThere) {
    ReadPeaks read;
    PeakCollector collector({0, 1}, [&](std::int64_t block, std::vector<SoundPeak> peaks) {
        read.blocks[block] = std::move(peaks);
    });
    std::vector<float> samples(300);
    samples[50] = 1.0F;
    samples[250] = 1.0F;
    collector.add(*monoSound(samples), -200);
    collector.finish();
    EXPECT_EQ(read.louderThan(0), std::vector<std::int64_t>({0}));
}

} // namespace
} // namespace velmora::test
