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

Seconds markAfter(Seconds time, Seconds interval)
{
    return interval * (std::floor(time / interval) + 1);
}

void deliver(const std::shared_ptr<PlayerTimeObservers::Observer>& observer, Seconds time)
{
    auto work = [observer, time] {
        if (!observer->removed)
            observer->block(time);
    };
    if (observer->queue)
        observer->queue->async(std::move(work));
    else
        MainLoop::shared().post(std::move(work));
}

} // namespace

std::shared_ptr<void> PlayerTimeObservers::add(Seconds interval, std::shared_ptr<SerialQueue> queue,
                                               Block block, Seconds now)
{
    auto observer = std::make_shared<Observer>();
    observer->interval = std::max(interval, shortestInterval);
    observer->queue = std::move(queue);
    observer->block = std::move(block);
    observer->mark = markAfter(now, observer->interval);
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

void PlayerTimeObservers::restart()
{
    for (const auto& observer : m_observers)
        observer->mark = observer->interval;
}

void PlayerTimeObservers::tell(Seconds now)
{
    for (const auto& observer : m_observers) {
        if (now < observer->mark)
            continue;
        observer->mark = markAfter(now, observer->interval);
        deliver(observer, now);
    }
}

std::optional<Seconds> PlayerTimeObservers::next() const
{
    const auto first = std::min_element(m_observers.begin(), m_observers.end(),
                                        [](const auto& a, const auto& b) { return a->mark < b->mark; });
    return first == m_observers.end() ? std::nullopt : std::optional((*first)->mark);
}

} // namespace virlo
