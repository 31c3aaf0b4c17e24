#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace virlo
{

/// A wall-clock moment.
using Date = std::chrono::system_clock::time_point;
using Seconds = std::chrono::duration<double>;

/// The process's source of time and of everything that happens later: timers, delayed queue work, time-outs
/// of the library's own. Tests put a clock of their own in its place and advance it. Any thread.
class Clock
{
public:
    using Instant = std::chrono::steady_clock::time_point;

    /// One scheduled call. Letting go of it does not cancel; `cancel` does, and once it has returned the call
    /// will not start any more (one that has started goes on).
    class Scheduled
    {
    public:
        virtual ~Scheduled() = default;
        virtual void cancel() = 0;
    };

    virtual ~Clock() = default;

    [[nodiscard]] virtual Instant now() const = 0;
    [[nodiscard]] virtual Date date() const = 0;
    /// Calls `work` once, on a thread of the clock's own, `delay` from now (at once where it is not above
    /// zero). `work` must be short: it posts the real work elsewhere.
    virtual std::shared_ptr<Scheduled> schedule(Seconds delay, std::function<void()> work) = 0;

    /// The clock in force: the system's unless one was set.
    [[nodiscard]] static Clock& shared();
    /// Puts `clock` in force for the whole process, or the system's again for null. Not owned; it must
    /// outlive everything that was scheduled on it.
    static void setShared(Clock* clock);

    /// `delay` to the nearest tick, at least none and at most a hundred years; NaN is none.
    [[nodiscard]] static Instant::duration ticks(Seconds delay);
};

} // namespace virlo
