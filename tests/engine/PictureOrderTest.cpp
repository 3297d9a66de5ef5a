#include "PictureOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <random>
#include <utility>
#include <vector>

namespace velmora::test {
namespace {

using Times = std::vector<std::int64_t>;

constexpr std::int64_t kNone = AV_NOPTS_VALUE;

/// `id` travels in the packet's position, to know it again.
PacketHandle packet(std::int64_t pts, std::int64_t dts, std::int64_t id) {
    PacketHandle made(av_packet_alloc());
    made->pts = pts;
    made->dts = dts;
    made->pos = id;
    return made;
}

/// Takes all that can be taken, checks that they come in coding order from number `next` on, and
/// adds their places to `places`.
void takeAll(PictureOrder& order, Times& places) {
    while (auto placed = order.next()) {
        EXPECT_EQ(placed->packet->pos, static_cast<std::int64_t>(places.size()));
        places.push_back(placed->place);
    }
}

/// The places of packets with these times, in coding order. `keys`: the numbers of the key packets.
Times placesOf(const Times& pts, const Times& dts = {}, const std::vector<std::size_t>& keys = {}) {
    PictureOrder order;
    Times places;
    for (std::size_t i = 0; i < pts.size(); ++i) {
        PacketHandle next =
            packet(pts[i], i < dts.size() ? dts[i] : kNone, static_cast<std::int64_t>(i));
        if (std::ranges::find(keys, i) != keys.end()) {
            next->flags |= AV_PKT_FLAG_KEY;
        }
        order.add(std::move(next));
        takeAll(order, places);
    }
    order.finish();
    takeAll(order, places);
    return places;
}

/// What they are to be: the number of pictures that are shown before.
Times ranksOf(const Times& pts) {
    Times ranks;
    for (const std::int64_t time : pts) {
        ranks.push_back(
            std::ranges::count_if(pts, [time](std::int64_t other) { return other < time; }));
    }
    return ranks;
}

TEST(PictureOrder, empty_givesNothing) {
    PictureOrder order;
    EXPECT_FALSE(order.next());
    order.finish();
    EXPECT_FALSE(order.next());
}

TEST(PictureOrder, picturesCodedAsShown_areNumberedInTurn) {
    EXPECT_EQ(placesOf({0, 512, 1024, 1536, 2048}), (Times{0, 1, 2, 3, 4}));
}

TEST(PictureOrder, twoBPictures_comeBeforeThePictureTheyWereCodedAfter) {
    EXPECT_EQ(placesOf({0, 3, 1, 2, 6, 4, 5, 7}), (Times{0, 3, 1, 2, 6, 4, 5, 7}));
}

TEST(PictureOrder, pyramidOfBPictures_isShownInOrder) {
    EXPECT_EQ(placesOf({0, 120, 80, 40, 160, 280, 240, 200}), (Times{0, 3, 2, 1, 4, 7, 6, 5}));
}

TEST(PictureOrder, openGroup_leadingPicturesComeBeforeTheKeyPicture) {
    EXPECT_EQ(placesOf({100, 30, 60, 190, 130, 160}), (Times{2, 0, 1, 5, 3, 4}));
}

TEST(PictureOrder, unevenTimes_getConsecutivePlaces) {
    EXPECT_EQ(placesOf({-700, 5000, 13, 4999, 90000}), (Times{0, 3, 1, 2, 4}));
}

TEST(PictureOrder, equalTimes_keepCodingOrder) {
    EXPECT_EQ(placesOf({0, 10, 10, 10, 5}), (Times{0, 2, 3, 4, 1}));
}

TEST(PictureOrder, negativeAndHugeTimes_areOrdered) {
    constexpr std::int64_t far = INT64_C(1) << 62;
    EXPECT_EQ(placesOf({-far, far, 0, -1}), (Times{0, 3, 2, 1}));
}

TEST(PictureOrder, withoutTimes_codingOrderIsKept) {
    EXPECT_EQ(placesOf(Times(40, kNone)), ranksOf(placesOf(Times(40, kNone))));
    EXPECT_EQ(placesOf({kNone, kNone, kNone}), (Times{0, 1, 2}));
}

TEST(PictureOrder, withDecodingTimesOnly_codingOrderIsKept) {
    EXPECT_EQ(placesOf({kNone, kNone, kNone, kNone}, {0, 40, 80, 120}), (Times{0, 1, 2, 3}));
}

TEST(PictureOrder, lonePictureWithoutTime_staysWithTheOneBeforeIt) {
    EXPECT_EQ(placesOf({0, 40, kNone, 120, 160}), (Times{0, 1, 2, 3, 4}));
}

TEST(PictureOrder, packets_comeOutInCodingOrderAndUnchanged) {
    PictureOrder order;
    order.add(packet(0, -80, 0));
    order.add(packet(120, -40, 1));
    order.add(packet(40, 0, 2));
    order.finish();

    const auto first = order.next();
    const auto second = order.next();
    const auto third = order.next();
    ASSERT_TRUE(first && second && third);
    EXPECT_EQ(first->packet->dts, -80);
    EXPECT_EQ(second->packet->pts, 120);
    EXPECT_EQ(second->packet->dts, -40);
    EXPECT_EQ(third->packet->pts, 40);
    EXPECT_FALSE(order.next());
}

TEST(PictureOrder, uncertainPlace_packetIsHeldUntilTheEnd) {
    PictureOrder order;
    order.add(packet(0, kNone, 0));
    EXPECT_FALSE(order.next());
    order.finish();
    ASSERT_TRUE(order.next());
    EXPECT_FALSE(order.next());
}

TEST(PictureOrder, longInput_holdsNoMorePacketsThanCanBeReordered) {
    PictureOrder order;
    std::int64_t held = 0;
    for (std::int64_t i = 0; i < 1000; ++i) {
        order.add(packet(i, i, i));
        ++held;
        while (order.next()) {
            --held;
        }
        ASSERT_LE(held, 16) << "after packet " << i;
    }
}

TEST(PictureOrder, sixteenPicturesOfReordering_arePutInOrder) {
    // The last shown is coded first, seventeen at a time.
    Times pts;
    for (std::int64_t group = 0; group < 50; ++group) {
        pts.push_back(group * 17 + 16);
        for (std::int64_t i = 0; i < 16; ++i) {
            pts.push_back(group * 17 + i);
        }
    }
    EXPECT_EQ(placesOf(pts), pts);
}

/// Coding orders in which no picture waits for more than 16 others.
Times randomCodingOrder(std::size_t pictures, std::mt19937& random) {
    Times pts(pictures);
    std::iota(pts.begin(), pts.end(), 0);
    for (std::size_t i = 0; i < pictures; i += 17) {
        const std::size_t end = std::min(i + 17, pictures);
        std::shuffle(pts.begin() + static_cast<std::ptrdiff_t>(i),
                     pts.begin() + static_cast<std::ptrdiff_t>(end), random);
    }
    return pts;
}

TEST(PictureOrder, anyCodingOrder_placesAreTheDisplayOrder) {
    std::mt19937 random(1); // the same sequence in every run
    for (int run = 0; run < 50; ++run) {
        const Times pts = randomCodingOrder(500, random);
        ASSERT_EQ(placesOf(pts), pts) << "run " << run;
    }
}

TEST(PictureOrder, timeThatJumpsBack_startsANewSequence) {
    const Times pts{1000, 1120, 1040, 1080, 0, 120, 40, 80};
    const Times dts{920, 960, 1000, 1040, -80, -40, 0, 40};
    EXPECT_EQ(placesOf(pts, dts, {0, 4}), (Times{0, 3, 1, 2, 4, 7, 5, 6}));
}

// Where a container stores display times only, decoding times may be no more than their copies.
TEST(PictureOrder, decodingTimesThatGoBackAndForth_doNotMatter) {
    const Times pts{20, 140, 100, 60, 260, 220, 180};
    EXPECT_EQ(placesOf(pts, pts, {0}), (Times{0, 3, 2, 1, 6, 5, 4}));
}

TEST(PictureOrder, openGroups_leadingPicturesBeginNoNewSequence) {
    const Times pts{100, 20, 60, 220, 140, 180, 340, 260, 300};
    EXPECT_EQ(placesOf(pts, {}, {0, 3, 6}), (Times{2, 0, 1, 5, 3, 4, 8, 6, 7}));
}

TEST(PictureOrder, afterTheEnd_furtherPacketsArePlacedBehind) {
    PictureOrder order;
    Times places;
    order.add(packet(100, kNone, 0));
    order.add(packet(50, kNone, 1));
    order.finish();
    takeAll(order, places);
    order.add(packet(20, kNone, 2));
    order.add(packet(10, kNone, 3));
    order.finish();
    takeAll(order, places);
    EXPECT_EQ(places, (Times{1, 0, 3, 2}));
}

TEST(PictureOrder, longInput_everyPlaceIsGivenOnce) {
    std::mt19937 random(2); // the same sequence in every run
    Times pts = randomCodingOrder(100'000, random);
    for (std::size_t i = 0; i < pts.size(); i += 11) {
        pts[i] = kNone; // damaged ones in between
    }
    Times places = placesOf(pts);
    ASSERT_EQ(places.size(), pts.size());
    std::ranges::sort(places);
    for (std::size_t i = 0; i < places.size(); ++i) {
        ASSERT_EQ(places[i], static_cast<std::int64_t>(i));
    }
}

} // namespace
} // namespace velmora::test
