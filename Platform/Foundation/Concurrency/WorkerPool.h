#pragma once

#include "Clock.h"
#include "GlobalQueue.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace virlo
{

/// The worker threads behind the global and serial queues: at most `GlobalQueue::maximumThreads`, made on
/// demand, each ended after `idleLife` without work. Higher priorities are served first, and each priority
/// has one worker that those below it cannot take. The worker that became idle last is woken first: the C
/// library keeps memory for each thread that decodes images, 12 MiB more after a grid of 800 cells where all
/// take turns. The one instance is never destroyed: workers may outlive `main`. Any thread.
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

    /// On the stack of a worker while it waits.
    struct IdleWorker {
        std::condition_variable wake;
        bool isWoken = false;
    };

    WorkerPool() = default;

    [[nodiscard]] bool mayRun(Priority priority) const;
    [[nodiscard]] bool takeNext(Task& task);
    void runWorker();
    [[nodiscard]] bool waitForWork(std::unique_lock<std::mutex>& lock);
    void leaveLocked();

    std::mutex m_mutex;
    std::condition_variable m_empty;
    std::array<std::deque<std::function<void()>>, priorityCount> m_waiting;
    std::array<int, priorityCount> m_running{};
    int m_threads = 0;
    std::vector<IdleWorker*> m_idle; ///< longest idle first; without those that are woken
    std::size_t m_pending = 0;
};

} // namespace virlo
