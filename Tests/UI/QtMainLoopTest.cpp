#include "QtMainLoop.h"
#include "LogCapture.h"
#include "Settle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace virlo::test
{

namespace
{

std::vector<int>& postedBeforeTheApplication()
{
    static std::vector<int> order;
    return order;
}

/// Runs before main, and so before there is an application.
const bool posted = [] {
    for (int i = 0; i < 3; ++i)
        MainLoop::shared().post([i] { postedBeforeTheApplication().push_back(i); });
    return true;
}();

TEST(QtMainLoop, RunsWhatWasPostedBeforeTheApplication)
{
    ASSERT_TRUE(posted);
    EXPECT_EQ(&MainLoop::shared(), &QtMainLoop::instance());
    EXPECT_TRUE(settle([] { return postedBeforeTheApplication().size() == 3; }));
    EXPECT_EQ(postedBeforeTheApplication(), (std::vector{0, 1, 2}));
}

TEST(QtMainLoop, KeepsTheOrderAndTheCallersStackFree)
{
    std::vector<int> order;
    MainLoop::shared().post([&] {
        order.push_back(1);
        MainLoop::shared().post([&] { order.push_back(4); });
        order.push_back(2);
    });
    MainLoop::shared().post([&] { order.push_back(3); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(settle([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
}

TEST(QtMainLoop, TakesWorkFromOtherThreadsInTheirOrder)
{
    constexpr int threads = 4;
    constexpr int each = 500;
    std::vector<std::vector<int>> seen(threads);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&seen, t] {
            for (int i = 0; i < each; ++i)
                MainLoop::shared().post([&seen, t, i] { seen[static_cast<std::size_t>(t)].push_back(i); });
        });
    }
    for (auto& worker : workers)
        worker.join();
    pumpMainLoop();
    for (const auto& one : seen) {
        EXPECT_EQ(one.size(), static_cast<std::size_t>(each));
        EXPECT_TRUE(std::is_sorted(one.begin(), one.end()));
    }
}

TEST(QtMainLoop, SeesWhatAnotherThreadMakesTrue)
{
    std::atomic<bool> done{false};
    std::thread worker([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        done = true;
    });
    EXPECT_TRUE(MainLoop::shared().runUntil([&] { return done.load(); }, Seconds(5)));
    worker.join();
    EXPECT_FALSE(MainLoop::shared().runUntil([] { return false; }, Seconds(0.01)));
}

TEST(QtMainLoop, SurvivesWorkThatThrows)
{
    expectLog("work posted to the main loop");
    MainLoop::shared().post([] { throw std::runtime_error("mine"); });
    pumpMainLoop();
}

} // namespace

} // namespace virlo::test
