// Parameter sets and units of H.264, sound ones and what a hostile file may have instead.

#include "H264Sets.h"
#include "DecodingTimes.h"
#include "H264Packets.h"
#include "SoundCut.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

// 128 x 64 at level 1.1, High, as x264 writes them.
const Bytes kSequence = {0x67, 0x64, 0x00, 0x0B, 0xAC, 0xD9, 0x42, 0x04, 0x5A, 0x10, 0x00, 0x00,
                         0x03, 0x00, 0x10, 0x00, 0x00, 0x03, 0x03, 0x20, 0xF1, 0x42, 0x99, 0x60};
const Bytes kPicture = {0x68, 0xEB, 0xE3, 0xCB, 0x22, 0xC0};

Bytes withStartCodes(const std::vector<Bytes>& units) {
    Bytes stream;
    for (const Bytes& unit : units) {
        stream.insert(stream.end(), {0, 0, 0, 1});
        stream.insert(stream.end(), unit.begin(), unit.end());
    }
    return stream;
}

TEST(H264Sets, startCodesAndRecord_giveTheSame) {
    const auto sets = H264Sets::parse(withStartCodes({kSequence, kPicture}));
    ASSERT_TRUE(sets);
    EXPECT_EQ(sets->lengthSize(), 0);

    const auto again = H264Sets::parse(sets->record());

    ASSERT_TRUE(again);
    EXPECT_EQ(again->lengthSize(), 4);
    EXPECT_TRUE(again->holds(kSequence));
    EXPECT_TRUE(again->holds(kPicture));
    EXPECT_EQ(again->record(), sets->record());
    EXPECT_EQ(again->sequences().front().level, 11);
    EXPECT_TRUE(again->sequences().front().framesOnly);
    EXPECT_EQ(again->freeId(), 31U);
}

TEST(H264Sets, twoOfOneId_areRefused) {
    Bytes other = kPicture;
    other.back() = 0xC1;
    EXPECT_FALSE(H264Sets::parse(withStartCodes({kSequence, kPicture, other})));
    EXPECT_TRUE(H264Sets::parse(withStartCodes({kSequence, kPicture, kPicture})));
}

TEST(H264Sets, whatIsCutShort_isRefused) {
    const Bytes record = H264Sets::parse(withStartCodes({kSequence, kPicture}))->record();
    for (std::size_t size = 0; size < record.size() - 4; ++size) { // the rest tells the depth
        EXPECT_FALSE(H264Sets::parse(std::span(record).first(size))) << size;
    }
    EXPECT_FALSE(H264Sets::parse(withStartCodes({kSequence})));
    EXPECT_FALSE(H264Sets::parse(withStartCodes({kPicture})));
}

TEST(NalUnits, lengthBeyondThePacket_isNoPacket) {
    const Bytes packet = {0, 0, 0, 9, 0x65, 1, 2};
    EXPECT_FALSE(unitsOf(packet, 4));
    EXPECT_EQ(unitsOf(Bytes{0, 0, 0, 2, 0x65, 1}, 4)->size(), 1U);
    EXPECT_FALSE(unitsOf(Bytes{0, 0}, 4));
}

TEST(NalUnits, bits_passOverWhatPreventsStartCodes) {
    const Bytes unit = {0, 0, 3, 0x80};
    NalBits bits(unit);
    EXPECT_EQ(bits.read(16), 0U);
    EXPECT_EQ(bits.read(8), 0x80U);
    EXPECT_FALSE(bits.isBeyondEnd());
    EXPECT_EQ(bits.read(8), 0U);
    EXPECT_TRUE(bits.isBeyondEnd());
}

TEST(NalUnits, expGolomb_readsSmallAndSigned) {
    const Bytes unit = {0b1'010'011'0, 0b0100'0010, 0b1'0000000}; // 0, 1, 2, 3, -2
    NalBits bits(unit);
    EXPECT_EQ(bits.readExpGolomb(), 0U);
    EXPECT_EQ(bits.readExpGolomb(), 1U);
    EXPECT_EQ(bits.readExpGolomb(), 2U);
    EXPECT_EQ(bits.readExpGolomb(), 3U);
    EXPECT_EQ(bits.readSignedExpGolomb(), -2);
}

TEST(DecodingTimes, constantRate_runsAheadByItsDepth) {
    DecodingTimes times(2, 10);
    std::vector<std::int64_t> decoded;
    for (const std::int64_t shown : {0, 40, 20, 10, 30, 60, 50}) {
        decoded.push_back(times.next(shown).value_or(-999));
    }
    EXPECT_EQ(decoded, (std::vector<std::int64_t>{-20, -10, 0, 10, 20, 30, 40}));
}

TEST(DecodingTimes, deeperThanTold_orTwoAtOnce_isRefused) {
    DecodingTimes shallow(0, 10);
    EXPECT_TRUE(shallow.next(0));
    EXPECT_TRUE(shallow.next(20));
    EXPECT_FALSE(shallow.next(10));
    DecodingTimes twins(0, 10);
    EXPECT_TRUE(twins.next(0));
    EXPECT_FALSE(twins.next(0));
}

/// "number@time+duration" of each packet that is written, of packets of ten samples.
std::string written(const SoundCut::Rule& rule, std::int64_t from) {
    SoundCut cut(rule);
    std::string text;
    for (std::int64_t time = from; !cut.hasEnded() && time < 100; time += 10) {
        for (const SoundCut::Part& part : cut.add(time, 10)) {
            text += std::to_string(part.number) + "@" + std::to_string(part.time) + "+" +
                    std::to_string(part.duration) + " ";
        }
    }
    return text;
}

TEST(SoundCut, editList_startsBeforeAndEndsInsideAPacket) {
    const SoundAbilities editList{.startsBefore = true, .shiftsAll = false, .cutsEnd = true};
    EXPECT_EQ(written({.end = 17, .abilities = editList, .preRoll = 1}, -35),
              "2@-15+10 3@-5+10 4@5+10 5@15+2 ");
    EXPECT_EQ(written({.end = 17, .abilities = editList, .preRoll = 0}, -30), "3@0+10 4@10+7 ");
}

TEST(SoundCut, discardedEnd_startsWithTheFirstPacketInside) {
    const SoundAbilities discards{.startsBefore = false, .shiftsAll = true, .cutsEnd = true};
    EXPECT_EQ(written({.end = 17, .abilities = discards, .preRoll = 1}, -35), "4@5+10 5@15+2 ");
}

TEST(SoundCut, wholePackets_areTheNearest) {
    EXPECT_EQ(written({.end = 27, .abilities = {}, .preRoll = 1}, -34), "3@-4+10 4@6+10 5@16+10 ");
    EXPECT_EQ(written({.end = 17, .abilities = {}, .preRoll = 1}, -36), "4@4+10 ");
}

TEST(SoundCut, samples_areCutAtBothEnds) {
    EXPECT_EQ(written({.end = 17, .abilities = {}, .preRoll = 0, .splits = true}, -34),
              "3@0+6 4@6+10 5@16+1 ");
}

TEST(SoundCut, toTheEnd_keepsAllThatFollows) {
    SoundCut cut({});
    cut.add(0, 10);
    EXPECT_EQ(cut.add(1'000'000, 10).size(), 1U);
    EXPECT_FALSE(cut.hasEnded());
}

} // namespace
} // namespace velmora::test
