#pragma once

#include "Export.h"
#include "JSON.h"

#include <functional>
#include <memory>
#include <string>

namespace virlo
{

struct Notification {
    std::string name;
    const void* object = nullptr; ///< the sender, or null
    JSON userInfo;                ///< null where the sender gave none
};

/// Process-wide notifications by name. Observers are called synchronously on the poster's thread, in the
/// order in which they subscribed; they may subscribe, unsubscribe and post from inside a call. Any thread.
class VIRLO_EXPORT NotificationCenter
{
public:
    /// A subscription: it ends with this object. Once `~Observation` has returned on another thread, a call
    /// that had begun may still be running.
    class Observation
    {
    public:
        virtual ~Observation() = default;
    };

    using Handler = std::function<void(const Notification&)>;

    [[nodiscard]] static NotificationCenter& defaultCenter();

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// `object` limits the subscription to posts of that sender.
    [[nodiscard]] std::unique_ptr<Observation> addObserver(std::string name, Handler handler,
                                                           const void* object = nullptr);
    void post(const std::string& name, const void* object = nullptr, const JSON& userInfo = nullptr);

private:
    class State;
    std::shared_ptr<State> m_state;
};

/// The app's life cycle. With Qt the library itself posts these on the main thread; a host without Qt posts
/// them.
inline constexpr const char* ApplicationDidBecomeActiveNotification =
    "UIApplicationDidBecomeActiveNotification";
inline constexpr const char* ApplicationDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";
inline constexpr const char* ApplicationWillTerminateNotification = "UIApplicationWillTerminateNotification";

} // namespace virlo
