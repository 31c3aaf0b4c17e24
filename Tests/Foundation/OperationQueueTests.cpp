#include "OperationQueue.h"

#include "DispatchGroup.h"
#include "Exception.h"
#include "WorkerBlock.h"

#include <gtest/gtest.h>

#include <atomic>

namespace virlo::test
{

namespace
{

TEST(OperationQueue, KeepsWorkWhileSuspendedAndRunsAllOfItOnceResumed)
{
    OperationQueue queue;
    std::atomic<int> ran = 0;
    queue.setSuspended(true);
    for (int index = 0; index < 50; ++index)
        queue.addOperation([&] { ++ran; });
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(ran, 0);
    queue.setSuspended(false);
    queue.setSuspended(false); // twice must not run anything twice
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(ran, 50);
}

TEST(OperationQueue, SuspendingHoldsBackWorkThatHasNotBegun)
{
    OperationQueue queue;
    std::atomic<int> ran = 0;
    {
        const WorkerBlock block;
        queue.addOperation([&] { ++ran; });
        queue.setSuspended(true);
    }
    EXPECT_EQ(ran, 0);
    queue.setSuspended(false);
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(ran, 1);
}

TEST(OperationQueue, DropsKeptWorkWithTheQueue)
{
    const auto held = std::make_shared<int>(0);
    {
        OperationQueue queue;
        queue.setSuspended(true);
        queue.addOperation([held] { ++*held; });
    }
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(held.use_count(), 1) << "the work was not freed";
}

TEST(DispatchGroup, NotifiesOnceWhenTheLastTaskLeaves)
{
    DispatchGroup group;
    std::atomic<int> notices = 0;
    group.enter();
    group.enter();
    group.notify(GlobalQueue::high(), [&] { ++notices; });
    group.leave();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(notices, 0);
    DispatchGroup copy = group;
    copy.leave();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(notices, 1);
    group.enter();
    group.leave();
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(notices, 1);
    group.notify(GlobalQueue::high(), [&] { ++notices; }); // nothing entered: at once
    EXPECT_TRUE(GlobalQueue::drain(Seconds(10)));
    EXPECT_EQ(notices, 2);
    EXPECT_THROW(group.leave(), Exception);
}

} // namespace

} // namespace virlo::test
