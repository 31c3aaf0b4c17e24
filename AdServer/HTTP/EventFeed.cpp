#include "EventFeed.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace adserver
{

/// One client's queue; read by its connection's thread.
class EventFeed::Listener final : public ResponseBody
{
public:
    explicit Listener(std::shared_ptr<Shared> shared) : m_shared(std::move(shared)) {}

    [[nodiscard]] std::uint64_t size() const override { return std::numeric_limits<std::uint64_t>::max(); }

    [[nodiscard]] bool isLive() const override { return true; }

    [[nodiscard]] std::size_t read(std::uint64_t, char* into, std::size_t capacity) const override
    {
        // A client that has gone shows when something is sent to it.
        constexpr auto heartbeat = std::chrono::seconds(15);
        std::unique_lock lock(m_shared->mutex);
        if (!m_shared->changed.wait_for(lock, heartbeat,
                                        [&] { return m_shared->isClosed || !m_queued.empty(); }))
            m_queued = ": still here\n\n";
        if (m_shared->isClosed)
            return 0;
        const auto count = m_queued.copy(into, capacity);
        m_queued.erase(0, count);
        return count;
    }

    /// With the lock held.
    void add(const std::string& event)
    {
        if (m_queued.size() > mostQueued)
            m_queued = "\n\nevent: reload\ndata: {}\n\n";
        else
            m_queued += event;
    }

private:
    const std::shared_ptr<Shared> m_shared;
    mutable std::string m_queued;
};

EventFeed::EventFeed() : m_shared(std::make_shared<Shared>()) {}

void EventFeed::publish(std::string_view name, const std::string& data)
{
    const auto event = "event: " + std::string(name) + "\ndata: " + data + "\n\n";
    {
        const std::lock_guard lock(m_shared->mutex);
        for (const auto& weak : m_listeners)
            if (const auto listener = weak.lock())
                listener->add(event);
    }
    m_shared->changed.notify_all();
}

bool EventFeed::isHeard() const
{
    const std::lock_guard lock(m_shared->mutex);
    return std::any_of(m_listeners.begin(), m_listeners.end(),
                       [](const auto& listener) { return !listener.expired(); });
}

std::shared_ptr<const ResponseBody> EventFeed::listen()
{
    const auto listener = std::make_shared<Listener>(m_shared);
    const std::lock_guard lock(m_shared->mutex);
    std::erase_if(m_listeners, [](const auto& other) { return other.expired(); });
    // So that the response's head goes out now and the client knows that it is connected.
    listener->add(": hello\n\n");
    m_listeners.push_back(listener);
    return listener;
}

void EventFeed::close()
{
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->isClosed = true;
    }
    m_shared->changed.notify_all();
}

void EventFeed::open()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->isClosed = false;
}

} // namespace adserver
