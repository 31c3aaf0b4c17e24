#pragma once

#include "Clock.h"

#include <functional>
#include <memory>
#include <string>

namespace virlo
{

/// Work done one piece at a time, in the order given. It owns no thread: pieces run on the process's bounded
/// set of workers, and `sync` on an idle queue runs on the caller's thread. Where pieces wait for a worker, a
/// `sync` caller runs them itself, so no number of blocked workers can stop a queue. Usable from any thread;
/// pieces already given still run after the last outside reference has gone.
///
/// `sync` from a piece already running on the same queue would wait for itself: it raises an Exception
/// instead.
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
    /// `async`, `delay` from now by the clock in force.
    void after(Seconds delay, std::function<void()> work);

    /// `sync` that hands back what `work` returns.
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
