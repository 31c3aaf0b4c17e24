#include "GlobalQueue.h"

#include "LogCapture.h"
#include "SerialQueue.h"
#include "WorkerBlock.h"

#include <gtest/gtest.h>

#include <atomic>

namespace virlo::test
{

namespace
{

TEST(GlobalQueue, BlockedLowerPrioritiesNeverStopHigherOnes)
{
    std::latch release(1);
    for (int index = 0; index < 3 * GlobalQueue::maximumThreads; ++index)
        GlobalQueue::background().async([&] { release.wait(); });
    std::latch standardRan(1);
    GlobalQueue::standard().async([&] { standardRan.count_down(); });
    standardRan.wait();

    for (int index = 0; index < 3 * GlobalQueue::maximumThreads; ++index)
        GlobalQueue::standard().async([&] { release.wait(); });
    std::latch serialRan(1);
    SerialQueue queue("through");
    queue.async([&] { serialRan.count_down(); });
    serialRan.wait();
    std::latch highRan(1);
    GlobalQueue::high().async([&] { highRan.count_down(); });
    highRan.wait();

    EXPECT_FALSE(GlobalQueue::drain(Seconds(0)));
    release.count_down();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
}

TEST(GlobalQueue, HigherPrioritiesAreServedFirst)
{
    auto block = std::make_unique<WorkerBlock>();
    std::latch everyHighRuns(GlobalQueue::maximumThreads);
    std::atomic<int> overtaken = 0;
    for (int index = 0; index < GlobalQueue::maximumThreads; ++index) {
        GlobalQueue::background().async([&] { overtaken += everyHighRuns.try_wait() ? 0 : 1; });
        GlobalQueue::high().async([&] { everyHighRuns.arrive_and_wait(); });
    }
    block.reset();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(overtaken, 0);
}

TEST(GlobalQueue, ThrowingWorkIsLoggedAndItsWorkerContinues)
{
    expectLog("Uncaught exception in queued work: lost");
    expectLog("Uncaught exception in queued work: unknown");
    GlobalQueue::standard().async([] { throw std::runtime_error("lost"); });
    GlobalQueue::standard().async([] { throw 1; });
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
}

TEST(GlobalQueue, DrainOnAWorkerReturnsInsteadOfWaitingForItself)
{
    std::atomic<bool> result = true;
    GlobalQueue::standard().async([&] { result = GlobalQueue::drain(Seconds(60)); });
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_FALSE(result);
}

} // namespace

} // namespace virlo::test
