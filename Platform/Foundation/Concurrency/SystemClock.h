#pragma once

#include "Clock.h"

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

namespace virlo
{

/// The machine's clocks. Scheduled calls run on one thread, `virlo-clock`, which is made with the first call
/// and sleeps until the next one is due. The one instance is never destroyed: its thread may outlive `main`.
class SystemClock : public Clock
{
public:
    [[nodiscard]] static SystemClock& shared();

    [[nodiscard]] Instant now() const override;
    [[nodiscard]] Date date() const override;
    std::shared_ptr<Scheduled> schedule(Seconds delay, std::function<void()> work) override;

private:
    using Key = std::pair<Instant, std::uint64_t>;
    class Entry;

    SystemClock() = default;

    void run();
    void cancel(const Key& key);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<Key, std::function<void()>> m_pending;
    std::uint64_t m_sequence = 0;
    bool m_hasThread = false;
};

} // namespace virlo
