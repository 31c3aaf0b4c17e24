#pragma once

#include "Clock.h"

#include <functional>

namespace virlo
{

/// The process's concurrent queues, one per priority, over one bounded set of worker threads (see
/// `maximumThreads`): workers are made on demand and end after some seconds of idleness. Higher priorities
/// are served first, and lower ones never take the last worker. Work is not ordered. Any thread.
class GlobalQueue
{
public:
    enum class Priority { Background, Default, High };

    static constexpr int maximumThreads = 8;

    [[nodiscard]] static GlobalQueue& background();
    [[nodiscard]] static GlobalQueue& standard();
    [[nodiscard]] static GlobalQueue& high();

    void async(std::function<void()> work);
    void after(Seconds delay, std::function<void()> work);

    /// Waits until nothing is queued or running on any global or serial queue, at most `limit`; the answer
    /// tells whether that came about. For a process's end and for tests; never from a worker.
    static bool drain(Seconds limit);

private:
    explicit GlobalQueue(Priority priority);

    Priority m_priority;
};

} // namespace virlo
