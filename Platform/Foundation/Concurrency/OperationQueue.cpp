#include "OperationQueue.h"

#include "GlobalQueue.h"

#include <deque>
#include <mutex>
#include <utility>

namespace virlo
{

/// The global queue gets one call of `runOne` for each operation, not the operation itself: one that has not
/// begun when the queue is suspended stays here.
class OperationQueue::State : public std::enable_shared_from_this<State>
{
public:
    void add(std::function<void()> work)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_kept.push_back(std::move(work));
            if (m_suspended)
                return;
        }
        submit(1);
    }

    void setSuspended(bool suspended)
    {
        std::size_t waiting = 0;
        {
            const std::lock_guard lock(m_mutex);
            if (!std::exchange(m_suspended, suspended) || suspended)
                return;
            waiting = m_kept.size();
        }
        submit(waiting);
    }

private:
    void submit(std::size_t count)
    {
        for (; count > 0; --count)
            GlobalQueue::standard().async([self = shared_from_this()] { self->runOne(); });
    }

    void runOne()
    {
        std::function<void()> work;
        {
            const std::lock_guard lock(m_mutex);
            if (m_suspended || m_kept.empty())
                return;
            work = std::move(m_kept.front());
            m_kept.pop_front();
        }
        work();
    }

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_kept;
    bool m_suspended = false;
};

OperationQueue::OperationQueue() : m_state(std::make_shared<State>()) {}

OperationQueue::~OperationQueue() = default;

void OperationQueue::addOperation(std::function<void()> work)
{
    m_state->add(std::move(work));
}

void OperationQueue::setSuspended(bool suspended)
{
    m_state->setSuspended(suspended);
}

} // namespace virlo
