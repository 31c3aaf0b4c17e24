#include "Clock.h"

#include "LogCapture.h"
#include "MainLoop.h"
#include "Settle.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <latch>
#include <limits>
#include <thread>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

TEST(SystemClock, RunsInOrderOfDueTimeWhateverTheOrderOfScheduling)
{
    auto& clock = Clock::shared();
    std::vector<int> order; // the clock's one thread writes it, until `ended`
    std::atomic<bool> ended = false;
    const auto note = [&order](int value) { return [&order, value] { order.push_back(value); }; };
    std::latch held(1);
    std::latch scheduled(1);
    clock.schedule(Seconds(0), [&] {
        held.count_down();
        scheduled.wait();
    });
    held.wait();
    clock.schedule(Seconds(1), [&ended] { ended = true; });
    clock.schedule(Seconds(0.6), note(3));
    clock.schedule(Seconds(0.2), note(2)); // sooner than what was scheduled before it
    clock.schedule(Seconds(-1), note(1));
    const auto never = clock.schedule(Seconds(0), note(9));
    never->cancel();
    never->cancel();
    scheduled.count_down();
    EXPECT_TRUE(settle([&ended] { return ended.load(); }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(SystemClock, SoonerWorkWakesTheThreadThatSleepsForLaterWork)
{
    std::atomic<bool> ran = false;
    const auto later = Clock::shared().schedule(Seconds(600), [] {});
    std::this_thread::sleep_for(
        std::chrono::milliseconds(5)); // it sleeps by now, or the case is the easier one
    Clock::shared().schedule(Seconds(0.001), [&ran] { ran = true; });
    EXPECT_TRUE(settle([&ran] { return ran.load(); }));
    later->cancel();
}

TEST(SystemClock, WorkThatThrowsOrSchedulesLeavesTheThreadUsable)
{
    expectLog("Uncaught exception in scheduled work: lost");
    std::atomic<bool> ran = false;
    Clock::shared().schedule(Seconds(0), [&] {
        Clock::shared().schedule(Seconds(0), [&] { ran = true; });
        throw std::runtime_error("lost");
    });
    EXPECT_TRUE(settle([&] { return ran.load(); }));
}

TEST(Clock, TicksAreBoundedForEveryDelay)
{
    constexpr auto hundredYears = std::chrono::hours(24 * 365 * 100);
    EXPECT_EQ(Clock::ticks(Seconds(-5)).count(), 0);
    EXPECT_EQ(Clock::ticks(Seconds(std::nan(""))).count(), 0);
    EXPECT_EQ(Clock::ticks(Seconds(0.3)), std::chrono::milliseconds(300));
    EXPECT_EQ(Clock::ticks(Seconds(1e300)), hundredYears);
    EXPECT_EQ(Clock::ticks(Seconds(std::numeric_limits<double>::infinity())), hundredYears);
}

TEST(MainLoop, RunsPostedWorkInOrderAndNeverOnThePostersStack)
{
    std::vector<int> order;
    std::jthread([&] {
        EXPECT_FALSE(MainLoop::isMainThread());
        MainLoop::performOnMain([&] { order.push_back(1); });
    }).join();
    MainLoop::shared().post([&] {
        EXPECT_TRUE(MainLoop::isMainThread());
        MainLoop::shared().post([&] { order.push_back(3); });
        order.push_back(2);
    });
    EXPECT_THAT(order, ElementsAre());
    EXPECT_TRUE(MainLoop::shared().runUntil([&] { return order.size() == 3; }, Seconds(10)));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
    MainLoop::performOnMain([&] { order.push_back(4); });
    EXPECT_EQ(order.back(), 4);
}

TEST(MainLoop, ThrowingWorkIsLoggedAndEndlessWorkDoesNotOutlastTheLimit)
{
    expectLog("Uncaught exception in work posted to the main loop: lost");
    MainLoop::shared().post([] { throw std::runtime_error("lost"); });
    bool goOn = true;
    std::function<void()> again = [&] {
        if (goOn)
            MainLoop::shared().post(again);
    };
    again();
    EXPECT_FALSE(MainLoop::shared().runUntil([] { return false; }, Seconds(0.02)));
    goOn = false;
    pumpMainLoop();
}

} // namespace

} // namespace virlo::test
