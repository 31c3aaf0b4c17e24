#include "Clock.h"

#include "SystemClock.h"

#include <atomic>
#include <cmath>

namespace virlo
{

namespace
{

constinit std::atomic<Clock*> currentClock = nullptr;

} // namespace

Clock& Clock::shared()
{
    if (Clock* const clock = currentClock.load(std::memory_order_acquire))
        return *clock;
    return SystemClock::shared();
}

void Clock::setShared(Clock* clock)
{
    currentClock.store(clock, std::memory_order_release);
}

Clock::Instant::duration Clock::ticks(Seconds delay)
{
    constexpr double longest = 100.0 * 365 * 24 * 60 * 60;
    if (!(delay.count() > 0))
        return {};
    const Seconds bounded(std::fmin(delay.count(), longest));
    return std::chrono::round<Instant::duration>(bounded);
}

} // namespace virlo
