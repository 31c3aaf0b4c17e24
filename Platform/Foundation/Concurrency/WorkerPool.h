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
/// demand, each ended after `idleLife` without work. Higher levels are served first, and each level has one
/// worker that the levels below it cannot take. The one instance is never destroyed: workers may outlive
/// `main`. Any thread.
class WorkerPool
{
public:
    /// Serial queues rank above the default level: other work waits for theirs.
    enum class Level { Background, Default, Serial, High };

    static constexpr std::chrono::seconds idleLife{5};

    [[nodiscard]] static WorkerPool& shared();

    void submit(Level level, std::function<void()> work);

    /// Counts work that waits or runs elsewhere but that `drain` has to wait for.
    void enter();
    void leave();

    /// False at once on a worker, which would wait for itself.
    bool drain(Seconds limit);

private:
    static constexpr std::size_t levelCount = 4;

    struct Task {
        Level level = Level::Default;
        std::function<void()> work;
    };

    WorkerPool() = default;

    [[nodiscard]] bool mayRun(Level level) const;
    [[nodiscard]] bool takeNext(Task& task);
    void runWorker();
    void leaveLocked();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_empty;
    std::array<std::deque<std::function<void()>>, levelCount> m_waiting;
    std::array<int, levelCount> m_running{};
    int m_threads = 0;
    int m_idle = 0;
    int m_wakeUps = 0; ///< idle workers that were notified and have not woken up yet
    std::size_t m_pending = 0;
};

} // namespace virlo
