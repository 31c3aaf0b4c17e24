#include "Settle.h"

#include "GlobalQueue.h"
#include "MainLoop.h"

#include <memory>

namespace virlo::test
{

namespace
{

/// The loop asks its predicate only after work of its own; other threads' changes are looked for this often.
constexpr Seconds lookInterval(0.002);

bool passed(std::chrono::steady_clock::time_point end)
{
    return std::chrono::steady_clock::now() >= end;
}

} // namespace

bool settle(const std::function<bool()>& predicate, Seconds limit)
{
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    while (!MainLoop::shared().runUntil(predicate, lookInterval)) {
        if (passed(end))
            return predicate();
    }
    return true;
}

void pumpMainLoop()
{
    const auto reached = std::make_shared<bool>(false);
    MainLoop::shared().post([reached] { *reached = true; });
    MainLoop::shared().runUntil([reached] { return *reached; }, Seconds(10));
}

bool settleAll(Seconds limit)
{
    // Work hops between the queues and the loop; a few quiet rounds in a row show that no hop is left.
    constexpr int quietRounds = 3;
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    for (int quiet = 0; quiet < quietRounds;) {
        const bool atRest = GlobalQueue::drain(Seconds(0));
        if (!atRest && !GlobalQueue::drain(Seconds(end - std::chrono::steady_clock::now())))
            return false;
        if (MainLoop::isMainThread())
            pumpMainLoop();
        quiet = atRest ? quiet + 1 : 0;
        if (passed(end))
            return false;
    }
    return true;
}

} // namespace virlo::test
