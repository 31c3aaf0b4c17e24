#pragma once

#include "Clock.h"

#include <functional>

namespace virlo
{

/// The process's concurrent queues, one per priority, over one bounded set of worker threads (see
/// `maximumThreads`): workers are made on demand and end after some idle seconds. Higher priorities are
/// served first, and lower ones never take the last worker. Work is not ordered. Any thread.
class GlobalQueue
{
public:
    /// `Serial` is that of every SerialQueue: other work waits for theirs.
    enum class Priority { Background, Default, Serial, High };

    static constexpr int maximumThreads = 8;

    [[nodiscard]] static GlobalQueue& background();
    [[nodiscard]] static GlobalQueue& standard();
    [[nodiscard]] static GlobalQueue& high();

    void async(std::function<void()> work);
    void after(Seconds delay, std::function<void()> work);

    /// Waits until nothing is queued or running on any global or serial queue, at most `limit`; returns
    /// whether that happened. For a process's exit and for tests; false at once on a worker.
    static bool drain(Seconds limit);

private:
    explicit GlobalQueue(Priority priority);

    Priority m_priority;
};

} // namespace virlo
