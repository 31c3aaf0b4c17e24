#include "NotificationCenter.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace virlo
{

namespace
{

struct Observer {
    std::string name;
    NotificationCenter::Handler handler;
    const void* object;
    std::atomic<bool> subscribed = true;
};

} // namespace

class NotificationCenter::State
{
public:
    using List = std::vector<std::shared_ptr<Observer>>;

    void add(std::shared_ptr<Observer> observer)
    {
        const std::lock_guard lock(m_mutex);
        m_observers.push_back(std::move(observer));
    }

    void remove(const std::shared_ptr<Observer>& observer)
    {
        observer->subscribed = false;
        const std::lock_guard lock(m_mutex);
        std::erase(m_observers, observer);
    }

    [[nodiscard]] List observers(const std::string& name, const void* object) const
    {
        List found;
        const std::lock_guard lock(m_mutex);
        for (const auto& observer : m_observers) {
            if (observer->name == name && (observer->object == nullptr || observer->object == object))
                found.push_back(observer);
        }
        return found;
    }

private:
    mutable std::mutex m_mutex;
    List m_observers;
};

namespace
{

template <typename State>
class Subscription : public NotificationCenter::Observation
{
public:
    Subscription(std::weak_ptr<State> state, std::shared_ptr<Observer> observer)
        : m_state(std::move(state))
        , m_observer(std::move(observer))
    {
    }

    ~Subscription() override
    {
        if (const auto state = m_state.lock())
            state->remove(m_observer);
    }

    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

private:
    std::weak_ptr<State> m_state;
    std::shared_ptr<Observer> m_observer;
};

} // namespace

NotificationCenter& NotificationCenter::defaultCenter()
{
    static auto* const center = new NotificationCenter; // observers and posters may outlive `main`
    return *center;
}

NotificationCenter::NotificationCenter() : m_state(std::make_shared<State>()) {}

NotificationCenter::~NotificationCenter() = default;

std::unique_ptr<NotificationCenter::Observation>
NotificationCenter::addObserver(std::string name, Handler handler, const void* object)
{
    auto observer = std::make_shared<Observer>();
    observer->name = std::move(name);
    observer->handler = std::move(handler);
    observer->object = object;
    m_state->add(observer);
    return std::make_unique<Subscription<State>>(m_state, std::move(observer));
}

void NotificationCenter::post(const std::string& name, const void* object, const JSON& userInfo)
{
    const auto observers = m_state->observers(name, object);
    if (observers.empty())
        return;
    const Notification notification{name, object, userInfo};
    for (const auto& observer : observers) {
        if (observer->subscribed)
            observer->handler(notification);
    }
}

} // namespace virlo
