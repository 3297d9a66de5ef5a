#include "PacketClock.h"
#include "TestMedia.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace velmora::test {
namespace {

/// The same numbering by another way: a fraction that is carried along from packet to packet, in
/// the way of a muxer that numbers packets without timestamps.
class Accumulator {
public:
    Accumulator(AVRational timeBase, AVRational unit)
        : denominator_(static_cast<std::int64_t>(timeBase.num) * unit.den),
          step_(static_cast<std::int64_t>(timeBase.den) * unit.num), numerator_(denominator_ / 2) {}

    void advance(std::int64_t units) {
        numerator_ += units * step_;
        value_ += numerator_ / denominator_;
        numerator_ %= denominator_;
    }
    std::int64_t value() const { return value_; }

private:
    std::int64_t denominator_;
    std::int64_t step_;
    std::int64_t numerator_;
    std::int64_t value_ = 0;
};

struct Timing {
    const char* name;
    AVRational timeBase;
    AVRational unit;
    std::int64_t unitsPerPacket = 1;
};

class PacketClockOf : public ::testing::TestWithParam<Timing> {};

TEST_P(PacketClockOf, manyPackets_areNumberedAsByCarryingAFraction) {
    const Timing& timing = GetParam();
    PacketClock clock(timing.timeBase, timing.unit);
    Accumulator reference(timing.timeBase, timing.unit);

    constexpr int packets = 300'000; // more than an hour of pictures at 60 a second
    for (int i = 0; i < packets; ++i) {
        ASSERT_EQ(clock.ticks(), reference.value()) << "packet " << i;
        clock.advance(timing.unitsPerPacket);
        reference.advance(timing.unitsPerPacket);
    }
    EXPECT_EQ(clock.units(), packets * timing.unitsPerPacket);
}

TEST_P(PacketClockOf, anyCount_ticksAreNeverHalfATickAway) {
    const Timing& timing = GetParam();
    const PacketClock clock(timing.timeBase, timing.unit);
    for (const std::int64_t units : {1, 2, 3, 7, 999, 123'457, 10'000'019}) {
        const auto exact = units * timing.timeBase.den * timing.unit.num;
        const auto parts = std::int64_t{timing.timeBase.num} * timing.unit.den;
        const std::int64_t error = 2 * (clock.ticksAt(units) * parts - exact);
        EXPECT_TRUE(error >= -parts && error <= parts) << units;
    }
}

INSTANTIATE_TEST_SUITE_P(Timings, PacketClockOf,
                         ::testing::Values(Timing{"mp4_25", {1, 12800}, {1, 25}}, //
                                           Timing{"mp4_29_97", {1, 30000}, {1001, 30000}},
                                           Timing{"mp4_23_976", {1, 24000}, {1001, 24000}},
                                           Timing{"mkv_30", {1, 1000}, {1, 30}},
                                           Timing{"mkv_29_97", {1, 1000}, {1001, 30000}},
                                           Timing{"mkv_23_976", {1, 1000}, {1001, 24000}},
                                           Timing{"mkv_59_94", {1, 1000}, {317, 19001}},
                                           Timing{"ts_29_97", {1, 90000}, {1001, 30000}},
                                           Timing{"ts_23_976", {1, 90000}, {1001, 24000}},
                                           Timing{"avi_25", {1, 25}, {1001, 25025}},
                                           Timing{"tick_longer_than_frame", {1, 10}, {1, 30}},
                                           Timing{"mp4_aac", {1, 44100}, {1, 44100}, 1024},
                                           Timing{"mkv_aac", {1, 1000}, {1, 44100}, 1024},
                                           Timing{"mkv_mp3", {1, 1000}, {1, 48000}, 1152},
                                           Timing{"ts_mp2", {1, 90000}, {1, 44100}, 1152},
                                           Timing{"avi_mp3", {1152, 44100}, {1, 44100}, 1152},
                                           Timing{"avi_wma", {743, 16000}, {1, 44100}, 2048}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(PacketClock, new_standsAtZero) {
    const PacketClock clock({1, 90000}, {1, 25});
    EXPECT_EQ(clock.units(), 0);
    EXPECT_EQ(clock.ticks(), 0);
    EXPECT_EQ(clock.seconds(), 0.0);
}

TEST(PacketClock, audioPacketsOfManySizes_areNumberedAsByCarryingAFraction) {
    PacketClock clock({1, 1000}, {1, 44100});
    Accumulator reference({1, 1000}, {1, 44100});
    constexpr std::array<int, 5> samples{128, 576, 1024, 1, 0};
    for (std::size_t i = 0; i < 100'000; ++i) {
        clock.advance(samples[i % samples.size()]);
        reference.advance(samples[i % samples.size()]);
        ASSERT_EQ(clock.ticks(), reference.value()) << "packet " << i;
    }
}

TEST(PacketClock, oneHourAt2997_endsAtTheExactTick) {
    PacketClock clock({1, 1000}, {1001, 30000});
    for (int i = 0; i < 107'892; ++i) {
        clock.advance(1);
    }
    EXPECT_EQ(clock.ticks(), 3'599'996); // 107892 x 1001 / 30000 s = 3599.9964 s
}

TEST(PacketClock, advanceByMany_equalsAsManySingleSteps) {
    PacketClock single({1, 1000}, {1001, 24000});
    PacketClock many({1, 1000}, {1001, 24000});
    for (int i = 0; i < 1000; ++i) {
        single.advance(1);
    }
    many.advance(1000);
    EXPECT_EQ(single.ticks(), many.ticks());
    EXPECT_EQ(single.units(), many.units());
}

TEST(PacketClock, seconds_areTicksInTheTimeBase) {
    PacketClock clock({1, 12800}, {1, 25});
    clock.advance(38);
    EXPECT_EQ(clock.ticks(), 19'456);
    EXPECT_DOUBLE_EQ(clock.seconds(), 1.52);
}

TEST(PacketClock, negativeUnits_lieAsFarBeforeZero) {
    const PacketClock clock({1, 90000}, {1001, 24000});
    for (const std::int64_t units : {1, 2, 3, 16, 1000}) {
        EXPECT_EQ(clock.ticksAt(-units), -clock.ticksAt(units));
    }
}

TEST(PacketClock, ticksAt_doesNotDependOnWhatWasWritten) {
    PacketClock clock({1, 1000}, {1, 30});
    const std::int64_t before = clock.ticksAt(7);
    clock.advance(100);
    EXPECT_EQ(clock.ticksAt(7), before);
    EXPECT_EQ(clock.ticks(), clock.ticksAt(100));
}

TEST(PacketClock, withoutUsableRationals_standsAtZero) {
    constexpr std::array<AVRational, 5> bad{{{0, 1}, {1, 0}, {0, 0}, {-1, 25}, {1, -25}}};
    for (const AVRational& rational : bad) {
        PacketClock badUnit({1, 90000}, rational);
        PacketClock badTimeBase(rational, {1, 25});
        badUnit.advance(1000);
        badTimeBase.advance(1000);
        EXPECT_EQ(badUnit.ticks(), 0);
        EXPECT_EQ(badTimeBase.ticks(), 0);
        EXPECT_EQ(badUnit.seconds(), 0.0);
        EXPECT_EQ(badTimeBase.seconds(), 0.0);
    }
    EXPECT_EQ(PacketClock().ticks(), 0);
}

TEST(PacketClock, largestRationals_areMultipliedWithoutOverflow) {
    constexpr int most = std::numeric_limits<int>::max();
    const PacketClock fine({1, most}, {most, 1});
    EXPECT_EQ(fine.ticksAt(1), static_cast<std::int64_t>(most) * most);
    const PacketClock coarse({most, 1}, {1, most});
    EXPECT_EQ(coarse.ticksAt(1), 0);
    const PacketClock same({most, most}, {most, most});
    EXPECT_EQ(same.ticksAt(123), 123);
}

} // namespace
} // namespace velmora::test
