#include "FrameStore.h"

#include <utility>

namespace virlo
{

void FrameStore::put(std::shared_ptr<const VideoFrame> frame)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed)
            return;
        m_newest.swap(frame); // the previous one is released without the lock
        ++m_counts.arrived;
        if (!std::exchange(m_taken, false))
            ++m_counts.unseen;
    }
    m_arrived();
}

std::shared_ptr<const VideoFrame> FrameStore::take()
{
    const std::lock_guard lock(m_mutex);
    m_taken = true;
    return m_newest;
}

void FrameStore::setLate(long late)
{
    const std::lock_guard lock(m_mutex);
    m_counts.late = late;
}

VideoFrameCounts FrameStore::counts() const
{
    const std::lock_guard lock(m_mutex);
    return m_counts;
}

void FrameStore::close()
{
    std::shared_ptr<const VideoFrame> last;
    const std::lock_guard lock(m_mutex);
    last.swap(m_newest);
    m_closed = true;
}

} // namespace virlo
