#include "FrameStore.h"

#include <chrono>
#include <utility>

FrameStore::FrameStore(std::function<void()> wanted) : m_wanted(std::move(wanted)) {}

void FrameStore::put(QImage image)
{
    {
        const std::lock_guard lock(m_mutex);
        m_frame = {m_frame.number + 1, std::move(image)};
    }
    m_changed.notify_all();
}

bool FrameStore::noteDrawn()
{
    const std::lock_guard lock(m_mutex);
    m_isStale = true;
    return m_waiting > 0;
}

void FrameStore::beginGrab()
{
    const std::lock_guard lock(m_mutex);
    m_isStale = false;
}

std::optional<FrameStore::Frame> FrameStore::next(std::uint64_t after)
{
    bool needsGrab = false;
    {
        const std::lock_guard lock(m_mutex);
        ++m_waiting;
        needsGrab = m_isStale;
    }
    if (needsGrab)
        m_wanted();
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::milliseconds(500),
                       [&] { return m_isClosed || m_frame.number > after; });
    --m_waiting;
    if (m_isClosed || m_frame.number <= after)
        return std::nullopt;
    return m_frame;
}

void FrameStore::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
    }
    m_changed.notify_all();
}

bool FrameStore::isClosed() const
{
    const std::lock_guard lock(m_mutex);
    return m_isClosed;
}
