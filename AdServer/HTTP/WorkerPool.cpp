#include "WorkerPool.h"

#include <utility>

namespace adserver
{

void WorkerPool::enqueue(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_queue.push_back(std::move(work));
    if (m_queue.size() > m_idle && m_threads.size() < maximum)
        m_threads.emplace_back(&WorkerPool::run, this);
    m_wake.notify_one();
}

void WorkerPool::shutdown()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_all();
    for (auto& thread : m_threads)
        thread.join();
}

void WorkerPool::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_idle;
        m_wake.wait(lock, [this] { return m_ending || !m_queue.empty(); });
        --m_idle;
        if (m_queue.empty())
            return;
        const auto work = std::move(m_queue.front());
        m_queue.pop_front();
        lock.unlock();
        work();
        lock.lock();
    }
}

} // namespace adserver
