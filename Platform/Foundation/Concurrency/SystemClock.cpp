#include "SystemClock.h"

#include "DetachedThread.h"
#include "Guarded.h"

namespace virlo
{

class SystemClock::Entry : public Clock::Scheduled
{
public:
    explicit Entry(Key key) : m_key(key) {}

    void cancel() override { SystemClock::shared().cancel(m_key); }

private:
    Key m_key;
};

SystemClock& SystemClock::shared()
{
    static auto* const clock = new SystemClock;
    return *clock;
}

Clock::Instant SystemClock::now() const
{
    return std::chrono::steady_clock::now();
}

Date SystemClock::date() const
{
    return std::chrono::system_clock::now();
}

std::shared_ptr<Clock::Scheduled> SystemClock::schedule(Seconds delay, std::function<void()> work)
{
    const Instant due = now() + ticks(delay);
    const std::lock_guard lock(m_mutex);
    const Key key{due, m_sequence++};
    auto entry = std::make_shared<Entry>(key);
    const auto position = m_pending.emplace(key, std::move(work)).first;
    // Where the system gives no thread now, the next call tries again; this entry is still pending then.
    if (!m_hasThread)
        m_hasThread = startDetachedThread("virlo-clock", [this] { run(); });
    else if (position == m_pending.begin())
        m_changed.notify_one();
    return entry;
}

void SystemClock::cancel(const Key& key)
{
    std::function<void()> work; // destroyed without the lock: it may own what schedules and cancels
    const std::lock_guard lock(m_mutex);
    const auto found = m_pending.find(key);
    if (found == m_pending.end())
        return;
    work = std::move(found->second);
    m_pending.erase(found);
}

void SystemClock::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (m_pending.empty()) {
            m_changed.wait(lock);
            continue;
        }
        const auto first = m_pending.begin();
        const Instant due = first->first.first;
        if (due > now()) {
            m_changed.wait_until(lock, due);
            continue;
        }
        auto work = std::move(first->second);
        m_pending.erase(first);
        lock.unlock();
        runGuarded(work, "scheduled work");
        work = nullptr;
        lock.lock();
    }
}

} // namespace virlo
