#include "DispatchGroup.h"

#include "Exception.h"

#include <mutex>
#include <utility>
#include <vector>

namespace virlo
{

class DispatchGroup::State
{
public:
    struct Notice {
        GlobalQueue* queue;
        std::function<void()> work;
    };

    std::mutex mutex;
    std::size_t count = 0;
    std::vector<Notice> notices;
};

DispatchGroup::DispatchGroup() : m_state(std::make_shared<State>()) {}

void DispatchGroup::enter()
{
    const std::lock_guard lock(m_state->mutex);
    ++m_state->count;
}

void DispatchGroup::leave()
{
    std::vector<State::Notice> due;
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->count == 0)
            raise(Exception::internalInconsistency, "A group was left more often than entered");
        if (--m_state->count == 0)
            due.swap(m_state->notices);
    }
    for (auto& notice : due)
        notice.queue->async(std::move(notice.work));
}

void DispatchGroup::notify(GlobalQueue& queue, std::function<void()> work)
{
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->count > 0) {
            m_state->notices.push_back({&queue, std::move(work)});
            return;
        }
    }
    queue.async(std::move(work));
}

} // namespace virlo
