#pragma once

#include "Clock.h"
#include "GlobalQueue.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace virlo
{

/// The worker threads behind the global and serial queues: at most `GlobalQueue::maximumThreads`, made on
/// demand, each ended after `idleLife` without work. Higher levels are served first, and each level keeps one
/// worker that the levels below it cannot take. The one instance is never destroyed: workers may outlive
/// `main`. Any thread.
class WorkerPool
{
public:
    /// Serial queues stand above the default level: their pieces are what other work waits for.
    enum class Level { Background, Default, Serial, High };

    static constexpr std::chrono::seconds idleLife{5};

    [[nodiscard]] static WorkerPool& shared();

    /// A thread that runs a loop of its own and does, between two rounds, the pieces that the round gave rise
    /// to, so that no worker has to be woken for them. Made, used and destroyed on that thread, one a thread.
    ///
    /// A piece that takes longer than a moment does not hold the loop up: `relief` is called on another
    /// thread and has to see to it that somebody else runs the loop from there on; false where it cannot. It
    /// must not use the pool.
    class Helper
    {
    public:
        explicit Helper(std::function<bool()> relief);
        ~Helper();
        Helper(const Helper&) = delete;
        Helper& operator=(const Helper&) = delete;

        /// Does what waits. False where the thread was relieved meanwhile: the loop is not its own any more.
        [[nodiscard]] bool work();

    private:
        friend class WorkerPool;

        const std::function<bool()> m_relief;
        // Guarded by the pool's lock:
        bool m_keepsOne = false; ///< a piece that nobody was woken for
        bool m_relieved = false;
        std::uint64_t m_busySince = 0; ///< in ticks
    };

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
    struct Worker;

    WorkerPool() = default;

    [[nodiscard]] bool mayRun(Level level) const;
    [[nodiscard]] bool takeNext(Task& task);
    [[nodiscard]] bool hasRoomForWorker() const;
    /// `task` counts as running. Gives the lock up where a worker has to be made.
    void giveToWorker(std::unique_lock<std::mutex>& lock, Task task);
    void wakeIdle(Task task);
    void startWorker(Task task);
    void runWorker(Task task);
    void finishLocked(Level level);
    void leaveLocked();
    bool help(Helper& helper);
    /// Sees to it that `tick` comes while a helper works or keeps a piece.
    void watch();
    void tick();

    std::mutex m_mutex;
    std::condition_variable m_atRest;
    std::array<std::deque<std::function<void()>>, levelCount> m_waiting;
    std::array<int, levelCount> m_running{};
    std::vector<Worker*>
        m_idle; ///< the one idle for the shortest last: it is taken first, so the others can end
    int m_threads = 0;
    std::size_t m_pending = 0;
    Helper* m_busyHelper = nullptr; ///< until it has done its piece, or was relieved
    std::uint64_t m_taken = 0;
    std::uint64_t m_ticks = 0;
    std::uint64_t m_takenAtTick = 0;
    int m_quietTicks = 0;
    bool m_watching = false;
};

} // namespace virlo
