// Which times the pictures of a join get.

#include "FaultyMedia.h"
#include "ReencodeSupport.h"
#include "SignalMedia.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

/// What the muxer was given, in order.
struct Written {
    bool isPicture;
    std::int64_t dts;      ///< ticks
    std::int64_t duration; ///< ticks
    double tick;           ///< seconds
};

/// Numbers the pictures of joined inputs by where the sound and the pictures before them have
/// ended.
class JoinNumbering {
public:
    explicit JoinNumbering(std::int64_t pictureTicks) : pictureTicks_(pictureTicks) {}

    void take(const Written& sound) {
        soundEnd_ = static_cast<double>(sound.dts + sound.duration) * sound.tick;
    }
    void beginInput() { counter_ = last_; }
    Written next(double tick) {
        const double ahead = soundEnd_ - static_cast<double>(picturesEnd_) * tick;
        const std::int64_t step =
            ahead > 0 ? static_cast<std::int64_t>(ahead / tick + 1.0) : std::int64_t{1};
        counter_ += step;
        last_ = std::max(counter_, picturesEnd_);
        picturesEnd_ = last_ + pictureTicks_;
        return {true, last_, step, tick};
    }

private:
    const std::int64_t pictureTicks_;
    double soundEnd_ = 0;          ///< seconds
    std::int64_t picturesEnd_ = 0; ///< ticks
    std::int64_t counter_ = 0;     ///< ticks
    std::int64_t last_ = 0;        ///< ticks
};

class ReencodeNumbering : public Reencode {
protected:
    std::vector<Written> writtenByJoin(const std::vector<std::string>& inputs) {
        std::vector<Written> written;
        const FaultyMedia observed({.write = [&written](const AVPacket& packet) {
            const double tick = av_q2d(packet.time_base);
            written.push_back({packet.stream_index == 0, packet.dts, packet.duration, tick});
            return false;
        }});
        EXPECT_EQ(join(inputs, folder_ / "out.mp4").states, std::vector(inputs.size(), 1));
        return written;
    }
};

TEST_F(ReencodeNumbering, pictures_catchUpWithTheSoundToTheTick) {
    engine_.videoFrameRate = 25.0;
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);  // no picture stays in the encoder
    constexpr std::int64_t kPictureTicks = 1001; // of 1/25025 second
    const std::vector<std::string> inputs = {signalOf("even"), signalOf("longSound"),
                                             signalOf("shortSound"), signalOf("even")};
    std::vector<std::size_t> starts = {0}; // by pictures
    for (const std::string& input : inputs) {
        starts.push_back(starts.back() + packetsOf(input, "v:0").size());
    }

    const auto written = writtenByJoin(inputs);

    JoinNumbering numbering(kPictureTicks);
    std::size_t pictures = 0;
    std::size_t stepsOfOne = 0;
    for (const Written& packet : written) {
        if (!packet.isPicture) {
            numbering.take(packet);
            continue;
        }
        if (std::ranges::find(starts, pictures) != starts.end()) {
            numbering.beginInput();
        }
        const Written expected = numbering.next(packet.tick);
        ASSERT_EQ(packet.dts, expected.dts) << pictures;
        ASSERT_EQ(packet.duration, expected.duration) << pictures;
        stepsOfOne += packet.duration == 1 ? 1 : 0;
        ++pictures;
    }
    EXPECT_EQ(pictures, starts.back());
    EXPECT_GT(stepsOfOne, 0U);
    EXPECT_LT(stepsOfOne, pictures);
}

std::string smallSilentSource() {
    return mediaMadeBy("-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 -c:v mpeg4",
                       "small-silent.mkv");
}

// The first picture is stamped 1, each one after it a picture's length later, later inputs too.
TEST_F(ReencodeEncoder, joinOfPicturesAlone_isNumberedFromTheFirstTick) {
    const std::string source = smallSilentSource();
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    const std::string output = folder_ / "out.mkv";

    EXPECT_EQ(join({source, source}, output).states, std::vector(2, 1));

    const auto packets = packetsOf(output, "v:0");
    ASSERT_EQ(packets.size(), 50U);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        ASSERT_EQ(packets[i].pts, 1 + 40 * static_cast<std::int64_t>(i)) << i; // milliseconds
    }
}

// Without sound to catch up with, the numbering goes on by one tick for each picture.
TEST_F(ReencodeEncoder, joinOfPicturesAlone_givesEachTheDurationOfATick) {
    choose(AV_CODEC_ID_MPEG4, AV_CODEC_ID_AAC);
    std::vector<std::int64_t> durations;
    const FaultyMedia observed({.write = [&durations](const AVPacket& packet) {
        durations.push_back(packet.duration);
        return false;
    }});

    EXPECT_EQ(join({smallSilentSource(), smallSilentSource()}, folder_ / "out.mp4").states,
              std::vector(2, 1));

    EXPECT_EQ(durations, std::vector<std::int64_t>(50, 1));
}

} // namespace
} // namespace velmora::test
