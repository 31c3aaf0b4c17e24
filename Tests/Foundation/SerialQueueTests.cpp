#include "SerialQueue.h"

#include "Exception.h"
#include "LogCapture.h"
#include "TestClock.h"
#include "WorkerBlock.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <latch>
#include <numeric>
#include <thread>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

TEST(SerialQueue, KeepsEachCallersOrderAndNeverOverlaps)
{
    constexpr int callers = 4;
    constexpr int rounds = 2000;
    SerialQueue queue("order");
    std::array<std::vector<int>, callers> seen; // unguarded on purpose: the queue is the guard
    int inside = 0;
    bool overlapped = false;
    {
        std::vector<std::jthread> threads;
        for (int caller = 0; caller < callers; ++caller) {
            threads.emplace_back([&, caller] {
                for (int round = 0; round < rounds; ++round) {
                    const auto task = [&, caller, round] {
                        overlapped |= ++inside != 1;
                        seen[static_cast<std::size_t>(caller)].push_back(round);
                        --inside;
                    };
                    if (round % 3 == 0)
                        queue.sync(task);
                    else
                        queue.async(task);
                }
            });
        }
    }
    queue.sync([] {});
    EXPECT_FALSE(overlapped);
    std::vector<int> expected(rounds);
    std::iota(expected.begin(), expected.end(), 0);
    for (const auto& order : seen)
        EXPECT_EQ(order, expected);
}

TEST(SerialQueue, SyncRunsWaitingTasksItselfWhenEveryWorkerIsHeld)
{
    WorkerBlock block;
    SerialQueue queue("held");
    const auto caller = std::this_thread::get_id();
    std::vector<std::string> order;
    bool onCaller = true;
    for (const char* const name : {"first", "second"}) {
        queue.async([&, name] {
            onCaller &= std::this_thread::get_id() == caller && queue.isCurrent();
            order.emplace_back(name);
        });
    }
    queue.sync([&] { order.emplace_back("sync"); });
    EXPECT_THAT(order, ElementsAre("first", "second", "sync"));
    EXPECT_TRUE(onCaller);
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueue, SleepingSyncCallerGetsItsTurnWhenEveryWorkerIsHeld)
{
    WorkerBlock block;
    SerialQueue queue("handed over");
    std::vector<std::string> order;
    std::latch inside(1);
    std::latch leave(1);
    std::jthread first([&] {
        queue.sync([&] {
            inside.count_down();
            leave.wait();
            order.emplace_back("first");
        });
    });
    inside.wait();
    queue.async([&] { order.emplace_back("between"); });
    std::jthread second([&] { queue.sync([&] { order.emplace_back("second"); }); });
    // The second caller should sleep by now; the outcome is the same where it does not.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    leave.count_down();
    first.join();
    second.join();
    EXPECT_THAT(order, ElementsAre("first", "between", "second"));
}

TEST(SerialQueue, ExceptionLeavesSyncAndFreesTheQueue)
{
    SerialQueue queue("throwing");
    EXPECT_THROW(queue.sync([] { throw std::runtime_error("out"); }), std::runtime_error);
    EXPECT_EQ(queue.read([] { return 7; }), 7);
}

TEST(SerialQueue, SyncFromItselfRaisesInsteadOfWaiting)
{
    SerialQueue queue("itself");
    std::string name;
    const auto nested = [&] {
        try {
            queue.sync([] {});
        } catch (const Exception& exception) {
            name = exception.name();
        }
    };
    queue.sync(nested);
    EXPECT_EQ(name, Exception::internalInconsistency);
    name.clear();
    queue.async(nested);
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(name, Exception::internalInconsistency);
}

TEST(SerialQueue, ThrowingTaskIsLoggedAndTheNextOneRuns)
{
    expectLog("Uncaught exception in throwing task: lost");
    SerialQueue queue("throwing task");
    bool ran = false;
    queue.async([] { throw std::runtime_error("lost"); });
    queue.async([&] { ran = true; });
    queue.sync([] {});
    EXPECT_TRUE(ran);
}

TEST(SerialQueue, GivenTasksOutliveTheQueue)
{
    TestClock clock;
    std::vector<int> order;
    {
        auto queue = std::make_unique<SerialQueue>("gone");
        queue->after(Seconds(1), [&] { order.push_back(3); });
        const WorkerBlock block;
        queue->async([&] { order.push_back(1); });
        queue->async([&] { order.push_back(2); });
        queue.reset();
    }
    EXPECT_THAT(order, ElementsAre(1, 2));
    clock.advance(Seconds(1));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(SerialQueue, DrainWaitsForTasksThatASyncCallerTookOver)
{
    auto block = std::make_unique<WorkerBlock>();
    SerialQueue queue("taken over");
    std::latch inside(1);
    std::atomic<bool> done = false;
    queue.async([&] {
        inside.count_down();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        done = true;
    });
    std::jthread caller([&] { queue.sync([] {}); });
    inside.wait();
    block->release();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_TRUE(done);
}

} // namespace

} // namespace virlo::test
