#include "GlobalQueue.h"

#include "WorkerPool.h"

#include <utility>

namespace virlo
{

GlobalQueue::GlobalQueue(Priority priority) : m_priority(priority) {}

GlobalQueue& GlobalQueue::background()
{
    static GlobalQueue queue(Priority::Background);
    return queue;
}

GlobalQueue& GlobalQueue::standard()
{
    static GlobalQueue queue(Priority::Default);
    return queue;
}

GlobalQueue& GlobalQueue::high()
{
    static GlobalQueue queue(Priority::High);
    return queue;
}

void GlobalQueue::async(std::function<void()> work)
{
    WorkerPool::shared().submit(m_priority, std::move(work));
}

void GlobalQueue::after(Seconds delay, std::function<void()> work)
{
    Clock::shared().schedule(delay, [this, work = std::move(work)]() mutable { async(std::move(work)); });
}

bool GlobalQueue::drain(Seconds limit)
{
    return WorkerPool::shared().drain(limit);
}

} // namespace virlo
