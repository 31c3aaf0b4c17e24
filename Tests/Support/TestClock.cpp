#include "TestClock.h"

#include "Settle.h"

#include <map>
#include <mutex>
#include <utility>

namespace virlo::test
{

class TestClock::State
{
public:
    using Key = std::pair<Instant, std::uint64_t>;

    mutable std::mutex mutex;
    Instant now{std::chrono::hours(1)};
    Date date;
    std::uint64_t sequence = 0;
    std::map<Key, std::function<void()>> pending;
};

class TestClock::Entry : public Clock::Scheduled
{
public:
    Entry(std::weak_ptr<State> state, State::Key key) : m_state(std::move(state)), m_key(key) {}

    void cancel() override
    {
        const auto state = m_state.lock();
        if (!state)
            return;
        std::function<void()> work; // destroyed without the lock: it may own what schedules and cancels
        const std::lock_guard lock(state->mutex);
        const auto found = state->pending.find(m_key);
        if (found == state->pending.end())
            return;
        work = std::move(found->second);
        state->pending.erase(found);
    }

private:
    std::weak_ptr<State> m_state;
    State::Key m_key;
};

TestClock::TestClock(Date start) : m_state(std::make_shared<State>())
{
    m_state->date = start;
    setShared(this);
}

TestClock::~TestClock()
{
    setShared(nullptr);
    std::map<State::Key, std::function<void()>> dropped;
    const std::lock_guard lock(m_state->mutex);
    dropped.swap(m_state->pending);
}

Clock::Instant TestClock::now() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->now;
}

Date TestClock::date() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->date;
}

std::shared_ptr<Clock::Scheduled> TestClock::schedule(Seconds delay, std::function<void()> work)
{
    const std::lock_guard lock(m_state->mutex);
    const State::Key key{m_state->now + ticks(delay), m_state->sequence++};
    m_state->pending.emplace(key, std::move(work));
    return std::make_shared<Entry>(m_state, key);
}

void TestClock::advance(Seconds by, Settling settling)
{
    const auto state = m_state;
    const auto moveTo = [&state](Instant moment) {
        if (moment <= state->now)
            return;
        state->date += std::chrono::duration_cast<Date::duration>(moment - state->now);
        state->now = moment;
    };
    const Instant target = now() + ticks(by);
    for (;;) {
        if (settling == Settling::Full)
            settleAll();
        std::function<void()> work;
        {
            const std::lock_guard lock(state->mutex);
            const auto first = state->pending.begin();
            if (first == state->pending.end() || first->first.first > target) {
                moveTo(target);
                return;
            }
            moveTo(first->first.first);
            work = std::move(first->second);
            state->pending.erase(first);
        }
        work();
    }
}

std::size_t TestClock::pendingCount() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->pending.size();
}

} // namespace virlo::test
