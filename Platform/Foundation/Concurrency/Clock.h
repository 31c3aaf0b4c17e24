#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace virlo
{

/// A wall-clock moment.
using Date = std::chrono::system_clock::time_point;
using Seconds = std::chrono::duration<double>;

/// The process's source of time, of timers, delayed queue work and the library's own timeouts. Tests set a
/// clock of their own and advance it. Any thread.
class Clock
{
public:
    using Instant = std::chrono::steady_clock::time_point;

    /// One scheduled call. Releasing it does not cancel; `cancel` does, and once it has returned the call
    /// will not start any more (one that has started continues).
    class Scheduled
    {
    public:
        virtual ~Scheduled() = default;
        virtual void cancel() = 0;
    };

    virtual ~Clock() = default;

    [[nodiscard]] virtual Instant now() const = 0;
    [[nodiscard]] virtual Date date() const = 0;
    /// Calls `work` once, on the clock's own thread, `delay` from now (at once where it is not above zero).
    /// `work` must be short: it posts the real work elsewhere.
    virtual std::shared_ptr<Scheduled> schedule(Seconds delay, std::function<void()> work) = 0;

    /// The system's unless another was set.
    [[nodiscard]] static Clock& shared();
    /// For the whole process; null restores the system's. Not owned; it must outlive everything that was
    /// scheduled on it.
    static void setShared(Clock* clock);

    /// `delay` rounded, clamped to 0 and a hundred years; NaN gives 0.
    [[nodiscard]] static Instant::duration ticks(Seconds delay);
};

} // namespace virlo
