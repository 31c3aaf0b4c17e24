#include "QueuePlayer.h"

#include "MainLoop.h"
#include "NotificationCenter.h"

#include <algorithm>
#include <utility>

namespace virlo
{

namespace
{

template <typename T>
std::vector<std::shared_ptr<T>> living(std::vector<std::weak_ptr<T>>& observers)
{
    std::vector<std::shared_ptr<T>> result;
    observers.erase(std::remove_if(observers.begin(), observers.end(),
                                   [&](const auto& weak) {
                                       auto observer = weak.lock();
                                       if (!observer)
                                           return true;
                                       result.push_back(std::move(observer));
                                       return false;
                                   }),
                    observers.end());
    return result;
}

} // namespace

std::shared_ptr<void> QueuePlayer::addObserverForKeyPath(const std::string& keyPath, Observer observer)
{
    auto added = std::make_shared<KeyPathObserver>(KeyPathObserver{keyPath, std::move(observer)});
    const std::lock_guard lock(m_mutex);
    m_observers.push_back(added);
    return added;
}

std::shared_ptr<void>
QueuePlayer::addPeriodicTimeObserver(Seconds interval, std::shared_ptr<SerialQueue> queue, TimeObserver block)
{
    std::shared_ptr<void> token;
    {
        const std::lock_guard lock(m_mutex);
        const Seconds now = m_items.empty() ? Seconds(0) : m_items.front()->currentTime();
        token = m_timeObservers.add(interval, std::move(queue), std::move(block), now);
    }
    schedule();
    return token;
}

void QueuePlayer::removeTimeObserver(const std::shared_ptr<void>& token)
{
    const std::lock_guard lock(m_mutex);
    m_timeObservers.remove(token);
}

std::shared_ptr<void> QueuePlayer::addFrameObserver(std::function<void()> arrived)
{
    auto added = std::make_shared<std::function<void()>>(std::move(arrived));
    const std::lock_guard lock(m_mutex);
    m_frameObservers.push_back(added);
    return added;
}

void QueuePlayer::frameArrived()
{
    if (m_frameScheduled.exchange(true))
        return;
    MainLoop::shared().post([weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->callFrameObservers();
    });
}

void QueuePlayer::callFrameObservers()
{
    m_frameScheduled = false;
    std::vector<std::weak_ptr<std::function<void()>>> observers;
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed)
            return;
        static_cast<void>(living(m_frameObservers));
        observers = m_frameObservers;
    }
    for (const auto& weak : observers) {
        if (const auto observer = weak.lock())
            (*observer)();
    }
}

void QueuePlayer::callObservers(const std::string& keyPath, const Change& change)
{
    std::vector<std::weak_ptr<KeyPathObserver>> observers;
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed)
            return;
        for (const auto& observer : living(m_observers)) {
            if (observer->keyPath == keyPath)
                observers.push_back(observer);
        }
    }
    // An observer may release another's token, or its own.
    for (const auto& weak : observers) {
        if (const auto observer = weak.lock())
            observer->observer(change);
    }
}

void QueuePlayer::noteChange(const char* keyPath, Value before, Value now)
{
    m_events.emplace_back([this, keyPath, change = Change{std::move(before), std::move(now)}] {
        callObservers(keyPath, change);
    });
}

void QueuePlayer::noteNotification(const char* name, const std::shared_ptr<PlayerItem>& item)
{
    m_events.emplace_back([name, item] { NotificationCenter::defaultCenter().post(name, item.get()); });
}

} // namespace virlo
