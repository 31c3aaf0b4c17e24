#include "GlobalQueue.h"

#include "WorkerPool.h"

#include <utility>

namespace virlo
{

namespace
{

WorkerPool::Level levelOf(GlobalQueue::Priority priority)
{
    switch (priority) {
    case GlobalQueue::Priority::Background:
        return WorkerPool::Level::Background;
    case GlobalQueue::Priority::High:
        return WorkerPool::Level::High;
    case GlobalQueue::Priority::Default:
        break;
    }
    return WorkerPool::Level::Default;
}

} // namespace

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
    WorkerPool::shared().submit(levelOf(m_priority), std::move(work));
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
