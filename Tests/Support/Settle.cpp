#include "Settle.h"

#include "GlobalQueue.h"
#include "MainLoop.h"

#include <memory>

namespace virlo::test
{

namespace
{

/// The loop calls its predicate only after posted work; this often for changes by other threads.
constexpr Seconds pollInterval(0.002);

} // namespace

bool settle(const std::function<bool()>& predicate, Seconds limit)
{
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    while (!MainLoop::shared().runUntil(predicate, pollInterval)) {
        if (std::chrono::steady_clock::now() >= end)
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
    // Tasks move between the queues and the loop; a few quiet rounds in a row show that none is left.
    constexpr int quietRounds = 3;
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    for (int quiet = 0; quiet < quietRounds;) {
        const bool isQuiet = GlobalQueue::drain(Seconds(0));
        if (!isQuiet && !GlobalQueue::drain(Seconds(end - std::chrono::steady_clock::now())))
            return false;
        if (MainLoop::isMainThread())
            pumpMainLoop();
        quiet = isQuiet ? quiet + 1 : 0;
        if (std::chrono::steady_clock::now() >= end)
            return false;
    }
    return true;
}

} // namespace virlo::test
