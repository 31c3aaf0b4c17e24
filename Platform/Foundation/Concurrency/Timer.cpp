#include "Timer.h"

#include "MainLoop.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace virlo
{

namespace
{

/// A repeating timer without an interval would leave the main loop no time for anything else.
constexpr Clock::Instant::duration shortestInterval = std::chrono::microseconds(100);

class MainLoopTimer : public Timer, public std::enable_shared_from_this<MainLoopTimer>
{
public:
    MainLoopTimer(Seconds interval, std::function<void()> work, bool repeats)
        : m_clock(Clock::shared())
        , m_interval(interval)
        , m_repeats(repeats)
        , m_work(std::make_shared<std::function<void()>>(std::move(work)))
    {
    }

    ~MainLoopTimer() override { MainLoopTimer::invalidate(); }

    void start()
    {
        const std::lock_guard lock(m_mutex);
        m_due = m_clock.now() + Clock::ticks(m_interval);
        schedule(m_interval);
    }

    void invalidate() override
    {
        std::shared_ptr<Clock::Scheduled> scheduled;
        std::shared_ptr<std::function<void()>>
            work; // destroyed without the lock: it may own what uses this timer
        {
            const std::lock_guard lock(m_mutex);
            scheduled.swap(m_scheduled);
            work.swap(m_work);
        }
        if (scheduled)
            scheduled->cancel();
    }

    [[nodiscard]] bool isValid() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_work != nullptr;
    }

private:
    void schedule(Seconds delay)
    {
        m_scheduled = m_clock.schedule(delay, [weak = weak_from_this()] {
            MainLoop::shared().post([weak] {
                if (const auto self = weak.lock())
                    self->fire();
            });
        });
    }

    void fire()
    {
        std::shared_ptr<std::function<void()>> work;
        {
            const std::lock_guard lock(m_mutex);
            if (m_repeats)
                work = m_work;
            else
                work.swap(m_work);
        }
        if (!work)
            return;
        // Scheduled again before the work runs, which may throw. A blocked main loop skips the missed times
        // instead of firing once for each.
        if (m_repeats)
            scheduleNext();
        (*work)();
    }

    void scheduleNext()
    {
        const auto step = std::max(Clock::ticks(m_interval), shortestInterval);
        const std::lock_guard lock(m_mutex);
        if (!m_work)
            return;
        const auto now = m_clock.now();
        m_due += step;
        if (m_due <= now)
            m_due += step * ((now - m_due) / step + 1);
        schedule(m_due - now);
    }

    Clock& m_clock;
    const Seconds m_interval;
    const bool m_repeats;
    mutable std::mutex m_mutex;
    std::shared_ptr<std::function<void()>> m_work; ///< null once invalid
    std::shared_ptr<Clock::Scheduled> m_scheduled;
    Clock::Instant m_due;
};

std::shared_ptr<Timer> startedTimer(Seconds interval, std::function<void()> work, bool repeats)
{
    const auto timer = std::make_shared<MainLoopTimer>(interval, std::move(work), repeats);
    timer->start();
    return timer;
}

} // namespace

std::shared_ptr<Timer> Timer::once(Seconds interval, std::function<void()> work)
{
    return startedTimer(interval, std::move(work), false);
}

std::shared_ptr<Timer> Timer::repeating(Seconds interval, std::function<void()> work)
{
    return startedTimer(interval, std::move(work), true);
}

} // namespace virlo
