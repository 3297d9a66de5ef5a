#include "NotificationCenter.h"

#include <QObject>
#include <QVariantMap>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora::test {
namespace {

TEST(NotificationCenterTest, post_twoObservers_areCalledInTheOrderOfSubscription) {
    NotificationCenter center;
    std::string calls;
    center.addObserver("name", [&calls](const Notification&) { calls += 'a'; });
    center.addObserver("name", [&calls](const Notification&) { calls += 'b'; });
    center.post("name", nullptr);
    EXPECT_EQ(calls, "ab");
}

TEST(NotificationCenterTest, post_oneObserverSubscribedThreeTimes_isCalledThreeTimes) {
    NotificationCenter center;
    int calls = 0;
    const auto observer = [&calls](const Notification&) { ++calls; };
    for (int i = 0; i < 3; ++i) {
        center.addObserver("name", observer);
    }
    center.post("name", nullptr);
    EXPECT_EQ(calls, 3);
}

TEST(NotificationCenterTest, post_otherName_callsNobody) {
    NotificationCenter center;
    int calls = 0;
    center.addObserver("name", [&calls](const Notification&) { ++calls; });
    center.post("Name", nullptr);
    EXPECT_EQ(calls, 0);
}

TEST(NotificationCenterTest, post_senderAndUserInfo_reachTheObserver) {
    NotificationCenter center;
    const QObject sender;
    std::vector<Notification> seen;
    center.addObserver("name",
                       [&seen](const Notification& notification) { seen.push_back(notification); });
    center.post("name", &sender, {{"key", 12.5}});
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].name, "name");
    EXPECT_EQ(seen[0].object, &sender);
    EXPECT_DOUBLE_EQ(seen[0].userInfo["key"].toDouble(), 12.5);
}

TEST(NotificationCenterTest, addObserver_duringAPost_isCalledFromTheNextPostOn) {
    NotificationCenter center;
    int late = 0;
    center.addObserver("name", [&center, &late](const Notification&) {
        center.addObserver("name", [&late](const Notification&) { ++late; });
    });
    center.post("name", nullptr);
    EXPECT_EQ(late, 0);
    center.post("name", nullptr);
    EXPECT_EQ(late, 1);
}

} // namespace
} // namespace velmora::test
