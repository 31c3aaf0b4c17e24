#include "WorkerPool.h"

#include "SerialQueue.h"
#include "WorkerBlock.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>

namespace virlo::test
{

namespace
{

using Level = WorkerPool::Level;

WorkerPool& pool()
{
    return WorkerPool::shared();
}

bool noRelief()
{
    return false;
}

TEST(WorkerPoolHelper, DoesItsOwnPiecesAndWhatTheyGiveRiseToWithoutAWorker)
{
    const auto here = std::this_thread::get_id();
    WorkerPool::Helper helper(noRelief);
    SerialQueue queue("helped");
    std::atomic<int> ranHere = 0;
    const auto note = [&] { ranHere += std::this_thread::get_id() == here ? 1 : 0; };
    // On a busy machine this thread may stand still for so long that a worker comes by.
    for (int attempt = 0; attempt < 100 && ranHere < 2; ++attempt) {
        ranHere = 0;
        queue.async([&] {
            note();
            pool().submit(Level::Background, note);
        });
        EXPECT_EQ(ranHere, 0) << "ran inside the call that gave it";
        EXPECT_TRUE(helper.work());
        queue.sync([] {});
    }
    EXPECT_EQ(ranHere, 2);
}

TEST(WorkerPoolHelper, HeldUpByAPieceLosesItsLoopToAnotherThread)
{
    std::latch free(1);
    std::latch relieved(1);
    std::atomic<int> attempts = 0;
    std::atomic<int> elsewhere = 0;
    std::optional<bool> leads;
    std::jthread loop([&] {
        const auto here = std::this_thread::get_id();
        WorkerPool::Helper helper([&] {
            if (++attempts < 3)
                return false; // as where the system gives no thread for the moment
            relieved.count_down();
            return true;
        });
        pool().submit(Level::Default, [&, here] {
            // The first it would do itself, were it not held up.
            for (int index = 0; index < 3; ++index)
                pool().submit(Level::Default,
                              [&, here] { elsewhere += std::this_thread::get_id() != here ? 1 : 0; });
            free.wait();
        });
        leads = helper.work();
    });
    relieved.wait();
    while (elsewhere < 3)
        std::this_thread::yield();
    free.count_down();
    loop.join();
    EXPECT_EQ(leads, false);
    EXPECT_EQ(attempts, 3);
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
}

TEST(WorkerPoolHelper, GoesOnWithItsLoopWhereNoPieceMayRun)
{
    auto block = std::make_unique<WorkerBlock>();
    std::optional<WorkerPool::Helper> helper(noRelief);
    std::atomic<bool> ran = false;
    pool().submit(Level::High, [&] { ran = true; });
    EXPECT_TRUE(helper->work());
    EXPECT_FALSE(ran) << "more pieces run at once than there may be";
    helper.reset();
    block->release();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_TRUE(ran);
}

} // namespace

} // namespace virlo::test
