#include "GlobalQueue.h"
#include "MainLoop.h"
#include "NotificationCenter.h"
#include "SerialQueue.h"
#include "SystemLog.h"
#include "Timer.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <latch>
#include <thread>

namespace virlo::test
{

namespace
{

/// Keeps every thread of the library busy with work that goes on after `main`.
void startEndlessWork()
{
    setSystemLogSink([](std::string_view) {});
    static auto* const queue = new SerialQueue("endless");
    static auto* const work = new std::function<void()>;
    *work = [] {
        queue->sync([] {});
        queue->async([] { systemLog("still running"); });
        NotificationCenter::defaultCenter().post("still running");
        MainLoop::shared().post([] {});
        GlobalQueue::background().after(Seconds(0.0001), *work);
    };
    for (int index = 0; index < 20; ++index)
        GlobalQueue::standard().async(*work);
    static const auto timer = Timer::repeating(Seconds(0.0005), [] {});
    static const auto observation =
        NotificationCenter::defaultCenter().addObserver("still running", [](const auto&) {});
}

class ProcessExitDeathTest : public testing::Test
{
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(ProcessExitDeathTest, HostMayQuitWhileEverythingRuns)
{
    EXPECT_EXIT(
        {
            startEndlessWork();
            MainLoop::shared().runUntil([] { return false; }, Seconds(0.05));
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitDeathTest, HostMayQuitWhileEveryWorkerIsHeld)
{
    EXPECT_EXIT(
        {
            static std::latch held(GlobalQueue::maximumThreads);
            static std::latch never(1);
            for (int index = 0; index < 100; ++index) {
                GlobalQueue::high().async([] {
                    held.count_down();
                    never.wait();
                });
            }
            held.wait();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitDeathTest, WorkMayStillBeGivenAfterMain)
{
    EXPECT_EXIT(
        {
            std::atexit([] {
                SerialQueue queue("at the end");
                std::latch ran(2);
                queue.async([&] { ran.count_down(); });
                GlobalQueue::standard().after(Seconds(0.001), [&] { ran.count_down(); });
                ran.wait();
            });
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace

} // namespace virlo::test
