#pragma once

#include "Clock.h"

#include <functional>
#include <memory>
#include <string>

namespace virlo
{

/// Runs tasks one at a time, in the order given. It owns no thread: tasks run on the process's bounded set of
/// workers, and `sync` on an idle queue runs on the caller's thread. Where tasks wait for a worker, a `sync`
/// caller runs them itself, so no number of blocked workers can stop a queue. Usable from any thread; tasks
/// already given still run after the queue object is destroyed.
///
/// `sync` from a task of the same queue would wait for itself: it raises an Exception instead.
class SerialQueue
{
public:
    explicit SerialQueue(std::string label);
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    void async(std::function<void()> work);
    /// Returns once `work` has run. An exception that leaves `work` leaves here.
    void sync(const std::function<void()>& work);
    /// `async`, `delay` from now by the shared clock.
    void after(Seconds delay, std::function<void()> work);

    /// `sync` that returns the result of `work`.
    template <typename Work>
    [[nodiscard]] auto read(Work&& work)
    {
        decltype(work()) result{};
        sync([&] { result = work(); });
        return result;
    }

    [[nodiscard]] const std::string& label() const noexcept;
    [[nodiscard]] bool isCurrent() const noexcept;

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace virlo
