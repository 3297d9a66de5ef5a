#include "SoundWriter.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace velmora::test {
namespace {

constexpr int kSampleRate = 48000;
constexpr int kSamplesPerPacket = 1152; // of MPEG audio, layer 3

TEST(PacketOutcomes, worse_isTheOneThatEndsMore) {
    constexpr std::array all = {PacketOutcome::Done, PacketOutcome::FailedGoOn,
                                PacketOutcome::FailedEnd};
    for (std::size_t a = 0; a < all.size(); ++a) {
        for (std::size_t b = 0; b < all.size(); ++b) {
            EXPECT_EQ(worse(all.at(a), all.at(b)), all.at(std::max(a, b)));
        }
    }
}

/// An output with sound alone, and what writes it.
class SoundWriterTest : public ::testing::Test {
protected:
    SoundWriterTest() {
        const AVOutputFormat* format = av_guess_format("matroska", nullptr, nullptr);
        AudioEncoder encoder;
        EXPECT_GE(output_.create(*format), 0);
        EXPECT_GE(encoder.open({.codec = AV_CODEC_ID_MP3,
                                .bitRate = 128000,
                                .sampleRate = kSampleRate,
                                .channels = 2},
                               *format),
                  0);
        OutputStream& stream = *output_.addAudioStream({1, kSampleRate});
        EXPECT_GE(encoder.describe(*stream.stream->codecpar), 0);
        EXPECT_GE(output_.begin(), 0);
        writer_.emplace(output_, stream, std::move(encoder), Timing::Join, nullptr, nullptr);
    }

    TemporaryFolder folder_;
    OutputMedia output_{folder_ / "out.mka"};
    std::optional<SoundWriter> writer_;
};

// The encoder holds a fixed number of chunks back. Whatever it does not hold has been written.
TEST_F(SoundWriterTest, silence_isEncodedAsSoonAsItIsQueued) {
    constexpr double packetSeconds = static_cast<double>(kSamplesPerPacket) / kSampleRate;
    constexpr double held = 3; // packets
    EXPECT_EQ(writer_->fillUntil(100.5 * packetSeconds), PacketOutcome::Done);
    EXPECT_NEAR(output_.audioSeconds(), (100 - held) * packetSeconds, 0.001);
    EXPECT_EQ(writer_->finish(), PacketOutcome::Done);
}

} // namespace
} // namespace velmora::test
