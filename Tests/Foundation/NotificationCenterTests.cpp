#include "NotificationCenter.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

using Observation = std::unique_ptr<NotificationCenter::Observation>;

TEST(NotificationCenter, CallsInOrderOfSubscriptionByNameAndSender)
{
    NotificationCenter center;
    std::vector<std::string> calls;
    const int sender = 0;
    const int other = 0;
    const auto note = [&](const char* name) {
        return [&, name](const Notification& notification) {
            calls.push_back(name + std::string(":") + notification.name);
        };
    };
    const auto all = center.addObserver("a", note("all"));
    const auto ofSender = center.addObserver("a", note("of sender"), &sender);
    const auto otherName = center.addObserver("b", note("other"));
    center.post("a", &sender);
    center.post("a", &other);
    center.post("b");
    EXPECT_THAT(calls, ElementsAre("all:a", "of sender:a", "all:a", "other:b"));
}

TEST(NotificationCenter, UnsubscribedInsideACallAnObserverIsNotCalledAgain)
{
    NotificationCenter center;
    std::vector<int> calls;
    Observation second;
    Observation first = center.addObserver("a", [&](const Notification&) {
        calls.push_back(1);
        second.reset(); // one that this very post has not reached
        first.reset();  // the one being called
    });
    second = center.addObserver("a", [&](const Notification&) { calls.push_back(2); });
    center.post("a");
    center.post("a");
    EXPECT_THAT(calls, ElementsAre(1));
}

TEST(NotificationCenter, SubscribingAndPostingInsideACall)
{
    NotificationCenter center;
    std::vector<std::string> calls;
    std::vector<Observation> observations;
    observations.push_back(center.addObserver("outer", [&](const Notification& notification) {
        calls.push_back(notification.userInfo.at("key"));
        observations.push_back(
            center.addObserver("outer", [&](const Notification&) { calls.push_back("late"); }));
        center.post("inner");
    }));
    observations.push_back(
        center.addObserver("inner", [&](const Notification&) { calls.push_back("inner"); }));
    center.post("outer", nullptr, {{"key", "value"}});
    EXPECT_THAT(calls, ElementsAre("value", "inner"));
}

TEST(NotificationCenter, SubscribingRacesWithPostingUnharmed)
{
    NotificationCenter center;
    std::atomic<int> heard = 0;
    const auto always = center.addObserver("a", [&](const Notification&) { ++heard; });
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 3; ++thread) {
            threads.emplace_back([&] {
                for (int round = 0; round < 500; ++round) {
                    const auto brief = center.addObserver("a", [&](const Notification&) {});
                    center.post("a");
                }
            });
        }
    }
    EXPECT_EQ(heard, 1500);
}

} // namespace

} // namespace virlo::test
