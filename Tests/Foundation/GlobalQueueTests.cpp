#include "GlobalQueue.h"

#include "LogCapture.h"
#include "SerialQueue.h"
#include "WorkerBlock.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace virlo::test
{

namespace
{

int threadsNamed(const std::string& name)
{
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream stream(task.path() / "comm");
        std::string found;
        std::getline(stream, found);
        count += found == name ? 1 : 0;
    }
    return count;
}

TEST(GlobalQueue, ThreadsStayBoundedUnderTenThousandTasks)
{
    constexpr int tasks = 10'000;
    std::atomic<int> ran = 0;
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    const auto task = [&] {
        const int now = ++inside;
        for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
        }
        if (ran % 100 == 0)
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        --inside;
        ++ran;
    };
    int threads = 0;
    for (int index = 0; index < tasks; ++index) {
        GlobalQueue* const queues[] = {&GlobalQueue::background(), &GlobalQueue::standard(),
                                       &GlobalQueue::high()};
        queues[index % 3]->async(task);
        if (index % 1000 == 0)
            threads = std::max(threads, threadsNamed("virlo-worker"));
    }
    threads = std::max(threads, threadsNamed("virlo-worker"));
    EXPECT_TRUE(GlobalQueue::drain(Seconds(60)));
    EXPECT_EQ(ran, tasks);
    EXPECT_LE(most, GlobalQueue::maximumThreads);
    EXPECT_GT(most, 1) << "nothing ran side by side";
    EXPECT_LE(threads, GlobalQueue::maximumThreads);
}

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
