#include "PlayerTimeObservers.h"

#include "MainLoop.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace virlo
{

namespace
{

/// Shorter ones would leave the loop no time for anything else.
constexpr Seconds shortestInterval{0.01};
/// More intervals than this are not caught up on: a damaged file can name any time.
constexpr double mostIntervalsBehind = 600;

Seconds multipleAfter(Seconds time, Seconds interval)
{
    return interval * (std::floor(time / interval) + 1);
}

std::function<void()> call(const std::shared_ptr<PlayerTimeObservers::Observer>& observer,
                           const PlayerTimeObservers::Item& item, Seconds time)
{
    return [observer, item, time] {
        auto work = [observer, item, time] {
            if (!observer->removed)
                observer->block(item, time);
        };
        if (observer->queue)
            observer->queue->async(std::move(work));
        else
            MainLoop::shared().post(std::move(work));
    };
}

} // namespace

std::shared_ptr<void> PlayerTimeObservers::add(Seconds interval, std::shared_ptr<SerialQueue> queue,
                                               Block block, Seconds now)
{
    auto observer = std::make_shared<Observer>();
    observer->interval = std::max(interval, shortestInterval);
    observer->queue = std::move(queue);
    observer->block = std::move(block);
    if (now > Seconds(0))
        observer->next = multipleAfter(now, observer->interval);
    m_observers.push_back(observer);
    return observer;
}

void PlayerTimeObservers::remove(const std::shared_ptr<void>& token)
{
    const auto found = std::find(m_observers.begin(), m_observers.end(), token);
    if (found == m_observers.end())
        return;
    (*found)->removed = true;
    m_observers.erase(found);
}

void PlayerTimeObservers::removeAll()
{
    for (const auto& observer : m_observers)
        observer->removed = true;
    m_observers.clear();
}

void PlayerTimeObservers::advance(const Item& item, Seconds now, Calls& calls)
{
    for (const auto& observer : m_observers) {
        const Seconds interval = observer->interval;
        if (!observer->next) {
            calls.push_back(call(observer, item, Seconds(0)));
            observer->next = interval;
        }
        Seconds next =
            std::max(*observer->next, multipleAfter(now, interval) - mostIntervalsBehind * interval);
        for (; next <= now; next += interval)
            calls.push_back(call(observer, item, next));
        observer->next = next;
    }
}

void PlayerTimeObservers::end(const Item& item, Seconds now, bool played, Calls& calls)
{
    if (played)
        advance(item, now, calls);
    for (const auto& observer : m_observers) {
        if (played)
            calls.push_back(call(observer, item, now));
        observer->next.reset();
    }
}

std::optional<Seconds> PlayerTimeObservers::next() const
{
    std::optional<Seconds> first;
    for (const auto& observer : m_observers) {
        if (observer->next && (!first || *observer->next < *first))
            first = observer->next;
    }
    return first;
}

} // namespace virlo
