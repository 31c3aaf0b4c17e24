#include "BuiltInMainLoop.h"

#include "Guarded.h"

#include <utility>

namespace virlo
{

BuiltInMainLoop& BuiltInMainLoop::shared()
{
    static auto* const loop = new BuiltInMainLoop;
    return *loop;
}

void BuiltInMainLoop::post(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_waiting.push_back(std::move(work));
    m_posted.notify_one();
}

bool BuiltInMainLoop::runUntil(const std::function<bool()>& done, Seconds limit)
{
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    while (!done()) {
        std::function<void()> work;
        {
            std::unique_lock lock(m_mutex);
            if (!m_posted.wait_until(lock, end, [this] { return !m_waiting.empty(); }))
                return done();
            work = std::move(m_waiting.front());
            m_waiting.pop_front();
        }
        runGuarded(work, "work posted to the main loop");
        work = nullptr;
        // Steady work must not keep the caller beyond its limit.
        if (std::chrono::steady_clock::now() >= end)
            return done();
    }
    return true;
}

} // namespace virlo
