// Which pictures of a window are encoded and which are copied, for every kind of group.

#include "CutPlan.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace velmora::test {
namespace {

/// "K0 3 1 2": pictures in decoding order by their times; K: an entry.
std::vector<IndexedPicture> picturesOf(const std::string& text) {
    std::istringstream words(text);
    std::vector<IndexedPicture> pictures;
    for (std::string word; words >> word;) {
        const bool isEntry = word.front() == 'K';
        pictures.push_back({std::stoll(word.substr(isEntry ? 1 : 0)), isEntry});
    }
    return pictures;
}

std::string listed(const std::vector<std::int64_t>& times) {
    std::string text;
    for (const std::int64_t time : times) {
        text += (text.empty() ? "" : " ") + std::to_string(time);
    }
    return text;
}

/// "head | first-stop | tail".
std::string described(const std::optional<CutPlan>& plan) {
    if (!plan) {
        return "none";
    }
    std::string copied = "nothing";
    if (plan->copied) {
        copied = std::to_string(plan->copied->first) + " to " +
                 (plan->copied->stop ? std::to_string(*plan->copied->stop) : "the end");
    }
    return listed(plan->head) + "|" + copied + "|" + listed(plan->tail);
}

struct Case {
    const char* name;
    const char* start;
    const char* end;
    std::int64_t from;
    std::int64_t to;
    const char* plan;
};

constexpr std::int64_t kEnd = CutRule::kToTheEnd;
constexpr const char* kClosed = "K0 3 1 2 6 4 5 K7 10 8 9 13 11 12 K14 17 15 16";
constexpr const char* kOpen = "K0 3 1 2 K6 4 5 9 7 8 K12 10 11 15 13 14";
constexpr const char* kPyramid = "K0 8 4 2 1 3 6 5 7 K9 17 13 11 10 12 15 14 16";
constexpr const char* kIntra = "K0 K1 K2 K3 K4 K5 K6 K7 K8 K9";

class CutPlanTable : public testing::TestWithParam<Case> {};

TEST_P(CutPlanTable, plan_window_isAsListed) {
    const Case& tried = GetParam();
    const CutRule rule{.start = tried.from, .end = tried.to, .leastCopied = 2, .farthestEntry = 8};

    const std::vector<IndexedPicture> end = picturesOf(tried.end);
    EXPECT_EQ(described(planCut({picturesOf(tried.start), end, end.empty()}, rule)), tried.plan);
}

INSTANTIATE_TEST_SUITE_P(
    Groups, CutPlanTable,
    testing::Values(
        Case{"keyToKey", kClosed, "", 0, 7, "|0 to 7|"},
        Case{"keyToTheEnd", kClosed, "", 7, kEnd, "|7 to the end|"},
        Case{"headAlone", kClosed, "", 5, 14, "5 6|7 to 14|"},
        Case{"headOfOne", kClosed, "", 6, 14, "6|7 to 14|"},
        Case{"headOfAWholeGroupButOne", kClosed, "", 1, 14, "1 2 3 4 5 6|7 to 14|"},
        Case{"tailBehindAReordered", kClosed, "", 7, 12, "|7 to 13|11"},
        Case{"tailOfTwo", kClosed, "", 7, 13, "|7 to 13|11 12"},
        Case{"noTailAtAnAnchor", kClosed, "", 7, 11, "|7 to 13|"},
        Case{"headAndTail", kClosed, "", 5, 13, "5 6|7 to 13|11 12"},
        Case{"headAndTheEnd", kClosed, "", 4, kEnd, "4 5 6|7 to the end|"},
        Case{"insideOneGroup", kClosed, "", 1, 6, "1 2 3 4 5|nothing|"},
        Case{"onePicture", kClosed, "", 4, 5, "4|nothing|"},
        Case{"tooLittleCopied", kClosed, "", 5, 8, "5 6 7|nothing|"},
        Case{"onlyTheEntryCopied", kClosed, "", 7, 10, "7 8 9|nothing|"},
        Case{"oneKeyAlone", kIntra, "", 3, 4, "|3 to 4|"},
        Case{"intra", kIntra, "", 2, 9, "|2 to 9|"},
        Case{"openGroupLeadingEncoded", kOpen, "", 4, 12, "4 5|6 to 12|10 11"},
        Case{"openGroupStartOnItsKey", kOpen, "", 6, 10, "|6 to 12|"},
        Case{"openGroupToTheEnd", kOpen, "", 5, kEnd, "5|6 to the end|"},
        Case{"pyramidAllBehindItsAnchor", kPyramid, "", 0, 8, "0 1 2 3 4 5 6 7|nothing|"},
        Case{"pyramidTail", kPyramid, "", 0, 12, "|0 to 17|10 11"},
        Case{"twoLists", kClosed, "K70 73 71 72 76 74 75 K77 80", 5, 75, "5 6|7 to 76|74"},
        Case{"twoListsToAKey", kClosed, "K70 73 71 72 K77 80 78 79", 7, 77, "|7 to 77|"},
        Case{"twoListsTheSourceEndsFirst", kClosed, "K70 73 71 72", 7, 77, "|7 to the end|"},
        Case{"twoListsWithoutAnEntry", "K0 3 1 2 6 4 5 9 7 8 12 10 11", "K70 73 71 72", 1, 72,
             "none"},
        Case{"entryTooFar", "K0 1 2 3 4 5 6 7 8 9 10 11 12 13 K14 15 16 17 18 19 20", "", 1, 20,
             "none"},
        Case{"shownBehindTheNextKey", "K0 3 1 2 K6 9 5 7 8", "", 0, 10, "|0 to the end|"},
        Case{"laterPictureBeforeTheEntry", "K0 3 1 8 K6 9 7", "", 1, 10, "1 3 6 7 8 9|nothing|"},
        Case{"decodedLateShownEarly", "K0 1 2 5 6 3 4 7", "", 0, 5, "|0 to 5|3 4"}),
    [](const auto& tried) { return tried.param.name; });

TEST(CutPlan, plan_lastGroupTakesNothingShownAfterWhatIsLeftOut) {
    // 4 would be shown behind the encoded 3.
    const CutRule rule{.start = 0, .end = 5, .leastCopied = 2, .farthestEntry = 8};

    EXPECT_EQ(described(planCut({picturesOf("K0 1 2 4 7 3 8"), {}, true}, rule)), "|0 to 4|3 4");
}

} // namespace
} // namespace velmora::test
