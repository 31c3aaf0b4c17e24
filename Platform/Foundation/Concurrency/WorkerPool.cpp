#include "WorkerPool.h"

#include "DetachedThread.h"
#include "Guarded.h"

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

thread_local bool isWorker = false;

/// How many workers a priority and those below it may use together.
constexpr std::array<int, 4> share{GlobalQueue::maximumThreads - 3, GlobalQueue::maximumThreads - 2,
                                   GlobalQueue::maximumThreads - 1, GlobalQueue::maximumThreads};

} // namespace

WorkerPool& WorkerPool::shared()
{
    static auto* const pool = new WorkerPool;
    return *pool;
}

void WorkerPool::submit(Priority priority, std::function<void()> work)
{
    std::unique_lock lock(m_mutex);
    ++m_pending;
    m_waiting[static_cast<std::size_t>(priority)].push_back(std::move(work));
    if (!mayRun(priority))
        return; // a worker that finishes its task takes this one
    if (!m_idle.empty()) {
        IdleWorker& worker = *m_idle.back();
        m_idle.pop_back();
        worker.isWoken = true;
        worker.wake.notify_one(); // under the lock: the worker's stack holds it
    } else if (m_threads < GlobalQueue::maximumThreads) {
        ++m_threads;
        lock.unlock();
        if (startDetachedThread("virlo-worker", [this] { runWorker(); }))
            return;
        // The system gives no thread: the task waits for an existing worker, or for the next `submit`.
        lock.lock();
        --m_threads;
    }
}

void WorkerPool::runWorker()
{
    isWorker = true;
    std::unique_lock lock(m_mutex);
    for (;;) {
        for (Task task; takeNext(task);) {
            lock.unlock();
            runGuarded(task.work, "queued work");
            task.work = nullptr;
            lock.lock();
            --m_running[static_cast<std::size_t>(task.priority)];
            leaveLocked();
        }
        if (!waitForWork(lock)) {
            --m_threads;
            return;
        }
    }
}

bool WorkerPool::waitForWork(std::unique_lock<std::mutex>& lock)
{
    IdleWorker self;
    m_idle.push_back(&self);
    if (self.wake.wait_for(lock, idleLife, [&] { return self.isWoken; }))
        return true;
    m_idle.erase(std::find(m_idle.begin(), m_idle.end(), &self));
    return false;
}

bool WorkerPool::mayRun(Priority priority) const
{
    int used = 0;
    for (std::size_t index = 0; index < priorityCount; ++index) {
        used += m_running[index];
        if (index >= static_cast<std::size_t>(priority) && used >= share[index])
            return false;
    }
    return true;
}

bool WorkerPool::takeNext(Task& task)
{
    for (std::size_t index = priorityCount; index-- > 0;) {
        const auto priority = static_cast<Priority>(index);
        auto& waiting = m_waiting[index];
        if (waiting.empty() || !mayRun(priority))
            continue;
        task.priority = priority;
        task.work = std::move(waiting.front());
        waiting.pop_front();
        ++m_running[index];
        return true;
    }
    return false;
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
        m_empty.notify_all();
}

bool WorkerPool::drain(Seconds limit)
{
    if (isWorker)
        return false;
    const auto end = std::chrono::steady_clock::now() + Clock::ticks(limit);
    std::unique_lock lock(m_mutex);
    return m_empty.wait_until(lock, end, [this] { return m_pending == 0; });
}

} // namespace virlo
