#include "Timer.h"

#include "MainLoop.h"
#include "Settle.h"
#include "TestClock.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace virlo::test
{

namespace
{

using testing::ElementsAre;

class TimerTest : public testing::Test
{
protected:
    [[nodiscard]] double elapsed() const { return Seconds(m_clock.now() - m_start).count(); }

    TestClock m_clock;
    Clock::Instant m_start = m_clock.now();
};

TEST_F(TimerTest, OneShotFiresOnceOnTheMainThread)
{
    int fired = 0;
    const auto timer = Timer::once(Seconds(60), [&] {
        EXPECT_TRUE(MainLoop::isMainThread());
        ++fired;
    });
    m_clock.advance(Seconds(59.999));
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(timer->isValid());
    m_clock.advance(Seconds(0.001));
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(timer->isValid());
    m_clock.advance(Seconds(600));
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(m_clock.pendingCount(), 0U);
}

TEST_F(TimerTest, InvalidatedOrReleasedAfterItsPostItDoesNotRun)
{
    int fired = 0;
    const auto timer = Timer::once(Seconds(1), [&] { ++fired; });
    auto released = Timer::repeating(Seconds(1), [&] { ++fired; });
    m_clock.advance(Seconds(1), TestClock::Settling::None); // posted, not yet run
    timer->invalidate();
    released.reset();
    pumpMainLoop();
    m_clock.advance(Seconds(5));
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(m_clock.pendingCount(), 0U);
}

TEST_F(TimerTest, RepeatingKeepsItsIntervalAndSkipsTimesWhileTheLoopIsBlocked)
{
    std::vector<double> times;
    const auto timer = Timer::repeating(Seconds(1), [&] { times.push_back(elapsed()); });
    m_clock.advance(Seconds(2.5));
    EXPECT_THAT(times, ElementsAre(1, 2));
    m_clock.advance(Seconds(4), TestClock::Settling::None); // the loop is blocked from 2.5 to 6.5
    m_clock.advance(Seconds(1));
    EXPECT_THAT(times, ElementsAre(1, 2, 6.5, 7));
}

TEST_F(TimerTest, WorkMayInvalidateAndReleaseItsOwnTimer)
{
    int fired = 0;
    std::shared_ptr<Timer> timer;
    timer = Timer::repeating(Seconds(1), [&] {
        ++fired;
        timer->invalidate();
        timer.reset();
    });
    m_clock.advance(Seconds(10));
    EXPECT_EQ(fired, 1);
}

TEST_F(TimerTest, InvalidatingFreesWhatTheWorkHolds)
{
    const auto held = std::make_shared<int>();
    const auto timer = Timer::once(Seconds(1), [held] {});
    EXPECT_EQ(held.use_count(), 2);
    timer->invalidate();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(TimerOnTheSystemClock, InvalidatingRacesWithFiringUnharmed)
{
    std::atomic<int> fired = 0;
    int late = 0;
    for (int round = 0; round < 300; ++round) {
        bool invalidated = false;
        const auto timer = Timer::once(Seconds(round % 5 * 2e-5), [&] {
            ++fired;
            late += invalidated ? 1 : 0;
        });
        std::jthread other;
        if (round % 3 == 0)
            other = std::jthread([&] { timer->invalidate(); });
        pumpMainLoop();
        timer->invalidate();
        invalidated = true;
        pumpMainLoop();
    }
    EXPECT_EQ(late, 0) << "work ran after invalidate had returned on the main thread";
    const auto last = Timer::once(Seconds(0), [&] { fired = -1; });
    EXPECT_TRUE(settle([&] { return fired == -1; }));
}

} // namespace

} // namespace virlo::test
