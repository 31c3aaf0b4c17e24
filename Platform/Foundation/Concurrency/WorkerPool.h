#pragma once

#include "Clock.h"
#include "GlobalQueue.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace virlo
{

/// The worker threads behind the global and serial queues: at most `GlobalQueue::maximumThreads`, made on
/// demand, each ended after `idleLife` without work. Higher priorities are served first, and each priority
/// has one worker that those below it cannot take. The one instance is never destroyed: workers may outlive
/// `main`. Any thread.
class WorkerPool
{
public:
    using Priority = GlobalQueue::Priority;

    static constexpr std::chrono::seconds idleLife{5};

    [[nodiscard]] static WorkerPool& shared();

    void submit(Priority priority, std::function<void()> work);

    /// Counts work that waits or runs elsewhere but that `drain` has to wait for.
    void enter();
    void leave();

    /// False at once on a worker, which would wait for itself.
    bool drain(Seconds limit);

private:
    static constexpr std::size_t priorityCount = 4;

    struct Task {
        Priority priority = Priority::Default;
        std::function<void()> work;
    };

    WorkerPool() = default;

    [[nodiscard]] bool mayRun(Priority priority) const;
    [[nodiscard]] bool takeNext(Task& task);
    void runWorker();
    void leaveLocked();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_empty;
    std::array<std::deque<std::function<void()>>, priorityCount> m_waiting;
    std::array<int, priorityCount> m_running{};
    int m_threads = 0;
    int m_idle = 0;
    int m_wakeUps = 0; ///< idle workers that were notified and have not woken up yet
    std::size_t m_pending = 0;
};

} // namespace virlo
