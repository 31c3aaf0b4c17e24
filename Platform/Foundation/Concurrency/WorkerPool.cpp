#include "WorkerPool.h"

#include "DetachedThread.h"
#include "Guarded.h"
#include "SystemClock.h"

#include <algorithm>
#include <memory>

namespace virlo
{

namespace
{

thread_local bool isWorker = false;
thread_local WorkerPool::Helper* helperHere = nullptr;

/// A helper's piece is left alone for one to two of them.
constexpr Seconds tickLength{0.001};
/// Ticks go on for so long after the last piece: a loop that is busy would have to ask for them all the time.
constexpr int quietTicksToTheEnd = 10;

/// How many workers a level and those below it may hold together.
constexpr std::array<int, 4> share{GlobalQueue::maximumThreads - 3, GlobalQueue::maximumThreads - 2,
                                   GlobalQueue::maximumThreads - 1, GlobalQueue::maximumThreads};

} // namespace

struct WorkerPool::Worker {
    std::condition_variable wake;
    Task task;
    bool assigned = false;
};

WorkerPool& WorkerPool::shared()
{
    static auto* const pool = new WorkerPool;
    return *pool;
}

void WorkerPool::submit(Level level, std::function<void()> work)
{
    std::unique_lock lock(m_mutex);
    ++m_pending;
    if (helperHere != nullptr && !std::exchange(helperHere->m_keepsOne, true)) {
        m_waiting[static_cast<std::size_t>(level)].push_back(std::move(work));
        watch();
        return;
    }
    if (!mayRun(level) || !hasRoomForWorker()) {
        m_waiting[static_cast<std::size_t>(level)].push_back(std::move(work));
        return;
    }
    if (isWorker && !m_idle.empty()) {
        // A worker that is about to end its own piece gets there before another one has woken up.
        m_waiting[static_cast<std::size_t>(level)].push_back(std::move(work));
        wakeIdle({});
        return;
    }
    ++m_running[static_cast<std::size_t>(level)];
    giveToWorker(lock, {level, std::move(work)});
}

void WorkerPool::giveToWorker(std::unique_lock<std::mutex>& lock, Task task)
{
    if (!m_idle.empty()) {
        wakeIdle(std::move(task));
        return;
    }
    ++m_threads;
    lock.unlock();
    startWorker(std::move(task));
}

void WorkerPool::wakeIdle(Task task)
{
    Worker& worker = *m_idle.back();
    m_idle.pop_back();
    worker.task = std::move(task);
    worker.assigned = true;
    worker.wake.notify_one(); // under the lock: the worker lives on its thread's stack
}

void WorkerPool::startWorker(Task task)
{
    const auto first = std::make_shared<Task>(std::move(task));
    if (startDetachedThread("virlo-worker", [this, first] { runWorker(std::move(*first)); }))
        return;
    // No thread to be had: the work waits for a worker there is, or for the next attempt to make one.
    const std::lock_guard lock(m_mutex);
    --m_threads;
    --m_running[static_cast<std::size_t>(first->level)];
    m_waiting[static_cast<std::size_t>(first->level)].push_front(std::move(first->work));
}

void WorkerPool::runWorker(Task task)
{
    isWorker = true;
    Worker self;
    self.task = std::move(task);
    std::unique_lock lock(m_mutex, std::defer_lock);
    for (;;) {
        runGuarded(self.task.work, "queued work");
        self.task.work = nullptr;
        lock.lock();
        finishLocked(self.task.level);
        // Woken without a piece of its own, it finds one waiting, or that somebody was quicker.
        while (!self.task.work && !takeNext(self.task)) {
            self.assigned = false;
            m_idle.push_back(&self);
            self.wake.wait_for(lock, idleLife, [&self] { return self.assigned; });
            if (!self.assigned) {
                std::erase(m_idle, &self);
                --m_threads;
                return;
            }
        }
        lock.unlock();
    }
}

bool WorkerPool::hasRoomForWorker() const
{
    return !m_idle.empty() || m_threads < GlobalQueue::maximumThreads;
}

bool WorkerPool::mayRun(Level level) const
{
    int held = 0;
    for (std::size_t index = 0; index < levelCount; ++index) {
        held += m_running[index];
        if (index >= static_cast<std::size_t>(level) && held >= share[index])
            return false;
    }
    return true;
}

bool WorkerPool::takeNext(Task& task)
{
    for (std::size_t index = levelCount; index-- > 0;) {
        const auto level = static_cast<Level>(index);
        auto& waiting = m_waiting[index];
        if (waiting.empty() || !mayRun(level))
            continue;
        task.level = level;
        task.work = std::move(waiting.front());
        waiting.pop_front();
        ++m_running[index];
        ++m_taken;
        return true;
    }
    return false;
}

void WorkerPool::finishLocked(Level level)
{
    --m_running[static_cast<std::size_t>(level)];
    leaveLocked();
}

WorkerPool::Helper::Helper(std::function<bool()> relief) : m_relief(std::move(relief))
{
    isWorker = true;
    helperHere = this;
}

WorkerPool::Helper::~Helper()
{
    helperHere = nullptr;
    isWorker = false;
}

bool WorkerPool::Helper::work()
{
    return WorkerPool::shared().help(*this);
}

bool WorkerPool::help(Helper& helper)
{
    std::unique_lock lock(m_mutex);
    for (Task task; takeNext(task);) {
        helper.m_keepsOne = false;
        if (!helper.m_relieved) {
            helper.m_busySince = m_ticks;
            m_busyHelper = &helper;
            watch();
        }
        lock.unlock();
        runGuarded(task.work, "queued work");
        task.work = nullptr;
        lock.lock();
        if (!helper.m_relieved)
            m_busyHelper = nullptr;
        finishLocked(task.level);
    }
    helper.m_keepsOne = false;
    return !helper.m_relieved;
}

// Called with m_mutex held.
void WorkerPool::watch()
{
    m_quietTicks = 0;
    if (!std::exchange(m_watching, true))
        SystemClock::shared().schedule(tickLength, [this] { tick(); });
}

void WorkerPool::tick()
{
    std::unique_lock lock(m_mutex);
    ++m_ticks;
    if (m_busyHelper != nullptr && m_ticks - m_busyHelper->m_busySince >= 2 && m_busyHelper->m_relief())
        std::exchange(m_busyHelper, nullptr)->m_relieved = true;

    m_watching = m_busyHelper != nullptr || ++m_quietTicks < quietTicksToTheEnd;
    if (m_watching)
        SystemClock::shared().schedule(tickLength, [this] { tick(); });

    // What a helper keeps for itself and does not get to.
    const bool stands = std::exchange(m_takenAtTick, m_taken) == m_taken;
    Task task;
    if (stands && hasRoomForWorker() && takeNext(task))
        giveToWorker(lock, std::move(task));
}

void WorkerPool::enter()
{
    const std::lock_guard lock(m_mutex);
    ++m_pending;
}

void WorkerPool::leave()
{
    const std::lock_guard lock(m_mutex);
    leaveLocked();
}

void WorkerPool::leaveLocked()
{
    if (--m_pending == 0)
        m_atRest.notify_all();
}

bool WorkerPool::drain(Seconds limit)
{
    if (isWorker)
        return false;
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    std::unique_lock lock(m_mutex);
    return m_atRest.wait_until(lock, end, [this] { return m_pending == 0; });
}

} // namespace virlo
